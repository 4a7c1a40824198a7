#include "codemap/NameLetters.h"

#include <array>

namespace navrel {

namespace {

enum class Kind : std::uint8_t { sign, lower, upper, digit };

struct Character {
    LetterSet bit = 0;
    std::uint32_t wordLetter = 0;
    Kind kind{};
    unsigned char folded = 0;
};

constexpr Character characterOf(unsigned char byte) {
    const bool isUpper = byte >= 'A' && byte <= 'Z';
    const bool isLower = byte >= 'a' && byte <= 'z';
    const bool isDigit = byte >= '0' && byte <= '9';
    const auto folded = static_cast<unsigned char>(isUpper ? byte + 'a' - 'A' : byte);
    return {letterBitOf(byte), NameLetters::wordLetter(folded),
            isUpper   ? Kind::upper
            : isLower ? Kind::lower
            : isDigit ? Kind::digit
                      : Kind::sign,
            folded};
}

constexpr auto kCharacters = [] {
    std::array<Character, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        table[byte] = characterOf(static_cast<unsigned char>(byte));
    }
    return table;
}();

} // namespace

NameLetters nameLettersOf(std::string_view utf8) {
    NameLetters letters;
    Kind before = Kind::sign;
    char32_t last = 0;
    for (const char byte : utf8) {
        const Character& here = kCharacters[static_cast<unsigned char>(byte)];
        letters.all |= here.bit;
        letters.pairs |= NameLetters::pairOf(last, here.folded);
        const bool isStart = before == Kind::sign || here.kind == Kind::sign;
        const bool isHump = (here.kind == Kind::upper && before == Kind::lower) ||
                            (here.kind == Kind::digit && before != Kind::digit);
        letters.starts |= isStart ? here.wordLetter : 0;
        letters.humps |= isHump ? here.wordLetter : 0;
        before = here.kind;
        last = here.folded;
    }
    if (!isASCII(letters.all)) {
        letters.pairs = UINT64_MAX;
        letters.starts = UINT32_MAX;
        letters.humps = UINT32_MAX;
    }
    return letters;
}

} // namespace navrel
