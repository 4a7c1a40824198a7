#pragma once

#include "codemap/LineCounter.h"
#include "codemap/OutlineBuilder.h"
#include "codemap/cfamily/BraceMatcher.h"
#include "codemap/cfamily/Conditions.h"
#include "codemap/cfamily/Declarations.h"
#include "codemap/cfamily/Head.h"
#include "codemap/cfamily/Lexer.h"
#include "codemap/cfamily/Scopes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace navrel::cfamily {

/// Finds the declarations of one source in C, C++ or their Objective-C kin.
///
/// It reads tokens into a *head* until something ends it. ";" ends a declaration without a body,
/// ":" may end a label such as "public:", and "{" shows what the head is: of a type or namespace,
/// which becomes the *scope* of what follows, or of a function, whose body is passed over without
/// being cut into tokens. Branches of the preprocessor are all read, each from the place at which
/// the first one began (see Conditions.h).
///
/// A body that is not closed would take the rest of the file with it. It is read once more, and
/// from there on a line that is indented no further than the body's own head ends the body. What
/// the end of a class closed instead shows at the end of the text: a scope is left open. Then the
/// text is read again, and indentation ends bodies and types from its beginning; that counts if
/// nothing is left open then.
class Recogniser : private CommentListener {
public:
    Recogniser(std::string_view text, Language language);

    /// From now on, indentation ends bodies and types that their braces do not. Before `outline`.
    void trustIndentation();
    /// Once.
    Outline outline();
    /// Whether each brace that opens a scope was closed.
    bool isBalanced() const { return isBalanced_; }

private:
    void onComment(std::string_view comment, std::size_t position) override;

    void read(const Token& token);
    void readWord(const Token& token);
    void readSign(const Token& token);
    void readColon(const Token& token);
    void readDash(const Token& token);
    void readEquals(const Token& token);
    bool mayLookThroughHead();
    bool holdsMacroCallsAlone() const;
    void readComma(const Token& token);
    void readTemplateParameters();

    // The preprocessor.
    void readDirective(std::size_t begin, std::size_t end);
    void beginCondition(const Directive& directive);
    void readAlternative(std::size_t at);
    void endCondition(std::size_t at);
    void readDefinition(const Directive& directive, std::size_t begin, std::size_t end);
    Place place() const;
    void goTo(const Place& place, std::size_t at);

    // Braces.
    void openBrace(const Token& brace);
    bool openScope(const Token& brace);
    bool isExpression() const;
    bool isTemplateArgument(const Token& brace);
    bool openNamespace(std::size_t end);
    bool openType(const Token& brace);
    bool openFunction(const Token& brace);
    void openMethod(const Token& brace);
    void beginMember(const Token& token);
    bool endsScopeBefore(std::size_t indent) const;
    bool isLabelAt(const Token& word) const;
    void closeBrace(const Token& brace);
    bool holdsMacrosAlone() const;
    void passFunction(const Found& function);
    void passHandlers();
    void passBraces(const Token& brace);
    void passBody();
    bool passBodyOnce();
    bool endsBodyAt(std::size_t lineStart);
    std::string nameAfterBody(std::size_t brace);

    // Parts of heads.
    void endHead(std::size_t place);
    void clearHead();
    void endStatement(const Token& sign);
    void passInitializer();
    void passTemplateArguments();
    bool beginsNext();
    void passConstructorInitializers(const Token& colon);
    bool isAccessLabel() const;
    Word accessWord() const;
    void readAccessLabel();

    // Objective-C.
    void readAtWord(const Token& token);
    void openContainer(const Token& word);
    void readContainerRest(Found& found, bool isInterface);
    void openProtocol(const Token& word);
    void beginContainer(const Found& found, ScopeKind kind);
    void endContainer(std::size_t at);
    void leaveContainers(std::size_t at);
    bool isInContainer() const;
    bool takeIf(Sign sign);
    std::string takeNames(Sign opening, Sign closing);

    std::uint32_t lineAt(std::size_t position) { return lines_.lineAt(position); }
    std::size_t indentAt(std::size_t position) const;
    bool isFirstOnLine(std::size_t position) const;

    std::string_view text_;
    bool isCpp_;
    OutlineBuilder builder_;
    LineCounter lines_;
    Lexer lexer_;
    Head head_;
    Scopes scopes_;
    Declarations declarations_;
    Conditions conditions_;
    BraceMatcher matcher_;

    std::uint64_t headNumber_ = 0;
    std::uint32_t headLooks_ = 0; ///< how often the head was looked through
    std::uint32_t bodyDepth_ = 0;
    std::size_t signatureEnd_ = 0; ///< where a constructor's initializers begin; 0 without
    bool hasReadColon_ = false;    ///< whether the head had a colon that was no constructor's
    bool isFirstNameTaken_ = false;
    std::size_t angleSearchEnd_ = 0; ///< no "<" of an expression before it has its ">"
    std::size_t directivesRead_ = 0; ///< those before it have been told of

    bool isBalanced_ = true;
    bool trustsIndentation_ = false; ///< from the beginning
    bool endsBodiesByIndent_ = false;
    std::size_t headIndent_ = 0;
    bool isBodyIndented_ = false;
    bool hasBodyLine_ = false;
};

} // namespace navrel::cfamily
