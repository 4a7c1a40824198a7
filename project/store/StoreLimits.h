#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cstddef>

namespace navrel {

// How much the program stores, and how much of a store it takes in again. All records are kept in
// memory. A project with 45 MB of sources has 100,000 records, which take 15 MB as a file; what is
// far beyond that was made to be. What is beyond the bounds of a store was not made by this
// program.

/// Files and groups of the project, and of what it listed since it was selected: each has a record
/// until its file is gone.
inline constexpr std::size_t kMaximumObjects = 500'000;

/// File types, which are kept when the project changes. Real ones number in the dozens.
inline constexpr std::size_t kMaximumFiletypes = 10'000;

/// Shortcuts and elements of all files together.
inline constexpr std::size_t kMaximumShortcuts = 500'000;
inline constexpr std::size_t kMaximumElements = 1'000'000;

/// Records of one entity in a store.
inline constexpr std::size_t kMaximumStoredRecords = 2'000'000;
static_assert(std::max({kMaximumObjects, kMaximumFiletypes, kMaximumShortcuts, kMaximumElements}) <
                  kMaximumStoredRecords,
              "What the program stores it also loads");

/// Bytes of a store. No save makes the file larger.
inline constexpr qint64 kMaximumStoreSize = qint64{512} * 1024 * 1024;

} // namespace navrel
