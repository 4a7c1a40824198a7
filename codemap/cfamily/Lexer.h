#pragma once

#include "codemap/cfamily/Token.h"
#include "codemap/cfamily/Words.h"

#include <cstddef>
#include <string_view>

namespace navrel::cfamily {

/// Hears of each comment once, in the order of the text.
class CommentListener {
public:
    virtual ~CommentListener() = default;
    /// `comment` is part of the text, with its signs.
    virtual void onComment(std::string_view comment, std::size_t position) = 0;
};

/// What matters between the braces of a body that is passed over.
struct BodyEvent {
    enum class Kind {
        open,
        close,
        directive,
        container, ///< @interface, @end … at the beginning of a line: no body goes on here
        lineStart, ///< only where line starts are asked for
        end,
    };
    Kind kind{};
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Cuts a text of the C family into tokens, or passes over bodies. Comments go to a listener. A
/// string or character that is not closed ends with its line.
class Lexer {
public:
    /// The text must outlive the lexer and be smaller than 4 GiB.
    Lexer(std::string_view text, Dialect dialect, CommentListener& listener)
        : text_(text), dialect_(dialect), listener_(listener) {}

    std::string_view text() const { return text_; }
    std::size_t position() const { return position_; }
    /// Goes on reading elsewhere. Comments before the furthest place that was reached are not told
    /// of again.
    void setPosition(std::size_t position) {
        position_ = position;
        lineEnd_ = 0;
    }
    /// Whether comments are kept from the listener, for looking ahead.
    void setQuiet(bool isQuiet) { isQuiet_ = isQuiet; }

    Token next();
    /// The next byte that is neither blank nor in a comment; 0 at the end. Reads nothing.
    char peek() const;
    /// After "operator": the operator's name, as one token from "operator" on.
    Token operatorName(const Token& word);
    BodyEvent nextInBody(bool withLineStarts);

private:
    void skipBlanksAndComments();
    bool skipComment();
    void skipLineComment();
    void skipBlockComment();
    void report(std::size_t begin);
    /// Whether only blanks and a comment stand before a place in its line.
    bool isAtLineStart(std::size_t position) const;
    std::size_t beforeBlanks(std::size_t position) const;
    std::size_t afterBlanks(std::size_t position) const;
    std::size_t afterName(std::size_t position) const;
    bool isFirstOnLine(std::size_t position) const;
    bool startsWith(std::string_view prefix) const;

    Token lexWord();
    Token lexNumber();
    Token lexAt();
    Token lexSign();
    Token lexDirective();
    /// From a place up to where the lexer is.
    Token token(TokenKind kind, std::size_t begin) const {
        Token result;
        result.kind = kind;
        result.begin = static_cast<std::uint32_t>(begin);
        result.end = static_cast<std::uint32_t>(position_);
        return result;
    }
    Token signToken(Sign sign, std::size_t length) {
        const std::size_t begin = position_;
        position_ += length;
        Token result = token(TokenKind::sign, begin);
        result.sign = sign;
        return result;
    }

    void skipDirective();
    bool skipContinuation();
    void skipConversionType();
    void skipQuoted(char quote);
    void skipRawString();
    bool isRawStringAt(std::size_t quote) const;
    bool isDigitSeparator(std::size_t quote) const;
    bool readBodySign(BodyEvent& event);
    bool readDigraph(BodyEvent& event);
    bool isContainerWord() const;

    std::string_view text_;
    Dialect dialect_;
    CommentListener& listener_;
    std::size_t position_ = 0;
    std::size_t lineEnd_ = 0;  ///< of the line that is being passed over, where known
    std::size_t reported_ = 0; ///< comments before it have been told of
    bool isQuiet_ = false;
    bool hasBrokenRawString_ = false; ///< one had no end: further ones are not looked for
};

} // namespace navrel::cfamily
