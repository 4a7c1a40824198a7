#include "scanning/TextCursor.h"

#include <algorithm>
#include <array>

namespace navrel {

namespace {

/// A character outside ASCII whose full case folding is ASCII.
struct CaseFolding {
    std::string_view bytes;
    std::string_view letters;
};

/// All that Unicode's CaseFolding.txt has.
constexpr std::array kCaseFoldings = {
    CaseFolding{"\xC5\xBF", "s"},       // U+017F long s
    CaseFolding{"\xE2\x84\xAA", "k"},   // U+212A Kelvin sign
    CaseFolding{"\xC3\x9F", "ss"},      // U+00DF sharp s
    CaseFolding{"\xE1\xBA\x9E", "ss"},  // U+1E9E capital sharp s
    CaseFolding{"\xEF\xAC\x80", "ff"},  // U+FB00 ligature, as the next ones
    CaseFolding{"\xEF\xAC\x81", "fi"},  // U+FB01
    CaseFolding{"\xEF\xAC\x82", "fl"},  // U+FB02
    CaseFolding{"\xEF\xAC\x83", "ffi"}, // U+FB03
    CaseFolding{"\xEF\xAC\x84", "ffl"}, // U+FB04
    CaseFolding{"\xEF\xAC\x85", "st"},  // U+FB05
    CaseFolding{"\xEF\xAC\x86", "st"},  // U+FB06
};

} // namespace

/// Moves over a character of kCaseFoldings, and returns its letters; empty if none is here.
std::string_view TextCursor::takeCaseFolding() {
    for (const CaseFolding& folding : kCaseFoldings) {
        if (takeBytes(folding.bytes)) {
            return folding.letters;
        }
    }
    return {};
}

/// The rest of `takeFolded`, from a character outside ASCII on. A character matches whole or not at
/// all: in "clas\u00DF", the last one is not the second "s" of "class".
bool TextCursor::takeFoldedBeyondASCII(const char* place, std::string_view folded) {
    TextCursor ahead{place, end};
    const std::string_view letters = ahead.takeCaseFolding();
    const auto differing =
        std::mismatch(letters.begin(), letters.end(), folded.begin(), folded.end());
    if (letters.empty() || differing.first != letters.end() ||
        !ahead.takeFolded(folded.substr(letters.size()))) {
        return false;
    }
    at = ahead.at;
    return true;
}

const char* TextCursor::endOfLine() const {
    TextCursor ahead = *this;
    for (; ahead.at < end; ++ahead.at) {
        const char byte = *ahead.at;
        const bool isBreak = byte >= '\n' && byte <= '\r';
        const bool mayBeBreak = byte == '\xC2' || byte == '\xE2';
        if (isBreak || (mayBeBreak && (TextCursor(ahead).takeBytes("\xC2\x85") ||
                                       TextCursor(ahead).takeBytes("\xE2\x80\xA8") ||
                                       TextCursor(ahead).takeBytes("\xE2\x80\xA9")))) {
            break;
        }
    }
    return ahead.at;
}

} // namespace navrel
