#pragma once

#include "codemap/swift/SwiftWords.h"

#include <cstdint>
#include <string_view>

namespace navrel {

enum class SwiftTokenKind : std::uint8_t {
    end,
    word,        ///< an identifier, a keyword, "_" or "$0"
    quotedName,  ///< an identifier in backticks, never a keyword
    literal,     ///< a number, a string or a regular expression
    sign,        ///< an operator, "=", "->", "<" …; postfix "?" and "!" alone
    punctuation, ///< one of {}()[],;:.@\ and anything unknown
    macro,       ///< "#" and a word: #Preview, #selector
    condition,   ///< "#if" with its condition
    branch,      ///< "#elseif" with its condition, or "#else"
    endCondition,
};

/// One token. Views the text.
struct SwiftToken {
    SwiftTokenKind kind = SwiftTokenKind::end;
    SwiftWord word = SwiftWord::none;
    bool startsLine = false; ///< a line feed lies between it and the token before
    bool isDetached = false; ///< blanks or a comment lie between it and the token before
    std::string_view text;   ///< empty at the end, where its place is the text's end

    const char* begin() const { return text.data(); }
    const char* end() const { return text.data() + text.size(); }

    bool is(char character) const {
        return kind == SwiftTokenKind::punctuation && text.front() == character;
    }
    bool is(SwiftWord one) const { return word == one; }
    bool isSign(std::string_view sign) const {
        return kind == SwiftTokenKind::sign && text == sign;
    }
    bool isName() const {
        return kind == SwiftTokenKind::word || kind == SwiftTokenKind::quotedName;
    }
    bool isEnd() const { return kind == SwiftTokenKind::end; }
};

} // namespace navrel
