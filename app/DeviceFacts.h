#pragma once

#include "app/ProgramFacts.h"

namespace navrel {

class DeviceLink;

/// What is the case with the device, as the link sees it; without the time since when it is
/// connected, which the link does not keep. Asks nobody, and never blocks. Main thread.
ProgramFacts::Device deviceFacts(const DeviceLink& link);

} // namespace navrel
