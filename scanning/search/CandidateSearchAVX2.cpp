// Compiled for processors with AVX2, unlike the rest of the program: see CMakeLists.txt.

#include "scanning/search/CandidateSearch.h"
#include "scanning/search/CandidateTables.h"

#include <immintrin.h>

namespace navrel {

namespace {

/// Thirty-two places side by side.
template <typename Tables>
class AVX2Lanes {
public:
    static constexpr qsizetype kCount = 32;

    explicit AVX2Lanes(const Tables& tables) {
        for (int position = 0; position < Tables::kPositions; ++position) {
            low_[position] = load(tables.positions[position].low);
            high_[position] = load(tables.positions[position].high);
        }
    }

    quint64 candidatesAt(const char* text) const {
        __m256i bits = bitsAt(text, 0);
        for (int position = 1; position < Tables::kPositions; ++position) {
            bits = _mm256_and_si256(bits, bitsAt(text, position));
        }
        const __m256i none = _mm256_cmpeq_epi8(bits, _mm256_setzero_si256());
        return static_cast<quint32>(~_mm256_movemask_epi8(none));
    }

private:
    /// A lookup takes the lower half of a byte by itself; of a byte outside ASCII it makes 0, which
    /// is what no beginning allows.
    __m256i bitsAt(const char* text, int position) const {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + position));
        const __m256i highHalves =
            _mm256_and_si256(_mm256_srli_epi16(bytes, 4), _mm256_set1_epi8(0xF));
        return _mm256_and_si256(_mm256_shuffle_epi8(low_[position], bytes),
                                _mm256_shuffle_epi8(high_[position], highHalves));
    }

    /// The same table for both halves of the vector.
    static __m256i load(const quint8 (&table)[16]) {
        return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(table)));
    }

    __m256i low_[Tables::kPositions];
    __m256i high_[Tables::kPositions];
};

} // namespace

qsizetype findCandidatesWithAVX2(Candidates candidates, const char* text, qsizetype blockCount,
                                 quint16* offsets) {
    return candidatetables::findCandidates<AVX2Lanes>(candidates, text, blockCount, offsets);
}

} // namespace navrel
