#include "app/DeviceFacts.h"

#include "app/DeviceLink.h"

#include <array>
#include <pwd.h>

namespace navrel {

ProgramFacts::Device deviceFacts(const DeviceLink& link) {
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

QString nameOfUser(qint64 user) {
    // An entry that does not fit is one without a name.
    constexpr std::size_t kLongestEntry = 16'384;
    if (user < 0) {
        return {};
    }
    std::array<char, kLongestEntry> buffer;
    passwd entry = {};
    passwd* found = nullptr;
    const int failure =
        ::getpwuid_r(static_cast<uid_t>(user), &entry, buffer.data(), buffer.size(), &found);
    return failure == 0 && found != nullptr ? QString::fromLocal8Bit(entry.pw_name)
                                            : QString::number(user);
}

} // namespace navrel
