#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// The byte loops of the old-style ASCII format. PortableScanner defines them; VectorScanner does
// the same with 16 bytes at a time. All take and return positions in [at, end], and return `end` if
// there is nothing to find.
namespace navrel::propertylist {

enum ByteClass : std::uint8_t {
    kWhite = 1,      ///< U+0009 to U+000D and blank
    kUnquoted = 2,   ///< allowed in a string without quotes
    kMaybeBlank = 4, ///< white, or may begin a comment, U+2028 or U+2029
    kHexadecimal = 8,
};

constexpr std::array<std::uint8_t, 256> makeByteClasses() {
    std::array<std::uint8_t, 256> classes{};
    const auto add = [&classes](char first, char last, int bits) {
        for (int byte = first; byte <= last; ++byte) {
            classes[static_cast<std::size_t>(byte)] |= static_cast<std::uint8_t>(bits);
        }
    };
    add('\t', '\r', kWhite | kMaybeBlank);
    add(' ', ' ', kWhite | kMaybeBlank);
    add('/', '/', kMaybeBlank);
    classes[0xE2] |= kMaybeBlank;
    add('-', ':', kUnquoted); // - . / 0-9 :
    add('A', 'Z', kUnquoted);
    add('a', 'z', kUnquoted);
    add('_', '_', kUnquoted);
    add('$', '$', kUnquoted);
    add('0', '9', kHexadecimal);
    add('A', 'F', kHexadecimal);
    add('a', 'f', kHexadecimal);
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> kByteClasses = makeByteClasses();

inline bool isOfClass(char byte, int classes) {
    return (kByteClasses[static_cast<std::uint8_t>(byte)] & classes) != 0;
}

struct PortableScanner {
    /// The first byte that is not white.
    static const char* endOfWhite(const char* at, const char* end) {
        while (at != end && isOfClass(*at, kWhite)) {
            ++at;
        }
        return at;
    }

    /// The first byte that is not allowed in a string without quotes.
    static const char* endOfUnquoted(const char* at, const char* end) {
        while (at != end && isOfClass(*at, kUnquoted)) {
            ++at;
        }
        return at;
    }

    /// The first quote of the given kind, or backslash.
    static const char* quoteOrBackslash(const char* at, const char* end, char quote) {
        while (at != end && *at != quote && *at != '\\') {
            ++at;
        }
        return at;
    }

    /// Past the first "*/".
    static const char* pastCommentEnd(const char* at, const char* end) {
        for (; end - at >= 2; ++at) {
            if (at[0] == '*' && at[1] == '/') {
                return at + 2;
            }
        }
        return end;
    }

    static const char* firstNonASCII(const char* at, const char* end) {
        while (at != end && static_cast<std::uint8_t>(*at) < 0x80) {
            ++at;
        }
        return at;
    }
};

#ifdef __SSE2__
struct VectorScanner {
    static const char* endOfWhite(const char* at, const char* end) {
        while (end - at >= kBlock) {
            if (const unsigned others = ~whiteMask(load(at)) & kAll; others != 0) {
                return at + std::countr_zero(others);
            }
            at += kBlock;
        }
        return PortableScanner::endOfWhite(at, end);
    }

    static const char* endOfUnquoted(const char* at, const char* end) {
        while (end - at >= 2 * kBlock) {
            if (const std::uint32_t others = ~unquotedMask(load(at)) & kAll; others != 0) {
                return at + std::countr_zero(others);
            }
            const std::uint32_t others = ~unquotedMask(load(at + kBlock)) & kAll;
            // Object identifiers have 24 bytes. With a branch for that length, the processor can
            // predict the end and go on from there, instead of waiting until it is computed.
            if ((others & kFirst9) == kOnly9th) {
                return at + kBlock + 8;
            }
            if (others != 0) {
                return at + kBlock + std::countr_zero(others);
            }
            at += 2 * kBlock;
        }
        return PortableScanner::endOfUnquoted(at, end);
    }

    static const char* quoteOrBackslash(const char* at, const char* end, char quote) {
        const __m128i quotes = _mm_set1_epi8(quote);
        const __m128i backslashes = _mm_set1_epi8('\\');
        while (end - at >= kBlock) {
            const __m128i bytes = load(at);
            const unsigned found = mask(
                _mm_or_si128(_mm_cmpeq_epi8(bytes, quotes), _mm_cmpeq_epi8(bytes, backslashes)));
            if (found != 0) {
                return at + std::countr_zero(found);
            }
            at += kBlock;
        }
        return PortableScanner::quoteOrBackslash(at, end, quote);
    }

    static const char* pastCommentEnd(const char* at, const char* end) {
        while (end - at > 2 * kBlock) {
            const std::uint32_t found = commentEndMask(at) | commentEndMask(at + kBlock) << kBlock;
            if (found != 0) {
                return at + std::countr_zero(found) + 2;
            }
            at += 2 * kBlock;
        }
        return PortableScanner::pastCommentEnd(at, end);
    }

    static const char* firstNonASCII(const char* at, const char* end) {
        while (end - at >= 4 * kBlock) {
            const __m128i bytes =
                _mm_or_si128(_mm_or_si128(load(at), load(at + kBlock)),
                             _mm_or_si128(load(at + 2 * kBlock), load(at + 3 * kBlock)));
            if (mask(bytes) != 0) {
                break;
            }
            at += 4 * kBlock;
        }
        return PortableScanner::firstNonASCII(at, end);
    }

private:
    static constexpr int kBlock = sizeof(__m128i);
    static constexpr unsigned kAll = 0xFFFF;
    static constexpr std::uint32_t kOnly9th = std::uint32_t{1} << 8;
    static constexpr std::uint32_t kFirst9 = kOnly9th * 2 - 1;

    static __m128i load(const char* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    }

    // One bit for each byte: its uppermost one. The lowest bit is the first byte's.
    static std::uint32_t mask(__m128i bytes) {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
    }

    // Whether bytes are from `first` to `last`, by one signed comparison: all are moved so that the
    // range ends at the greatest signed byte.
    static __m128i isInRange(__m128i bytes, char first, char last) {
        const __m128i moved = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(127 - last)));
        return _mm_cmpgt_epi8(moved, _mm_set1_epi8(static_cast<char>(126 - (last - first))));
    }

    static std::uint32_t whiteMask(__m128i bytes) {
        return mask(
            _mm_or_si128(isInRange(bytes, '\t', '\r'), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' '))));
    }

    static std::uint32_t unquotedMask(__m128i bytes) {
        const __m128i letters = isInRange(_mm_or_si128(bytes, _mm_set1_epi8(0x20)), 'a', 'z');
        const __m128i marks = _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('_')),
                                           _mm_cmpeq_epi8(bytes, _mm_set1_epi8('$')));
        return mask(_mm_or_si128(_mm_or_si128(letters, isInRange(bytes, '-', ':')), marks));
    }

    // Reads one byte more than a block.
    static std::uint32_t commentEndMask(const char* at) {
        return mask(_mm_and_si128(_mm_cmpeq_epi8(load(at), _mm_set1_epi8('*')),
                                  _mm_cmpeq_epi8(load(at + 1), _mm_set1_epi8('/'))));
    }
};

using BestScanner = VectorScanner;
#else
using BestScanner = PortableScanner;
#endif

} // namespace navrel::propertylist
