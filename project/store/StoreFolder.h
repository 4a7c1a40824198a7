#pragma once

#include "support/core/Error.h"

#include <QByteArray>

#include <optional>

namespace navrel {

/// Makes the store's folder, and those above it, whatever the umask for the user alone; takes the
/// rights of others from one that is there. Errors of the latter do not matter: the folder is
/// another user's then, or on a file system without rights.
std::optional<Error> makeStoreFolder(const QByteArray& path);

/// Takes the rights of others from a file or folder, where they have any.
void keepFromOthers(const QByteArray& path);

/// Gives what lies at a path, if anything does, a name beside it that nothing has. The new path; an
/// empty one where nothing was there, nil where it could not be renamed.
std::optional<QByteArray> moveAside(const QByteArray& path);

} // namespace navrel
