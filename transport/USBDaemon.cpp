#include "transport/USBDaemon.h"

#include "support/Log.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace navrel {

namespace {

constexpr char kAddressVariable[] = "USBMUXD_SOCKET_ADDRESS";
const QString kDefaultPath = QStringLiteral("/var/run/usbmuxd");
const QString kPathPrefix = QStringLiteral("UNIX:");
const QString kLocalHost = QStringLiteral("localhost");

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

using AddressList = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

/// The address that a host's number and a port stand for; null for a name. Nobody is asked for
/// names: their servers may take half a minute to say nothing, and nothing else runs meanwhile.
AddressList numericAddress(const QString& host, const QString& port) {
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    const QByteArray number = host == kLocalHost ? QByteArrayLiteral("127.0.0.1") : host.toUtf8();
    if (::getaddrinfo(number.constData(), port.toUtf8().constData(), &wanted, &found) != 0) {
        found = nullptr;
    }
    return {found, ::freeaddrinfo};
}

OwnedDescriptor connectToHost(const QString& host, const QString& port) {
    const AddressList address = numericAddress(host, port);
    if (!address) {
        errno = EHOSTUNREACH;
        return {};
    }
    return connected(makeStreamSocket(address->ai_family), address->ai_addr, address->ai_addrlen);
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
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']'))) {
        host = host.sliced(1, host.size() - 2);
    }
    const QString port = text.sliced(colon + 1);
    if (host.isEmpty() || !isPort(port) || !numericAddress(host, port)) {
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
        log(QStringLiteral("Ignoring %1: neither \"UNIX:\" and a path nor the number of a host "
                           "(or \"localhost\") and a port: %2")
                .arg(QLatin1String(kAddressVariable), text));
    }
    return address.value_or(standard);
}

OwnedDescriptor USBDaemonSocket::openStream() {
    return address_.path.isEmpty() ? connectToHost(address_.host, address_.port)
                                   : connectToPath(address_.path);
}

} // namespace navrel
