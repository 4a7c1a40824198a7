#include "codemap/LetterSet.h"

#include <array>

namespace navrel {

namespace {

constexpr auto kBits = [] {
    std::array<LetterSet, 256> bits{};
    for (std::size_t character = 0; character < bits.size(); ++character) {
        bits[character] = letterBitOf(static_cast<unsigned char>(character));
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
