#pragma once

#include "codemap/LetterSet.h"

#include <cstdint>
#include <string_view>

namespace navrel {

/// What a search knows of a name without reading it: enough to see that its score will be low.
struct NameLetters {
    LetterSet all = 0;
    std::uint64_t pairs = 0; ///< bits of `pairOf`: which characters stand right behind which
    /// Bits of `wordLetter`: the first character, those after a sign or a blank, and signs.
    std::uint32_t starts = 0;
    /// Bits of `wordLetter`: capitals after small letters, and the first digit of a number.
    std::uint32_t humps = 0;

    /// The bit of a character, letter case aside, where words begin. All digits share one, and so
    /// do all signs.
    static constexpr std::uint32_t wordLetter(char32_t folded) {
        constexpr int kDigit = 26;
        constexpr int kSign = 27;
        const bool isLetter = folded >= 'a' && folded <= 'z';
        const bool isDigit = folded >= '0' && folded <= '9';
        return std::uint32_t{1} << (isLetter ? int(folded) - 'a' : isDigit ? kDigit : kSign);
    }

    /// The bit of two neighbours, letter case aside. Several pairs share one.
    static constexpr std::uint64_t pairOf(char32_t before, char32_t here) {
        return std::uint64_t{1} << ((before * 7 + here) % 64);
    }
};

/// For a name that is not ASCII every set but `all` has every bit, as any character may begin a
/// word there.
NameLetters nameLettersOf(std::string_view utf8);

} // namespace navrel
