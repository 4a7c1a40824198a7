#pragma once

#include <cstdint>
#include <string_view>

namespace navrel {

/// Which characters a text holds, letter case aside, as one bit for each letter and digit and few
/// bits for all others. A text can hold another one's characters only if its set holds the other's:
/// a search passes over most names by one comparison.
using LetterSet = std::uint64_t;

/// The bit of one byte of UTF-8.
constexpr LetterSet letterBitOf(unsigned char byte) {
    constexpr int kFirstDigit = 26;
    constexpr int kFirstSign = 36;
    constexpr int kSignBits = 27;
    constexpr int kNotASCII = 63;
    const int bit = byte >= 'a' && byte <= 'z'   ? byte - 'a'
                    : byte >= 'A' && byte <= 'Z' ? byte - 'A'
                    : byte >= '0' && byte <= '9' ? kFirstDigit + byte - '0'
                    : byte < 0x80                ? kFirstSign + byte % kSignBits
                                                 : kNotASCII;
    return LetterSet{1} << bit;
}

LetterSet letterSetOf(std::string_view utf8);

/// Whether a text with this set holds ASCII alone.
constexpr bool isASCII(LetterSet set) {
    return (set >> 63) == 0;
}

/// Whether a text with the set `text` may hold all characters of one with the set `wanted`.
constexpr bool mayHold(LetterSet text, LetterSet wanted) {
    return (wanted & ~text) == 0;
}

} // namespace navrel
