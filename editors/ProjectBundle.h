#pragma once

#include <QByteArray>

namespace navrel {

/// The project that a file (an absolute path) belongs to: the .xcodeproj bundle in the nearest
/// folder, at or above the file's own, that holds exactly one. Empty when there is none. Folders
/// that cannot be read hold none, and neither do those with more than `kMaximumFolderEntries`
/// entries. Reads the file system. Any thread.
QByteArray nearestProjectBundle(const QByteArray& filePath);

/// Looked through once a second; no one keeps a project among more files in one folder.
inline constexpr int kMaximumFolderEntries = 50'000;

} // namespace navrel
