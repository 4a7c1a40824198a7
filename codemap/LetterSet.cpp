#include "codemap/LetterSet.h"

#include <array>

namespace navrel {

namespace {

constexpr int kFirstDigit = 26;
constexpr int kFirstSign = 36;
constexpr int kSignBits = 27;
constexpr int kNotASCII = 63;

constexpr int bitOf(unsigned char character) {
    if (character >= 'a' && character <= 'z') {
        return character - 'a';
    }
    if (character >= 'A' && character <= 'Z') {
        return character - 'A';
    }
    if (character >= '0' && character <= '9') {
        return kFirstDigit + character - '0';
    }
    return character < 0x80 ? kFirstSign + character % kSignBits : kNotASCII;
}

constexpr auto kBits = [] {
    std::array<LetterSet, 256> bits{};
    for (std::size_t character = 0; character < bits.size(); ++character) {
        bits[character] = LetterSet{1} << bitOf(static_cast<unsigned char>(character));
    }
    return bits;
}();

} // namespace

LetterSet letterSetOf(std::string_view utf8) {
    LetterSet set = 0;
    for (const char character : utf8) {
        set |= kBits[static_cast<unsigned char>(character)];
    }
    return set;
}

} // namespace navrel
