#pragma once

#include "codemap/OutlineBuilder.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace navrel::cfamily {

enum class ScopeKind : std::uint8_t {
    file,
    linkage, ///< extern "C"; a namespace without a name
    namespaceScope,
    type, ///< a class, struct or union
    enumeration,
    declaration,    ///< @interface, @protocol, a category
    implementation, ///< @implementation
    variables,      ///< the instance variables of an Objective-C class
};

/// Whether what is declared there is a part of a type.
constexpr bool isMemberScope(ScopeKind kind) {
    return kind == ScopeKind::type || kind == ScopeKind::variables;
}

/// What a pair of braces, or @interface … @end, encloses.
struct Scope {
    ScopeKind kind = ScopeKind::file;
    std::uint32_t parent = 0;
    std::uint16_t depth = 0; ///< 0 for the file
    bool hasSymbol = false;  ///< whether it is open in the outline
    bool isTypeDefinition = false;
    bool isExternal = false;
    bool endsWithBrace = false; ///< what follows the body names nothing
    bool isNameTaken = false;   ///< the first name after the body is the scope's own
    Access access = Access::unstated;
    bool hasMembers = false;
    bool isFlat = false;    ///< its members are indented no more than itself
    std::size_t indent = 0; ///< of the line that it begins on; known where indentation is trusted
    std::string name;       ///< of a class, for its constructors
};

/// The scopes around a place. A scope is never removed, so that a place can be returned to by its
/// scope's number: that is how the branches of #if begin with the same scopes.
class Scopes {
public:
    explicit Scopes(OutlineBuilder& builder);

    using Number = std::uint32_t;
    Number number() const { return current_; }
    Scope& current() { return scopes_[current_]; }
    const Scope& current() const { return scopes_[current_]; }
    const Scope& at(Number number) const { return scopes_[number]; }
    std::size_t depth() const { return scopes_[current_].depth; }

    /// Opens a scope in the current one. Parent and depth are set here.
    void open(Scope scope);
    /// Opens one with a symbol.
    void open(Scope scope, OutlineBuilder::Declaration declaration);
    /// Adds a symbol with nothing inside.
    void add(OutlineBuilder::Declaration declaration, std::uint32_t endLine);
    /// Closes the current scope, which must not be the file.
    void close(std::uint32_t line);
    /// Makes another scope the current one. Symbols of scopes that are left are closed; those of
    /// scopes that are entered again stay closed.
    void restore(Number number, std::uint32_t line);

private:
    void closeSymbol(std::uint32_t line);
    std::uint32_t inOrder(std::uint32_t line);

    OutlineBuilder& builder_;
    std::vector<Scope> scopes_;
    Number current_ = 0;
    // Names may stand behind what is inside: lines never go back in an outline all the same.
    std::uint32_t lastLine_ = 1;
    std::uint32_t lastEndLine_ = 1;
};

} // namespace navrel::cfamily
