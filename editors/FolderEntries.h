#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

#include <functional>

namespace navrel {

/// Folders are looked through once a second. Temporary ones hold hundreds of entries, and no user
/// keeps a project among more files than this: entries beyond that are not seen.
inline constexpr int kMaximumFolderEntries = 50'000;

/// How looking through a folder ended.
enum class FolderEnd {
    Reached,  ///< everything was seen; also of a folder that cannot be read, which has nothing
    Stopped,  ///< `visit` had seen enough
    TooLarge, ///< more than `kMaximumFolderEntries`
    Overdue,  ///< the deadline passed first
};

/// Calls `visit` with the name of each entry of a folder, in no certain order, while it returns
/// true. The deadline is looked at between two entries: one call that hangs in the file system is
/// not cut short. Any thread.
FolderEnd forEachFolderEntry(const QByteArray& folder, const QDeadlineTimer& deadline,
                             const std::function<bool(const QByteArray& name)>& visit);

} // namespace navrel
