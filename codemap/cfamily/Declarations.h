#pragma once

#include "codemap/LineCounter.h"
#include "codemap/OutlineBuilder.h"
#include "codemap/cfamily/Declarator.h"
#include "codemap/cfamily/Directive.h"
#include "codemap/cfamily/Head.h"
#include "codemap/cfamily/Scopes.h"
#include "codemap/cfamily/TypeHead.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace navrel::cfamily {

/// A symbol on its way to the outline.
struct Found {
    SymbolKind kind{};
    Access access = Access::unstated;
    std::string name;
    std::string inherits;
    std::size_t nameAt = 0; ///< in the text
    std::size_t begin = 0;  ///< of the signature
    std::size_t end = 0;
};

/// Adds what heads declare to an outline.
class Declarations {
public:
    /// Prototypes and "extern" variables are shown in headers, where they are what the file is for;
    /// elsewhere they repeat what is defined in another place.
    Declarations(const Head& head, Scopes& scopes, LineCounter& lines, bool isHeader)
        : head_(head), scopes_(scopes), lines_(lines), isHeader_(isHeader) {}

    /// What a head with a body declares as a function or method; no name where it does not.
    Found functionOf(std::size_t signatureEnd);
    /// What begins with "-" or "+".
    Found methodOf(std::size_t signatureEnd);
    /// A type whose body follows. `nameAfter` is the name that stands behind the body, for a type
    /// that has none before it.
    Found typeOf(const TypeHead& type, std::string_view nameAfter, std::size_t signatureEnd);

    // Of declarations without a body, `end` is where they end, initializers included.

    /// All that a head before a semicolon declares; but not its first name where that was added
    /// with the body before it.
    void addAll(std::size_t end, bool isFirstTaken);
    void addProperties(std::size_t end);
    /// The case that the head is.
    void addCase(std::size_t end);
    void addMacro(const Directive& definition, std::size_t begin, std::size_t end);
    /// A macro that is defined amid a head takes its place among what the head declares.
    void addMacroLater(const Directive& definition, std::size_t begin, std::size_t end);
    /// At the end of a head: those that are left.
    void addLaterMacros() { addMacrosBefore(SIZE_MAX); }

    /// `end` is the place after its last byte.
    void add(const Found& found, std::size_t end);
    /// Calls `use` with the declaration of what was found.
    template <typename Use>
    void with(const Found& found, Use use) {
        addMacrosBefore(found.nameAt);
        std::string edited;
        const std::string_view signature = signatureOf(found, edited);
        OutlineBuilder::Declaration declaration;
        declaration.kind = found.kind;
        declaration.access = found.access;
        declaration.line = lines_.lineAt(found.nameAt);
        declaration.name = nameIn(signature, found);
        declaration.signature = signature;
        declaration.inherits = found.inherits;
        use(declaration);
    }

private:
    struct LaterMacro {
        Directive definition;
        std::size_t begin;
        std::size_t end;
    };
    enum class Role { none, ordinary, typeDefinition, alias };

    void addMacrosBefore(std::size_t place);
    Role role() const;
    bool isInstantiation() const;
    bool isModuleLine() const;
    void addAlias(std::size_t end);
    void addDeclarator(const Declarator& declarator, std::size_t begin, bool isTypeDefinition,
                       std::size_t end);
    bool isToBeShown(const Declarator& declarator) const;
    bool isFunctionToBeShown(const Declarator& declarator) const;
    bool isVariable(const Declarator& declarator) const;
    std::size_t bindings() const;
    void addBindings(std::size_t opening, std::size_t end);
    SymbolKind kindOf(const Declarator& declarator) const;
    bool contains(Word word) const;
    bool isSpecialMember(const Declarator& declarator) const;
    Found found(SymbolKind kind, NameRange name, std::size_t signatureEnd) const;
    std::string_view nameIn(std::string_view signature, const Found& found) const;
    std::string_view signatureOf(const Found& found, std::string& edited) const;
    std::size_t signatureBegin() const;
    std::size_t nextName(std::size_t index) const;

    const Head& head_;
    Scopes& scopes_;
    LineCounter& lines_;
    bool isHeader_;
    std::deque<LaterMacro> laterMacros_;
};

} // namespace navrel::cfamily
