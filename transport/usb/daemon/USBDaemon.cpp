#include "transport/usb/daemon/USBDaemon.h"

#include "support/core/Log.h"

#include <QByteArray>
#include <QFile>
#include <QRegularExpression>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace navrel {

namespace {

constexpr char kAddressVariable[] = "USBMUXD_SOCKET_ADDRESS";
const QString kDefaultPath = QStringLiteral("/var/run/usbmuxd");
const QString kPathPrefix = QStringLiteral("UNIX:");
const QString kLocalHost = QStringLiteral("localhost");
const QString kAnyPort = QStringLiteral("1");
/// A host in the same network that has no listener says so in a few milliseconds; a caller on the
/// main thread can spare this much.
constexpr std::chrono::milliseconds kRefusalAtMost{100};

/// Non-blocking, so that a daemon which accepts nobody is a failure and never holds the caller.
OwnedDescriptor makeStreamSocket(int family) {
#ifdef __linux__
    return OwnedDescriptor(::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
#else
    OwnedDescriptor socket(::socket(family, SOCK_STREAM, 0));
    const int on = 1;
    if (socket.isValid()) {
        ::fcntl(socket.value(), F_SETFD, FD_CLOEXEC);
        ::fcntl(socket.value(), F_SETFL, O_NONBLOCK);
        ::setsockopt(socket.value(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    }
    return socket;
#endif
}

/// A connect that goes on by itself counts as made: its failure is that of the first transfer.
OwnedDescriptor connected(OwnedDescriptor socket, const sockaddr* address, socklen_t length) {
    if (socket.isValid() && ::connect(socket.value(), address, length) != 0 &&
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

OwnedDescriptor connectToPath(const QString& path) {
    const QByteArray bytes = QFile::encodeName(path);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (static_cast<size_t>(bytes.size()) >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return {};
    }
    std::memcpy(address.sun_path, bytes.constData(), static_cast<size_t>(bytes.size()));
    return connected(makeStreamSocket(AF_UNIX), reinterpret_cast<const sockaddr*>(&address),
                     sizeof address);
}

/// "localhost" as its number: nobody need be asked.
QString hostNumber(const QString& host) {
    return host == kLocalHost ? QStringLiteral("127.0.0.1") : host;
}

/// Letters, digits, "-", "_" and ".", as hosts have them in their names.
bool isHostName(const QString& host) {
    static const QRegularExpression kHostName(QStringLiteral("\\A(?!\\.)[A-Za-z0-9._-]{1,253}\\z"));
    static const QRegularExpression kOnlyDigits(QStringLiteral("\\A[0-9.]*\\z"));
    return kHostName.match(host).hasMatch() && !kOnlyDigits.match(host).hasMatch();
}

bool isPort(const QString& text) {
    bool isNumber = false;
    return text.toUShort(&isNumber) > 0 && isNumber;
}

} // namespace

std::optional<USBDaemonAddress> USBDaemonAddress::fromText(const QString& text) {
    if (text.startsWith(kPathPrefix)) {
        const QString path = text.sliced(kPathPrefix.size());
        return path.isEmpty() ? std::nullopt : std::optional(USBDaemonAddress{path, {}, {}});
    }
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'));
    QString host = text.first(qMax<qsizetype>(colon, 0));
    const bool isBracketed = host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']'));
    if (isBracketed) {
        host = host.sliced(1, host.size() - 2);
    }
    const QString port = text.sliced(colon + 1);
    const bool isHost = numericAddress(host, kAnyPort) || (!isBracketed && isHostName(host));
    if (host.isEmpty() || !isPort(port) || !isHost) {
        return std::nullopt;
    }
    return USBDaemonAddress{{}, host, port};
}

USBDaemonAddress USBDaemonAddress::fromEnvironment() {
    const USBDaemonAddress standard = {kDefaultPath, {}, {}};
    if (!qEnvironmentVariableIsSet(kAddressVariable)) {
        return standard;
    }
    const QString text = qEnvironmentVariable(kAddressVariable);
    const auto address = fromText(text);
    if (!address) {
        log(QStringLiteral("Ignoring %1: neither \"UNIX:\" and a path nor a host and a port: "
                           "%2")
                .arg(QLatin1String(kAddressVariable), text));
    }
    return address.value_or(standard);
}

USBDaemonSocket::USBDaemonSocket(USBDaemonAddress address) : address_(std::move(address)) {
    if (address_.path.isEmpty() && !numericAddress(hostNumber(address_.host), address_.port)) {
        lookup_ = std::make_unique<HostLookup>(address_.host, address_.port);
    }
}

OwnedDescriptor USBDaemonSocket::openStream() {
    return address_.path.isEmpty() ? connectToHost() : connectToPath(address_.path);
}

// The first address that does not fail at once, or within a moment while there is another to try.
OwnedDescriptor USBDaemonSocket::connectToHost() {
    const std::vector<SocketAddress> addresses = hostAddresses();
    OwnedDescriptor socket;
    errno = EHOSTUNREACH;
    for (const SocketAddress& address : addresses) {
        socket =
            connected(makeStreamSocket(address.storage.ss_family), address.get(), address.length);
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
