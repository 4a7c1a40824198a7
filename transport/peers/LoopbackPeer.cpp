#include "transport/peers/LoopbackPeer.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QFile>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

namespace navrel {

namespace {

/// A row's fields, as the header of the tables names them.
enum Field : qsizetype {
    kLocalAddress = 1,
    kRemoteAddress = 2,
    kState = 3,
    kUser = 7,
    kInode = 9,
    kFieldCount = 10,
};

const QByteArray kListening = QByteArrayLiteral("0A");

/// An end of a connection as the two tables write it: words of the machine's byte order for what is
/// in network byte order, so that 127.0.0.1 is 0100007F on most. An IPv4 address in the table of
/// IPv6 stands behind a prefix.
struct EndTexts {
    explicit EndTexts(const sockaddr_in& address)
        : EndTexts(address.sin_addr.s_addr, ntohs(address.sin_port),
                   QByteArray(16, '0') + word(htonl(0xFFFF))) {}

    /// Any address with that port.
    static EndTexts wildcard(quint16 port) { return {0, port, QByteArray(24, '0')}; }

    bool contains(const QByteArray& text) const { return text == inIPv4 || text == inIPv6; }

    QByteArray inIPv4;
    QByteArray inIPv6;

private:
    EndTexts(quint32 address, quint16 port, const QByteArray& prefix)
        : inIPv4(word(address) + ':' +
                 QByteArray::number(port, 16).toUpper().rightJustified(4, '0')),
          inIPv6(prefix + inIPv4) {}

    static QByteArray word(quint32 value) {
        return QByteArray::number(value, 16).toUpper().rightJustified(8, '0');
    }
};

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

std::optional<uid_t> ownerOfPeer(QByteArrayView tables, const sockaddr_in& local,
                                 const sockaddr_in& peer) {
    const EndTexts localEnd(local);
    const EndTexts peerEnd(peer);
    const EndTexts anyPeerEnd = EndTexts::wildcard(ntohs(peer.sin_port));
    std::optional<uid_t> listener;
    for (const QByteArray& line : tables.toByteArray().split('\n')) {
        const QByteArrayList fields = line.simplified().split(' ');
        bool isNumber = false;
        const uid_t user = fields.value(kUser).toUInt(&isNumber);
        if (fields.size() < kFieldCount || !isNumber) {
            continue;
        }
        const QByteArray& address = fields[kLocalAddress];
        if (fields[kState] == kListening) {
            const bool isExact = peerEnd.contains(address);
            if (isExact || (!listener && anyPeerEnd.contains(address))) {
                listener = user;
            }
        } else if (peerEnd.contains(address) && localEnd.contains(fields[kRemoteAddress]) &&
                   fields[kInode] != "0") { // without an inode nobody owns it
            return user;
        }
    }
    return listener;
}

std::optional<uid_t> ownerOfPeer(int socket) {
    sockaddr_in local = {};
    sockaddr_in peer = {};
    socklen_t localLength = sizeof local;
    socklen_t peerLength = sizeof peer;
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&local), &localLength) != 0 ||
        ::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &peerLength) != 0) {
        return std::nullopt;
    }
    return ownerOfPeer(contentsOf(QStringLiteral("/proc/net/tcp")) +
                           contentsOf(QStringLiteral("/proc/net/tcp6")),
                       local, peer);
}

LoopbackPeer loopbackPeer(int socket) {
    return {ownerOfPeer(socket), hasPeerEnded(socket)};
}

bool hasPeerEnded(int socket) {
    pollfd descriptor = {socket, POLLRDHUP, 0};
    return ::poll(&descriptor, 1, 0) > 0 && (descriptor.revents & (POLLRDHUP | POLLHUP)) != 0;
}

} // namespace navrel
