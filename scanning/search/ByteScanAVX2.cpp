// Compiled for processors with AVX2, unlike the rest of the program: see CMakeLists.txt.

#include "scanning/search/ByteScan.h"

#include <immintrin.h>

namespace navrel {

namespace {

constexpr qsizetype kLanes = 32;

[[gnu::always_inline]] inline __m256i load(const char* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

/// 0xFF for each line feed.
[[gnu::always_inline]] inline __m256i lineFeedsAt(const char* bytes) {
    return _mm256_cmpeq_epi8(load(bytes), _mm256_set1_epi8('\n'));
}

[[gnu::always_inline]] inline quint32 sumOf(__m256i counts) {
    const __m128i halves =
        _mm_add_epi64(_mm256_castsi256_si128(counts), _mm256_extracti128_si256(counts, 1));
    return static_cast<quint32>(_mm_cvtsi128_si64(halves) + _mm_extract_epi64(halves, 1));
}

} // namespace

quint32 countLineFeedsWithAVX2(const char* begin, const char* end) {
    constexpr int kMostRounds = 255; // what a byte can count
    const char* at = begin;
    __m256i total = _mm256_setzero_si256();
    while (end - at >= kLanes) {
        __m256i counts = _mm256_setzero_si256();
        for (int round = 0; round < kMostRounds && end - at >= kLanes; ++round, at += kLanes) {
            counts = _mm256_sub_epi8(counts, lineFeedsAt(at));
        }
        total = _mm256_add_epi64(total, _mm256_sad_epu8(counts, _mm256_setzero_si256()));
    }
    if (at == begin) {
        quint32 count = 0;
        for (; at < end; ++at) {
            count += *at == '\n' ? 1 : 0;
        }
        return count;
    }
    // The last bytes lie in a vector that ends with them; the others in it have been counted.
    const auto counted = static_cast<unsigned>(kLanes - (end - at));
    const auto last = static_cast<quint32>(_mm256_movemask_epi8(lineFeedsAt(end - kLanes)));
    return sumOf(total) + static_cast<quint32>(__builtin_popcountll(quint64(last) >> counted));
}

qsizetype asciiPrefixLengthWithAVX2(const char* text, qsizetype size) {
    constexpr qsizetype kBlock = 4 * kLanes;
    qsizetype length = 0;
    for (; size - length >= kBlock; length += kBlock) {
        const char* const block = text + length;
        const __m256i bytes =
            _mm256_or_si256(_mm256_or_si256(load(block), load(block + kLanes)),
                            _mm256_or_si256(load(block + 2 * kLanes), load(block + 3 * kLanes)));
        if (_mm256_movemask_epi8(bytes) != 0) {
            return length;
        }
    }
    return length;
}

} // namespace navrel
