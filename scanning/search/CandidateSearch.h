#pragma once

#include <QtGlobal>

/// Finding the places of a text where a rule may match, by the first bytes of each rule: by two or
/// three of them for many places at once, then by four for the few places that this leaves.
namespace navrel {

/// Whose rules are looked for. Letter case does not count; a few other places come along, since
/// bytes are looked up by halves.
enum class Candidates {
    /// A sign before a blank or an opening bracket (methods), "@p" and "@d" (properties), "#p" and
    /// "#w" (marks and warnings), "//" (marks, warnings, shortcuts).
    ObjectiveC,
    /// The same, and "@i" for the superclass.
    Header,
    /// "cla", "fun", "var", "let" (declarations), "#p", "#w", "//".
    Swift,
};

/// Texts are searched in blocks of this many places.
inline constexpr qsizetype kCandidateBlockSize = 64;
/// The bytes behind a place that decide with it.
inline constexpr qsizetype kCandidateLookahead = 3;
/// A search may write this many offsets more than it finds.
inline constexpr qsizetype kCandidateSurplus = 2;

/// Writes the offsets of all candidates in the first `blockCount` blocks, in order, and returns how
/// many there are. Reads `kCandidateLookahead` bytes past the last block; writes up to
/// `kCandidateSurplus` offsets of no meaning behind the last.
using CandidateSearch = qsizetype (*)(Candidates candidates, const char* text, qsizetype blockCount,
                                      quint16* offsets);

/// Keeps the offsets, out of `count`, of the places where four bytes allow some rule to match, and
/// returns how many are left. Reads `kCandidateLookahead` bytes past each place.
qsizetype keepLikelyCandidates(Candidates candidates, const char* text, quint16* offsets,
                               qsizetype count);

/// With the best that this processor has.
CandidateSearch fastestCandidateSearch();

/// Without vector instructions.
qsizetype findCandidatesPortably(Candidates candidates, const char* text, qsizetype blockCount,
                                 quint16* offsets);

#if defined(NAVREL_X86_SEARCHES)
/// With those that x86-64 processors have since 2006 and 2013: only for one that has them.
qsizetype findCandidatesWithSSSE3(Candidates candidates, const char* text, qsizetype blockCount,
                                  quint16* offsets);
qsizetype findCandidatesWithAVX2(Candidates candidates, const char* text, qsizetype blockCount,
                                 quint16* offsets);
#endif

} // namespace navrel
