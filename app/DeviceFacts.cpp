#include "app/DeviceFacts.h"

#include "app/DeviceLink.h"
#include "support/core/MainThread.h"
#include "support/process/UserName.h"

namespace navrel {

ProgramFacts::Device deviceFacts(const DeviceLink& link) {
    NAVREL_ASSERT_MAIN_THREAD();
    using State = ProgramFacts::Device::State;
    ProgramFacts::Device device;
    switch (link.state()) {
    case LinkState::connectedToDevice:
    case LinkState::connectedToSimulator:
        device.state = State::connected;
        device.isSimulator = link.state() == LinkState::connectedToSimulator;
        return device;
    case LinkState::reachingDevice:
        device.state = State::silent;
        return device;
    case LinkState::idle:
        break;
    }
    if (!link.refusedUsers().empty()) {
        device.state = State::refused;
        device.user = nameOfUser(*link.refusedUsers().rbegin());
    } else if (!link.isUSBDaemonThere()) {
        device.state = State::noDaemon;
    }
    return device;
}

} // namespace navrel
