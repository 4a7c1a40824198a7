#include "transport/usb/daemon/USBDaemonSocket.h"

#include "support/core/MainThread.h"
#include "support/sockets/NonBlockingSocket.h"

#include <QFile>

#include <cerrno>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>

namespace navrel {

namespace {

/// A host in the same network that has no listener says so in a few milliseconds; a caller on the
/// main thread can spare this much.
constexpr std::chrono::milliseconds kRefusalAtMost{100};

/// "localhost" as its number: nobody need be asked.
QString hostNumber(const QString& host) {
    return host == QStringLiteral("localhost") ? QStringLiteral("127.0.0.1") : host;
}

/// A connect that goes on by itself counts as made: its failure is that of the first transfer.
OwnedDescriptor connected(const SocketAddress& address) {
    OwnedDescriptor socket = makeNonBlockingSocket(address.storage.ss_family, SOCK_STREAM);
    if (socket.isValid() && ::connect(socket.value(), address.get(), address.length) != 0 &&
        errno != EINPROGRESS) {
        return {};
    }
    return socket;
}

/// Whether a connect that goes on by itself ends with an error within kRefusalAtMost.
bool failsSoon(const OwnedDescriptor& socket) {
    pollfd answer = {socket.value(), POLLOUT, 0};
    ::poll(&answer, 1, static_cast<int>(kRefusalAtMost.count()));
    int error = 0;
    socklen_t length = sizeof error;
    ::getsockopt(socket.value(), SOL_SOCKET, SO_ERROR, &error, &length);
    errno = error;
    return error != 0;
}

} // namespace

USBDaemonSocket::USBDaemonSocket(USBDaemonAddress address) : address_(std::move(address)) {
    if (address_.path.isEmpty() && !numericAddress(hostNumber(address_.host), address_.port)) {
        lookup_ = std::make_unique<HostLookup>(address_.host, address_.port);
    }
}

OwnedDescriptor USBDaemonSocket::openStream() {
    NAVREL_ASSERT_MAIN_THREAD();
    return address_.path.isEmpty() ? connectToHost()
                                   : connectToUnixSocket(QFile::encodeName(address_.path));
}

// The first address that does not fail at once, or within a moment while there is another to try.
OwnedDescriptor USBDaemonSocket::connectToHost() {
    const std::vector<SocketAddress> addresses = hostAddresses();
    OwnedDescriptor socket;
    errno = EHOSTUNREACH;
    for (const SocketAddress& address : addresses) {
        socket = connected(address);
        const bool isLast = &address == &addresses.back();
        if (socket.isValid() && (isLast || !failsSoon(socket))) {
            break;
        }
        socket = {};
    }
    return socket;
}

std::vector<SocketAddress> USBDaemonSocket::hostAddresses() {
    if (lookup_) {
        return lookup_->addresses();
    }
    const auto address = numericAddress(hostNumber(address_.host), address_.port);
    return address ? std::vector{*address} : std::vector<SocketAddress>();
}

} // namespace navrel
