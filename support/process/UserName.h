#pragma once

#include <QString>

namespace navrel {

/// What a user is called on this machine; the number where the system has no name for it. Empty for
/// a negative number, which stands for an unknown user. May read the system's files.
QString nameOfUser(qint64 user);

} // namespace navrel
