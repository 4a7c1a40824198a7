#pragma once

#include "app/ProgramFacts.h"

namespace navrel {

class DeviceLink;

/// What is the case with the device, as the link sees it; without the time since when it is
/// connected, which the link does not keep. Asks nobody, and never blocks. Main thread.
ProgramFacts::Device deviceFacts(const DeviceLink& link);

/// What a user is called on this machine; the number where the system has no name for it. Empty for
/// a negative number, which stands for an unknown user. May read the system's files.
QString nameOfUser(qint64 user);

} // namespace navrel
