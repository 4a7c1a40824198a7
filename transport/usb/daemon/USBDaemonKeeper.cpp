#include "transport/usb/daemon/USBDaemonKeeper.h"

#include "support/core/MainThread.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <sys/socket.h>
#include <utility>

namespace navrel {

namespace {

constexpr std::chrono::seconds kLookInterval{1};

} // namespace

USBDaemonKeeper::USBDaemonKeeper(USBDaemonAddress address, std::chrono::milliseconds replyTimeout,
                                 Clock& clock)
    : daemon_(std::move(address)), replyTimeout_(replyTimeout), clock_(clock) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this] { lookForDaemon(); });
}

OwnedDescriptor USBDaemonKeeper::openStream() {
    NAVREL_ASSERT_MAIN_THREAD();
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return {};
    }
    OwnedDescriptor programEnd(ends[0]);
    streams_.push_back(
        KeptUSBStream::create(OwnedDescriptor(ends[1]), daemon_, clock_, replyTimeout_,
                              {[this] { daemonIsMissing(); }, [this] { dropEndedStreams(); }}));
    return programEnd;
}

void USBDaemonKeeper::daemonIsMissing() {
    watchFolder();
    if (!look_) {
        look_ = clock_.every(kLookInterval, [this] { lookForDaemon(); });
    }
}

void USBDaemonKeeper::lookForDaemon() {
    NAVREL_ASSERT_MAIN_THREAD();
    watchFolder();
    for (const auto& stream : streams_) {
        if (stream->isWaitingForDaemon()) {
            stream->reachDaemon();
        }
    }
    if (!isDaemonMissing()) {
        look_.reset();
    }
}

// The folder may come and go itself, and with it the watch.
void USBDaemonKeeper::watchFolder() {
    const QString& path = daemon_.address().path;
    if (!path.isEmpty() && watcher_.directories().isEmpty()) {
        const QString folder = QFileInfo(path).path();
        if (QFileInfo::exists(folder)) {
            watcher_.addPath(folder);
        }
    }
}

bool USBDaemonKeeper::isDaemonMissing() const {
    return std::any_of(streams_.begin(), streams_.end(),
                       [](const auto& stream) { return stream->isWaitingForDaemon(); });
}

void USBDaemonKeeper::dropEndedStreams() {
    std::erase_if(streams_, [](const auto& stream) { return stream->hasEnded(); });
    if (!isDaemonMissing()) {
        look_.reset();
    }
}

} // namespace navrel
