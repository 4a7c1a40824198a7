#pragma once

#include "support/core/Clock.h"
#include "transport/usb/daemon/KeptUSBStream.h"
#include "transport/usb/daemon/USBDaemonSocket.h"

#include <QFileSystemWatcher>

#include <chrono>
#include <memory>
#include <vector>

namespace navrel {

/// Makes a daemon that comes and goes look like one that always runs: the real one starts when the
/// first device is plugged in and ends when the last is unplugged, and leaves its socket's file.
///
/// A stream of the keeper is one end of a pair of sockets; the keeper serves the other end
/// (KeptUSBStream.h). So the program's streams end only when a daemon that always runs would end
/// them, and `openStream` fails only if there are no more descriptors. While a listening stream has
/// no daemon, the keeper looks for one whenever the folder of the daemon's socket changes. It also
/// looks once a second: a daemon accepts a moment after its file appears, and one at a port has no
/// folder.
///
/// Streams end with the keeper. Main thread.
class USBDaemonKeeper final : public USBDaemon {
public:
    /// How long the daemon may take to reply. Normally it takes milliseconds, even if it has to ask
    /// a device. One that hangs never replies, and nothing else is tried before it is given up.
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
