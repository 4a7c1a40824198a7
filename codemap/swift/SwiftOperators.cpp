#include "codemap/swift/SwiftOperators.h"

#include <algorithm>
#include <array>

namespace navrel {

namespace {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

/// As the language's grammar has them, in order.
constexpr std::array kOperatorRanges = {
    CharacterRange{0x00A1, 0x00A7}, CharacterRange{0x00A9, 0x00A9}, CharacterRange{0x00AB, 0x00AC},
    CharacterRange{0x00AE, 0x00AE}, CharacterRange{0x00B0, 0x00B1}, CharacterRange{0x00B6, 0x00B6},
    CharacterRange{0x00BB, 0x00BB}, CharacterRange{0x00BF, 0x00BF}, CharacterRange{0x00D7, 0x00D7},
    CharacterRange{0x00F7, 0x00F7}, CharacterRange{0x2016, 0x2017}, CharacterRange{0x2020, 0x2027},
    CharacterRange{0x2030, 0x203E}, CharacterRange{0x2041, 0x2053}, CharacterRange{0x2055, 0x205E},
    CharacterRange{0x2190, 0x23FF}, CharacterRange{0x2500, 0x2775}, CharacterRange{0x2794, 0x2BFF},
    CharacterRange{0x2E00, 0x2E7F}, CharacterRange{0x3001, 0x3003}, CharacterRange{0x3008, 0x3020},
    CharacterRange{0x3030, 0x3030},
};

char32_t characterAt(const char* place, std::size_t length) {
    constexpr std::array<unsigned char, 5> kFirstBits = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = static_cast<unsigned char>(*place) & kFirstBits[length];
    for (std::size_t index = 1; index < length; ++index) {
        character = character << 6 | (static_cast<unsigned char>(place[index]) & 0x3Fu);
    }
    return character;
}

} // namespace

std::size_t lengthOfSwiftCharacter(const char* place, const char* end) {
    const auto first = static_cast<unsigned char>(*place);
    const std::size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    return length <= static_cast<std::size_t>(end - place) ? length : 1;
}

bool isSwiftOperatorAt(const char* place, const char* end) {
    const std::size_t length = lengthOfSwiftCharacter(place, end);
    if (length < 2) {
        return false;
    }
    const char32_t character = characterAt(place, length);
    const auto range = std::lower_bound(
        kOperatorRanges.begin(), kOperatorRanges.end(), character,
        [](const CharacterRange& one, char32_t value) { return one.last < value; });
    return range != kOperatorRanges.end() && range->first <= character;
}

} // namespace navrel
