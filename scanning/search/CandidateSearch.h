#pragma once

#include <QtGlobal>

/// Finds the candidates: the places of a text where a scan rule may match, by the first bytes of
/// each rule. A `CandidateSearch` compares two or three bytes, at many places at once;
/// `keepLikelyCandidates` then compares four bytes at the places that are left. All functions are
/// pure; any thread.
namespace navrel {

/// Which rules the candidates are for. Letter case does not count. A search may also return a few
/// places where no rule begins, since it looks bytes up by their halves.
enum class Candidates {
    /// A sign before a blank or an opening bracket (methods), "@p" and "@d" (properties), "#p" and
    /// "#w" (marks and warnings), "//" (marks, warnings, shortcuts).
    ObjectiveC,
    /// As ObjectiveC, and "@i" for the superclass.
    Header,
    /// "cla", "fun", "var", "let" (declarations), "#p", "#w", "//".
    Swift,
};

/// Texts are searched in blocks of this many bytes.
inline constexpr qsizetype kCandidateBlockSize = 64;
/// How many bytes after a place are read to decide whether it is a candidate.
inline constexpr qsizetype kCandidateLookahead = 3;
/// How many offsets a search may write beyond those that it found.
inline constexpr qsizetype kCandidateSurplus = 2;

/// Writes the offsets in `text` of all candidates in its first `blockCount` blocks, in ascending
/// order, and returns their number. Reads `kCandidateLookahead` bytes past the last block.
/// `offsets` must have room for every byte of the blocks and `kCandidateSurplus` more: what is
/// written there is meaningless. An offset must fit 16 bits, so `blockCount` must be at most 1024.
using CandidateSearch = qsizetype (*)(Candidates candidates, const char* text, qsizetype blockCount,
                                      quint16* offsets);

/// Removes from `offsets` the places whose four bytes begin no rule, and returns how many of the
/// `count` are left. Reads `kCandidateLookahead` bytes past each place.
qsizetype keepLikelyCandidates(Candidates candidates, const char* text, quint16* offsets,
                               qsizetype count);

/// Returns the fastest search that this processor can run.
CandidateSearch fastestCandidateSearch();

/// The search without vector instructions.
qsizetype findCandidatesPortably(Candidates candidates, const char* text, qsizetype blockCount,
                                 quint16* offsets);

#if defined(NAVREL_X86_SEARCHES)
/// The searches with the vector instructions of x86-64 processors since 2006 and since 2013. The
/// processor must have them; on others the program is ended by an illegal instruction.
qsizetype findCandidatesWithSSSE3(Candidates candidates, const char* text, qsizetype blockCount,
                                  quint16* offsets);
qsizetype findCandidatesWithAVX2(Candidates candidates, const char* text, qsizetype blockCount,
                                 quint16* offsets);
#endif

} // namespace navrel
