#pragma once

#include <cstddef>

namespace navrel {

// The limits of property lists. All are far beyond real lists (project files nest 5 levels deep and
// reach 3.2 MB), and keep a hostile one from exhausting the stack or the memory.

/// Levels of arrays and dictionaries. Values are walked by recursion: with this many levels, that
/// fits well into the smallest stack of a thread.
inline constexpr int kMaxPropertyListDepth = 512;

/// Values of one list that is read into QVariants, which take some 100 bytes each. An array that a
/// binary list shares counts in each of its places, since a caller that walks the result meets it
/// there. A project file of 20 MB has half as many.
inline constexpr std::size_t kMaxPropertyListValues = 1'000'000;

/// Values, including keys, of one list that is read into a PropertyListDocument, which take 8 bytes
/// each: 14 times those of the largest project file, which has one for every 11 bytes.
inline constexpr std::size_t kMaxPropertyListNodes = std::size_t{4} << 20;

/// Bytes of one list: 80 times the largest project file. Nodes keep positions in 32 bits and
/// lengths in 29.
inline constexpr std::size_t kMaxPropertyListBytes = std::size_t{256} << 20;

} // namespace navrel
