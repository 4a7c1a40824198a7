#include "scanning/CandidateSearch.h"

#include "scanning/CandidateTables.h"

namespace navrel {

namespace {

using candidatetables::Position;

/// One place after the other.
template <typename Tables>
class PortableLanes {
public:
    static constexpr qsizetype kCount = kCandidateBlockSize;

    explicit PortableLanes(const Tables& tables) : tables_(tables) {}

    quint64 candidatesAt(const char* text) const {
        quint64 mask = 0;
        for (qsizetype place = 0; place < kCount; ++place) {
            mask |= quint64(isCandidate(text + place) ? 1 : 0) << place;
        }
        return mask;
    }

private:
    bool isCandidate(const char* place) const {
        quint8 bits = 0xFF;
        for (const Position& position : tables_.positions) {
            const auto byte = static_cast<quint8>(*place++);
            bits &= position.low[byte & 0xFU] & position.high[byte >> 4U];
        }
        return bits != 0;
    }

    const Tables& tables_;
};

} // namespace

qsizetype findCandidatesPortably(Candidates candidates, const char* text, qsizetype blockCount,
                                 quint16* offsets) {
    return candidatetables::findCandidates<PortableLanes>(candidates, text, blockCount, offsets);
}

CandidateSearch fastestCandidateSearch() {
#if defined(NAVREL_X86_SEARCHES)
    if (__builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
        __builtin_cpu_supports("popcnt") != 0) {
        return findCandidatesWithAVX2;
    }
    if (__builtin_cpu_supports("ssse3") != 0) {
        return findCandidatesWithSSSE3;
    }
#endif
    return findCandidatesPortably;
}

} // namespace navrel
