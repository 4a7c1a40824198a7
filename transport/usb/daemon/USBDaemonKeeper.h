#pragma once

#include "support/core/Clock.h"
#include "transport/usb/daemon/KeptUSBStream.h"
#include "transport/usb/daemon/USBDaemonSocket.h"

#include <QFileSystemWatcher>

#include <chrono>
#include <memory>
#include <vector>

namespace navrel {

/// A daemon that is always there, made of one that comes and goes: the real one starts with the
/// first device plugged in and ends with the last one unplugged, leaving its socket's file behind.
///
/// A stream of the keeper is one end of a pair of sockets; the keeper serves the other end
/// (KeptUSBStream.h). So whatever the daemon does, the program's streams end only where a daemon
/// that always runs would end them, and `openStream` fails only for want of descriptors. While a
/// listening stream has no daemon, one is looked for whenever something changes in the folder of
/// the daemon's socket, and once a second, since it takes a moment from the file to a daemon that
/// accepts, and a daemon at a port has no folder.
///
/// Streams end with the keeper. Main thread.
class USBDaemonKeeper final : public USBDaemon {
public:
    /// How long the daemon may take for a reply. A device, and with it the daemon, answers within
    /// milliseconds; one that has hung never does, and until it is given up nothing else is tried.
    static constexpr std::chrono::seconds kReplyTimeout{5};

    /// The clock must outlive the keeper.
    explicit USBDaemonKeeper(USBDaemonAddress address,
                             std::chrono::milliseconds replyTimeout = kReplyTimeout,
                             Clock& clock = systemClock());
    USBDaemonKeeper(const USBDaemonKeeper&) = delete;
    USBDaemonKeeper& operator=(const USBDaemonKeeper&) = delete;

    OwnedDescriptor openStream() override;
    bool isThere() const override { return !isDaemonMissing(); }

private:
    void daemonIsMissing();
    void lookForDaemon();
    void watchFolder();
    bool isDaemonMissing() const;
    void dropEndedStreams();

    USBDaemonSocket daemon_;
    const std::chrono::milliseconds replyTimeout_;
    Clock& clock_;
    std::unique_ptr<ScheduledCall> look_; ///< runs while a listening stream has no daemon
    QFileSystemWatcher watcher_;
    std::vector<std::shared_ptr<KeptUSBStream>> streams_;
};

} // namespace navrel
