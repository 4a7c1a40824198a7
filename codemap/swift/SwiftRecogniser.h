#pragma once

#include "codemap/OutlineBuilder.h"
#include "codemap/swift/SwiftLexer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// Finds the declarations of a Swift text: at file level and in types, never in the bodies of
/// functions and accessors or in closures. Statements at file level are passed over.
class SwiftRecogniser {
public:
    SwiftRecogniser(std::string_view text, OutlineBuilder& builder);

    /// See SwiftLexer::trustIndentation. Types end by their indentation, too.
    void trustIndentation();

    /// Reads the whole text; once.
    void run();

    /// Whether each brace found its partner.
    bool isBalanced() const { return isBalanced_; }
    std::uint32_t lines() { return lexer_.lines(); }

private:
    /// A type whose members are being read.
    struct Scope {
        SymbolKind kind;
        std::uint32_t depth;   ///< of braces, its own included
        std::ptrdiff_t indent; ///< of the line that it begins on
        bool hasMembers = false;
        bool isFlat = false; ///< its members are indented no more than itself
    };

    /// What is known of a declaration before its name.
    struct Head {
        const char* begin = nullptr; ///< of its first modifier, or else of its introducer
        Access access = Access::unstated;
        SwiftWord word = SwiftWord::none;
        std::string_view introducer; ///< "func", "var" …
    };

    /// One name that a declaration declares.
    struct Name {
        std::string_view text;
        std::uint32_t line = 0;
    };

    // Tokens. What skips stops where a declaration begins that cannot belong to it.
    void advance();
    bool opensGroup() const { return token_.is('(') || token_.is('['); }
    bool opensAngles() const;
    int angles() const;
    void skipGroup();
    void skipAngles(int open = 0);
    void skipBlock(SwiftLexer::BlockKind kind);
    void skipBody() { skipBlock(SwiftLexer::BlockKind::body); }
    void skipClosure() { skipBlock(SwiftLexer::BlockKind::closure); }
    void skipOne();
    void skipRest();
    bool startsStrongly();
    bool endsItem() const;
    bool endsDeclaration();
    bool expectsMore() const;
    bool continuesLine();

    // Items of a file or type.
    void readItem();
    void beginItem();
    bool readHead(Head& head);
    void readModifier(Head& head);
    bool isAtModifier();
    bool isAtAsyncLet();
    bool isAtIntroducer(const Head& head);
    bool isIntroducerBefore(const SwiftToken& next, const Head& head) const;
    void skipAttribute();
    void skipStatement();
    void skipControl();

    // Scopes.
    void openScope(const OutlineBuilder::Declaration& declaration);
    void closeScope(const char* end);
    void readClosingBrace();
    void closeScopesAbove(std::uint32_t depth);
    bool closesScope();
    std::ptrdiff_t outerIndent() const;
    void closeScopesByIndent();
    bool isInEnum() const {
        return !scopes_.empty() && scopes_.back().kind == SymbolKind::enumType;
    }

    // Declarations, whose introducer is the current token.
    void readDeclaration(const Head& head);
    void readType(const Head& head, SymbolKind kind);
    void readExtension(const Head& head);
    void readTypeRest(const Head& head, SymbolKind kind, const Name& name);
    void readInherits();
    void readInherited();
    void readFunction(const Head& head);
    void readMacro(const Head& head);
    void readInitializer(const Head& head);
    void readDeinitializer(const Head& head);
    void readSubscript(const Head& head);
    void readFunctionRest(const Head& head, SymbolKind kind, std::uint32_t line);
    void readAlias(const Head& head);
    void readAssociatedType(const Head& head);
    void readOperator(const Head& head);
    void skipPrecedenceGroup();
    void skipImport();
    bool readSignName();

    enum class Labels : bool {
        names, ///< a parameter's only name is its label, too
        none
    };
    void readLabels(Labels labels);
    void readLabel(Labels labels);
    bool skipParameterRest();
    bool beginsParameter(bool isDefault);

    void readCases(const Head& head);
    void readCase(const Head& head, const char* begin);
    void readVariables(const Head& head);
    bool readBinding(const Head& head, bool isFirst);
    void readPattern();
    void skipTypeAnnotation();
    bool skipInitialValue();
    bool beginsBinding();

    Name nameOfToken();
    std::string_view signature(std::string_view before, const char* begin, const char* end);
    void add(SymbolKind kind, const Head& head, const Name& name, std::string_view signature);
    std::uint32_t lastLine() { return lexer_.lineAt(lastEnd_ - 1); }

    OutlineBuilder& builder_;
    SwiftLexer lexer_;
    SwiftToken token_;           // the current one
    SwiftToken last_;            // the one before
    const char* lastEnd_;        // behind the last token or block
    bool isBehindBlock_ = false; // whether that was a block
    std::vector<Scope> scopes_;
    bool isBalanced_ = true;
    bool trustsIndentation_ = false;
    std::ptrdiff_t itemIndent_ = 0; // of the line that the item begins on
    bool itemStartsLine_ = false;
    const char* itemLastEnd_; // behind what is before the item

    // Of the declaration being read; kept for their memory.
    std::string fullName_;
    std::string inherits_;
    std::string signature_;
    std::vector<Name> names_;
};

} // namespace navrel
