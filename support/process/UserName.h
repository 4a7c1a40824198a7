#pragma once

#include <QString>

namespace navrel {

/// The name of a user (by its number) on this machine, or the number as text if the system has no
/// name for it. Empty for a negative number, which means an unknown user. May read files. Any
/// thread.
QString nameOfUser(qint64 user);

} // namespace navrel
