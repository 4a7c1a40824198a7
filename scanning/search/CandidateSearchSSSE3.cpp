// Compiled for processors with SSSE3, unlike the rest of the program: see CMakeLists.txt.

#include "scanning/search/CandidateSearch.h"
#include "scanning/search/CandidateTables.h"

#include <tmmintrin.h>

namespace navrel {

namespace {

/// Sixteen places side by side.
template <typename Tables>
class SSSE3Lanes {
public:
    static constexpr qsizetype kCount = 16;

    explicit SSSE3Lanes(const Tables& tables) {
        for (int position = 0; position < Tables::kPositions; ++position) {
            low_[position] = load(tables.positions[position].low);
            high_[position] = load(tables.positions[position].high);
        }
    }

    quint64 candidatesAt(const char* text) const {
        __m128i bits = bitsAt(text, 0);
        for (int position = 1; position < Tables::kPositions; ++position) {
            bits = _mm_and_si128(bits, bitsAt(text, position));
        }
        const __m128i none = _mm_cmpeq_epi8(bits, _mm_setzero_si128());
        return static_cast<quint64>(~_mm_movemask_epi8(none)) & 0xFFFFU;
    }

private:
    /// A lookup takes the lower half of a byte by itself; of a byte outside ASCII it makes 0, which
    /// is what no beginning allows.
    __m128i bitsAt(const char* text, int position) const {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + position));
        const __m128i highHalves = _mm_and_si128(_mm_srli_epi16(bytes, 4), _mm_set1_epi8(0xF));
        return _mm_and_si128(_mm_shuffle_epi8(low_[position], bytes),
                             _mm_shuffle_epi8(high_[position], highHalves));
    }

    static __m128i load(const quint8 (&table)[16]) {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(table));
    }

    __m128i low_[Tables::kPositions];
    __m128i high_[Tables::kPositions];
};

} // namespace

qsizetype findCandidatesWithSSSE3(Candidates candidates, const char* text, qsizetype blockCount,
                                  quint16* offsets) {
    return candidatetables::findCandidates<SSSE3Lanes>(candidates, text, blockCount, offsets);
}

} // namespace navrel
