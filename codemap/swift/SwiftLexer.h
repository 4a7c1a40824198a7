#pragma once

#include "codemap/LineCounter.h"
#include "codemap/swift/SwiftCharacters.h"
#include "codemap/swift/SwiftToken.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace navrel {

class OutlineBuilder;

/// Cuts a Swift text into tokens, and skips blocks of statements without doing so. What comments,
/// #warning and #error say goes to the builder on the way.
///
/// A string, with the expressions in it, is one token, and so is a regular expression. Conditions
/// (#if) are followed: their branches all begin at the same depth of braces, so that a brace that
/// each branch opens is open once behind them. Never recursive; time in proportion to the text.
class SwiftLexer {
public:
    SwiftLexer(std::string_view text, OutlineBuilder& builder);

    /// The next token. Conditions count as tokens; their lines have been followed.
    SwiftToken next();
    /// The token that `next` will return.
    const SwiftToken& peek();

    enum class BlockEnd : std::uint8_t {
        brace, ///< its own "}", which has been read
        early, ///< what follows cannot belong to it, and is read next
        text,  ///< there is nothing left
    };
    /// Skips a block whose "{" was the last token; nothing may have been peeked at behind it.
    /// `indent` is that of the line which its declaration begins on, `outer` that of the type's
    /// which the declaration is in, or -1. A closure's end may also be indented like its "{".
    enum class BlockKind : std::uint8_t { body, closure };
    BlockEnd skipBlock(BlockKind kind, std::ptrdiff_t indent, std::ptrdiff_t outer);

    /// From now on, the indentation decides where a block ends if its braces disagree with it: at
    /// a "}" that is indented like its declaration, or before a line that is indented no more and
    /// begins like another declaration. For texts whose braces do not match.
    void trustIndentation() { trustsIndentation_ = true; }
    /// How far the line of a place is indented.
    std::ptrdiff_t indentAt(const char* place);

    /// How many braces are open behind the last token or block.
    std::uint32_t depth() const { return peeked_ ? depthBeforePeek_ : depth_; }
    /// Behind the last block.
    const char* place() const { return place_; }
    /// The line of a place, from 1. Places are best asked for in their order.
    std::uint32_t lineAt(const char* place) {
        return lines_.lineAt(static_cast<std::size_t>(place - begin_));
    }
    std::uint32_t lines() { return lines_.lines(); }

    /// The comments between tokens since the last call of `forgetComments`; not all of them where
    /// there are very many.
    const std::vector<std::string_view>& comments() const { return comments_; }
    void forgetComments() { comments_.clear(); }

private:
    /// A condition whose branches are being read.
    struct Condition {
        std::uint32_t depth;   ///< of braces where it begins
        std::uint32_t surplus; ///< how many "}" of this branch an earlier one had already
    };
    struct OpenString {
        std::uint32_t signs;           ///< how many "#" each end has
        bool isMultiline;              ///< between triple quotes
        std::uint32_t parentheses = 0; ///< open ones of its interpolation; 0 in the string itself
        std::uint32_t braces = 0;      ///< open ones of its interpolation
    };

    static std::string_view textBetween(const char* begin, const char* end) {
        return {begin, static_cast<std::size_t>(end - begin)};
    }
    char at(const char* place) const { return place < end_ ? *place : '\0'; }
    std::uint32_t countSigns(const char* place) const;
    std::string_view wordAt(const char* place) const {
        const char* end = place;
        while (end < end_ && isSwift(*end, swift_bytes::kName | swift_bytes::kDigit)) {
            ++end;
        }
        return textBetween(place, end);
    }

    SwiftToken read();
    void skipBlanks();
    bool skipAside();
    bool skipComment();
    void skipBlockComment();
    /// From a place up to where the lexer is.
    SwiftToken token(SwiftTokenKind kind, const char* begin) const {
        return {kind, SwiftWord::none, startsLine_, isDetached_, textBetween(begin, place_)};
    }
    SwiftToken readWord();
    SwiftToken readQuotedName();
    SwiftToken readNumber();
    SwiftToken readSign();
    SwiftToken readSlash();
    SwiftToken readHash();
    SwiftToken readMacro();
    SwiftToken readPunctuation();
    const char* endOfOperator(const char* place) const;

    void skipString(std::uint32_t signs);
    void beginString(std::uint32_t signs);
    void skipStringText();
    void skipStringQuote(const OpenString& string);
    void skipEscape(OpenString& string);
    void skipInterpolation();
    bool endsInterpolation() const;

    bool skipRegularExpression();
    bool mayBeginExpression() const;
    const char* endOfRegularExpression();
    void skipExtendedRegularExpression(std::uint32_t signs);
    void skipQuotedName();

    bool isOuterBranch(std::uint32_t outside) const;
    bool followCondition(std::string_view word);
    void skipConditionLine();
    void beginBranch();
    void addMessage(std::string_view word, const char* behind);
    bool closeBrace();

    struct Line {
        const char* begin;
        const char* place; ///< in it
    };

    /// How a block may be indented.
    struct Indents {
        std::ptrdiff_t outer;       ///< of what it is in: its "}" is indented more
        std::ptrdiff_t declaration; ///< its "}" is indented no more …
        std::ptrdiff_t end;         ///< … or like this
    };

    bool skipSoundBlock(const Indents& indents);
    bool otherDeclarationFollows() const;
    BlockEnd skipToBlockEnd(std::optional<Indents> indents);

    enum class BlockStep : std::uint8_t { on, brace, early };
    BlockStep stepInBlock(std::uint32_t outside, const std::optional<Indents>& indents);
    BlockStep hashInBlock(std::uint32_t outside);
    BlockStep lineInBlock(std::uint32_t outside, const Indents& indents);

    const char* begin_;
    const char* end_;
    const char* place_;
    LineCounter lines_;
    OutlineBuilder& builder_;

    std::optional<SwiftToken> peeked_;
    std::uint32_t depthBeforePeek_ = 0;
    std::uint32_t depth_ = 0;
    bool startsLine_ = true;  // of the token being read
    bool isDetached_ = false; // of the token being read
    bool trustsIndentation_ = false;
    std::size_t unsound_ = 0;      // bytes that were read twice
    Line indented_;                // the line that was asked about last
    const char* said_;             // what comments say before it has been added
    const char* noExpressionUpTo_; // no regular expression ends before it

    std::vector<std::string_view> comments_;
    std::vector<OpenString> strings_;
    std::vector<Condition> conditions_;
    std::uint32_t conditionsLeftOut_ = 0; // nested too deeply
};

} // namespace navrel
