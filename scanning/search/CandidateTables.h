#pragma once

#include "scanning/search/CandidateSearch.h"

#include <QtGlobal>

/// What the searches for candidates have in common: the beginnings of the rules, and their form.
///
/// Each beginning has a bit. A byte is looked up by its halves, as vector instructions look up in
/// tables of sixteen: it has the bits that both halves have. A place is a candidate where a bit is
/// common to its byte and the next two.
namespace navrel::candidatetables {

/// The bits of the beginnings that allow a byte at one position, by its halves.
struct Position {
    alignas(16) quint8 low[16];
    alignas(16) quint8 high[16];
};

/// The positions that decide: two or three.
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

/// Each beginning tells the bytes that it allows at each position, in ASCII.
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

/// Appends the places of the mask's bits. Most masks have few, so the first ones are written
/// without asking whether they are there: the processor would guess wrong at many a block.
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

/// `Lanes<Tables>` are neighbouring places, looked up side by side. Made from tables, they give a
/// bit a candidate for the places at a text, the first place's lowest.
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
