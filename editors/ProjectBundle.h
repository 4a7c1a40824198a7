#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

#include <optional>

namespace navrel {

/// The project that a file (an absolute path) belongs to: the .xcodeproj bundle in the nearest
/// folder, at or above the file's own, that holds exactly one. Empty when there is none. Folders
/// that cannot be read hold none, and neither do those with more than `kMaximumFolderEntries`
/// entries. Nil when the deadline passed first: folders can be slow. Reads the file system. Any
/// thread.
std::optional<QByteArray> nearestProjectBundle(const QByteArray& filePath,
                                               const QDeadlineTimer& deadline);

} // namespace navrel
