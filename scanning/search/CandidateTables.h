#pragma once

#include "scanning/search/CandidateSearch.h"

#include <QtGlobal>

/// What the searches for candidates share: the tables of the rules' beginnings, and the loop.
///
/// Each beginning has one bit. A table for each position says which beginnings allow a byte there.
/// A byte is looked up by its halves, since vector instructions look up in tables of sixteen: the
/// bits of both halves are combined by "and". A place is a candidate if a bit is left after the
/// same is done with the bytes that follow.
namespace navrel::candidatetables {

/// The bits of the beginnings that allow a byte at one position, by its lower and upper half.
struct Position {
    alignas(16) quint8 low[16];
    alignas(16) quint8 high[16];
};

/// The tables of all positions: two or three.
template <int count>
struct Tables {
    static constexpr int kPositions = count;

    Position positions[count];
};

constexpr void allow(Position& position, const char* bytes, quint8 bit) {
    for (; *bytes != '\0'; ++bytes) {
        position.low[static_cast<quint8>(*bytes) & 0xFU] |= bit;
        position.high[static_cast<quint8>(*bytes) >> 4U] |= bit;
    }
}

/// A beginning is given as the bytes (ASCII) that it allows at each position.
template <int count, int positions>
constexpr Tables<positions> makeTables(const char* const (&beginnings)[count][positions]) {
    static_assert(count <= 8, "a byte has a bit for each");
    Tables<positions> tables{};
    for (int index = 0; index < count; ++index) {
        for (int position = 0; position < positions; ++position) {
            allow(tables.positions[position], beginnings[index][position],
                  static_cast<quint8>(1U << unsigned(index)));
        }
    }
    return tables;
}

inline constexpr auto kObjectiveC =
    makeTables({{"-+", " ("}, {"/", "/"}, {"@", "pP"}, {"@", "dD"}, {"#", "pPwW"}});
inline constexpr auto kHeader =
    makeTables({{"-+", " ("}, {"/", "/"}, {"@", "pP"}, {"@", "dD"}, {"@", "iI"}, {"#", "pPwW"}});
inline constexpr auto kSwift = makeTables({{"cC", "lL", "aA"},
                                           {"fF", "uU", "nN"},
                                           {"vV", "aA", "rR"},
                                           {"lL", "eE", "tT"},
                                           {"/", "/", " mMwWnN"},
                                           {"#", "pPwW", "rRaA"}});

/// Appends `base` plus the number of each bit that is set in the mask, and returns the new end.
/// Most masks have few bits, so the first kCandidateSurplus are written without a test of whether
/// they are there: the processor would often mispredict that branch.
[[gnu::always_inline]] inline quint16* appendOffsets(quint64 mask, qsizetype base,
                                                     quint16* offsets) {
    constexpr quint64 kSentinel = quint64(1) << 63U; // where no bit is left
    quint16* const end = offsets + __builtin_popcountll(mask);
    do {
        for (qsizetype index = 0; index < kCandidateSurplus; ++index) {
            *offsets++ = static_cast<quint16>(base + __builtin_ctzll(mask | kSentinel));
            mask &= mask - 1;
        }
    } while (mask != 0);
    return end;
}

/// The search. `Lanes<Tables>` looks up kCount neighbouring places side by side: it is constructed
/// from the tables, and `candidatesAt` returns one bit for each place, the lowest for the first.
template <template <typename> typename Lanes, typename Tables>
qsizetype findByTables(const Tables& tables, const char* text, qsizetype blockCount,
                       quint16* offsets) {
    const Lanes<Tables> lanes(tables);
    quint16* end = offsets;
    for (qsizetype base = 0; base < blockCount * kCandidateBlockSize; base += kCandidateBlockSize) {
        quint64 mask = 0;
        for (qsizetype lane = 0; lane < kCandidateBlockSize; lane += Lanes<Tables>::kCount) {
            mask |= lanes.candidatesAt(text + base + lane) << lane;
        }
        end = appendOffsets(mask, base, end);
    }
    return end - offsets;
}

template <template <typename> typename Lanes>
qsizetype findCandidates(Candidates candidates, const char* text, qsizetype blockCount,
                         quint16* offsets) {
    switch (candidates) {
    case Candidates::Header:
        return findByTables<Lanes>(kHeader, text, blockCount, offsets);
    case Candidates::Swift:
        return findByTables<Lanes>(kSwift, text, blockCount, offsets);
    case Candidates::ObjectiveC:
        break;
    }
    return findByTables<Lanes>(kObjectiveC, text, blockCount, offsets);
}

} // namespace navrel::candidatetables
