#pragma once

#include "codemap/LetterSet.h"

#include <cstdint>
#include <string_view>

namespace navrel {

/// What a search knows of a name without reading it: enough to tell that its score will be low.
struct NameLetters {
    LetterSet all = 0;
    std::uint64_t pairs = 0; ///< bits of `pairOf`: which characters stand right behind which
    /// Bits of `wordLetter`: what stands at the beginning, after a sign or blank, or is one.
    std::uint32_t starts = 0;
    std::uint32_t humps = 0; ///< the same for capitals after small letters, and for first digits

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

/// Of what is not ASCII everything but `all` has each bit: anything may begin a word.
NameLetters nameLettersOf(std::string_view utf8);

} // namespace navrel
