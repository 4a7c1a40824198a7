#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cstddef>

namespace navrel {

// How much the program stores, and how much of a store it loads. All records are kept in memory. A
// project with 45 MB of sources has 100,000 records, which take 15 MB as a file. One far larger is
// hostile, and a store beyond its limits was not written by this program.

/// Files and groups that the project has listed since it was selected: each has a record until its
/// file is gone.
inline constexpr std::size_t kMaximumObjects = 500'000;

/// File types, which are kept when the project changes. Real ones number in the dozens.
inline constexpr std::size_t kMaximumFiletypes = 10'000;

/// Shortcuts and elements of all files together.
inline constexpr std::size_t kMaximumShortcuts = 500'000;
inline constexpr std::size_t kMaximumElements = 1'000'000;

/// Records of one entity that a store may have when it is loaded.
inline constexpr std::size_t kMaximumStoredRecords = 2'000'000;
static_assert(std::max({kMaximumObjects, kMaximumFiletypes, kMaximumShortcuts, kMaximumElements}) <
                  kMaximumStoredRecords,
              "What the program stores it also loads");

/// Bytes of a store file. Larger ones are not opened, and no save makes one larger.
inline constexpr qint64 kMaximumStoreSize = qint64{512} * 1024 * 1024;

} // namespace navrel
