#include "codemap/cfamily/ByteSearch.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace navrel::cfamily {

namespace {

bool isBodySign(char byte) {
    switch (byte) {
    case '{':
    case '}':
    case '"':
    case '\'':
    case '/':
    case '#':
    case '%':
    case '@':
        return true;
    default:
        return false;
    }
}

#if defined(__SSE2__)

constexpr std::size_t kBlock = sizeof(__m128i);

__m128i blockAt(std::string_view text, std::size_t position) {
    __m128i block;
    std::memcpy(&block, text.data() + position, kBlock);
    return block;
}

__m128i equal(__m128i block, char byte) {
    return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte));
}

unsigned maskOf(__m128i flags) {
    return static_cast<unsigned>(_mm_movemask_epi8(flags));
}

/// '"' and '#', '%' and '\'', '{' and '}' differ in one bit each: a comparison does for two.
__m128i equalToEither(__m128i block, char byte, char differingBit) {
    return equal(_mm_or_si128(block, _mm_set1_epi8(differingBit)), byte);
}

unsigned bodySigns(__m128i block) {
    static_assert(('"' | 1) == '#' && ('%' | 2) == '\'');
    const __m128i braces = _mm_or_si128(equal(block, '{'), equal(block, '}'));
    const __m128i quotes =
        _mm_or_si128(equalToEither(block, '#', 1), equalToEither(block, '\'', 2));
    const __m128i others = _mm_or_si128(equal(block, '/'), equal(block, '@'));
    return maskOf(_mm_or_si128(_mm_or_si128(braces, quotes), others));
}

#endif

} // namespace

std::size_t findBodySign(std::string_view text, std::size_t position) {
#if defined(__SSE2__)
    for (; position + kBlock <= text.size(); position += kBlock) {
        const unsigned mask = bodySigns(blockAt(text, position));
        if (mask != 0) {
            return position + static_cast<std::size_t>(std::countr_zero(mask));
        }
    }
#endif
    while (position < text.size() && !isBodySign(text[position])) {
        ++position;
    }
    return position;
}

std::size_t findPair(std::string_view text, std::size_t position, char first, char second) {
#if defined(__SSE2__)
    for (; position + kBlock + 1 <= text.size(); position += kBlock) {
        const unsigned mask = maskOf(_mm_and_si128(equal(blockAt(text, position), first),
                                                   equal(blockAt(text, position + 1), second)));
        if (mask != 0) {
            return position + static_cast<std::size_t>(std::countr_zero(mask));
        }
    }
#endif
    for (; position + 1 < text.size(); ++position) {
        if (text[position] == first && text[position + 1] == second) {
            return position;
        }
    }
    return text.size();
}

std::size_t findLineFeed(std::string_view text, std::size_t position) {
    return std::min(text.find('\n', position), text.size());
}

} // namespace navrel::cfamily
