#pragma once

#include <cstdint>
#include <string_view>

namespace navrel {

/// Which characters a text holds, letter case aside, as one bit for each letter and digit and few
/// bits for all others. A text can hold another one's characters only if its set holds the other's:
/// a search passes over most names by one comparison.
using LetterSet = std::uint64_t;

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
