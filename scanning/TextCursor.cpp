#include "scanning/TextCursor.h"

#include <algorithm>
#include <array>

namespace navrel {

namespace {

/// A character outside ASCII that folds to ASCII letters when letter case does not count.
struct OtherForm {
    std::string_view bytes;
    std::string_view letters;
};

constexpr std::array kOtherForms = {
    OtherForm{"\xC5\xBF", "s"},       // U+017F long s
    OtherForm{"\xE2\x84\xAA", "k"},   // U+212A Kelvin sign
    OtherForm{"\xC3\x9F", "ss"},      // U+00DF sharp s
    OtherForm{"\xE1\xBA\x9E", "ss"},  // U+1E9E capital sharp s
    OtherForm{"\xEF\xAC\x80", "ff"},  // U+FB00
    OtherForm{"\xEF\xAC\x81", "fi"},  // U+FB01
    OtherForm{"\xEF\xAC\x82", "fl"},  // U+FB02
    OtherForm{"\xEF\xAC\x83", "ffi"}, // U+FB03
    OtherForm{"\xEF\xAC\x84", "ffl"}, // U+FB04
    OtherForm{"\xEF\xAC\x85", "st"},  // U+FB05
    OtherForm{"\xEF\xAC\x86", "st"},  // U+FB06
};

} // namespace

/// The letters of the other form that stands here, having moved over it; none where there is none.
std::string_view TextCursor::takeOtherForm() {
    for (const OtherForm& form : kOtherForms) {
        if (takeBytes(form.bytes)) {
            return form.letters;
        }
    }
    return {};
}

bool TextCursor::takeFoldedFromOtherForm(const char* place, std::string_view folded) {
    TextCursor ahead{place, end};
    const std::string_view letters = ahead.takeOtherForm();
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
