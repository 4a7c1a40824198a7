#pragma once

#include <cstddef>

namespace navrel {

// What a property list may ask for. All of it is far beyond what real lists hold (project files
// nest 5 deep and reach 3.2 MB), and keeps a made-up one from taking the stack or the memory.

/// Arrays and dictionaries within one another. Values are walked by recursion, which this many
/// levels keep well within the smallest stack of a thread.
inline constexpr int kMaxPropertyListDepth = 512;

/// Values of one list that is read into QVariants, of which each takes some 100 bytes; counted as
/// they unfold: a shared array of a binary list counts wherever it stands, since a caller that
/// walks the result meets it there. A project file of 20 MB has half as many.
inline constexpr std::size_t kMaxPropertyListValues = 1'000'000;

/// Values of one list that is read into a PropertyListDocument, keys included, of which each takes
/// 8 bytes: 14 times the largest project file, which has one for every 11 bytes.
inline constexpr std::size_t kMaxPropertyListNodes = std::size_t{4} << 20;

/// Bytes of one list: 80 times the largest project file. Nodes keep positions in 32 bits and
/// lengths in 29.
inline constexpr std::size_t kMaxPropertyListBytes = std::size_t{256} << 20;

} // namespace navrel
