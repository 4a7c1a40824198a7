#include "scanning/search/CandidateSearch.h"

#include "scanning/search/CandidateTables.h"
#include "scanning/search/Processor.h"

#include <array>
#include <string_view>

namespace navrel {

namespace {

using candidatetables::Position;

constexpr int kDecidingBytes = 1 + int(kCandidateLookahead);

/// The bits of the beginnings that allow a byte at each position. Larger than the tables of the
/// searches: a byte is looked up whole, and there is room for sixteen beginnings.
struct LikelyTable {
    std::array<std::array<quint16, 256>, kDecidingBytes> allowed;

    constexpr void allow(std::size_t position, std::string_view bytes, quint16 bit) {
        for (const char byte : bytes) {
            allowed[position][static_cast<quint8>(byte)] |= bit;
        }
    }

    constexpr void allowAll(std::size_t position, quint16 bit) {
        for (quint16& bits : allowed[position]) {
            bits |= bit;
        }
    }
};

/// A beginning is given as the bytes that it allows at each position; none means any byte.
template <std::size_t count>
constexpr LikelyTable
makeLikelyTable(const std::string_view (&beginnings)[count][std::size_t(kDecidingBytes)]) {
    static_assert(count <= 16, "a byte has a bit for each");
    LikelyTable table{};
    for (std::size_t index = 0; index < count; ++index) {
        const auto bit = static_cast<quint16>(1U << index);
        for (std::size_t position = 0; position < std::size_t(kDecidingBytes); ++position) {
            const std::string_view bytes = beginnings[index][position];
            bytes.empty() ? table.allowAll(position, bit) : table.allow(position, bytes, bit);
        }
    }
    return table;
}

constexpr LikelyTable kLikelyInObjectiveC = makeLikelyTable({
    {"-+", " ", " (", ""},
    {"-+", "(", "", ""},
    {"/", "/", " ", " mMwWnN"},
    {"/", "/", "mMwWnN", "aA"},
    {"@", "pP", "rR", "oO"},
    {"@", "dD", "yY", "nN"},
    {"@", "iI", "nN", "tT"},
    {"#", "pP", "rR", "aA"},
    {"#", "wW", "aA", "rR"},
});
constexpr LikelyTable kLikelyInSwift = makeLikelyTable({
    {"cC", "lL", "aA", "sS\xC3\xC5\xE1"}, // also the other forms of s and ss
    {"fF", "uU", "nN", "cC"},
    {"vV", "aA", "rR", ""},
    {"lL", "eE", "tT", ""},
    {"/", "/", " ", " mMwWnN"},
    {"/", "/", "mMwWnN", "aA"},
    {"#", "pP", "rR", "aA"},
    {"#", "wW", "aA", "rR"},
});

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

// Without a branch on the result: most candidates are comments, of which some are kept and some are
// not, so the processor would mispredict every other one.
qsizetype keepLikelyCandidates(Candidates candidates, const char* text, quint16* offsets,
                               qsizetype count) {
    const LikelyTable& table =
        candidates == Candidates::Swift ? kLikelyInSwift : kLikelyInObjectiveC;
    quint16* kept = offsets;
    for (const quint16* offset = offsets; offset < offsets + count; ++offset) {
        const char* const place = text + *offset;
        unsigned bits = 0xFFFF;
        for (std::size_t position = 0; position < table.allowed.size(); ++position) {
            bits &= table.allowed[position][static_cast<quint8>(place[position])];
        }
        *kept = *offset;
        kept += bits != 0 ? 1 : 0;
    }
    return kept - offsets;
}

CandidateSearch fastestCandidateSearch() {
#if defined(NAVREL_X86_SEARCHES)
    if (hasAVX2()) {
        return findCandidatesWithAVX2;
    }
    if (__builtin_cpu_supports("ssse3") != 0) {
        return findCandidatesWithSSSE3;
    }
#endif
    return findCandidatesPortably;
}

} // namespace navrel
