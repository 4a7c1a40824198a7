#pragma once

#include "support/core/Error.h"

#include <QByteArray>

#include <optional>

namespace navrel {

/// Creates the store's folder, and those above it, so that only the user has access, whatever the
/// umask. If the folder exists, removes the access of others; errors of that are ignored: then the
/// folder is another user's, or its file system has no permissions.
std::optional<Error> makeStoreFolder(const QByteArray& path);

/// Removes the access of others to a file or folder. Errors are ignored.
void keepFromOthers(const QByteArray& path);

/// Renames the file or folder at a path to an unused name beside it. Returns the new path; empty if
/// nothing was there, nil if it could not be renamed.
std::optional<QByteArray> moveAside(const QByteArray& path);

} // namespace navrel
