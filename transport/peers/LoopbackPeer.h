#pragma once

#include <QByteArrayView>

#include <netinet/in.h>
#include <optional>
#include <sys/types.h>

namespace navrel {

/// Whom a connection to the loopback address has reached: any local user may listen there.
struct LoopbackPeer {
    std::optional<uid_t> owner; ///< nothing when nobody is known to own the peer's socket
    bool hasEnded = false;      ///< the peer had ended the connection when its owner was looked for
};

/// The peer of a connected socket, from the kernel's tables of now.
LoopbackPeer loopbackPeer(int socket);

/// The user who owns the peer's socket, as the kernel's tables of TCP sockets (/proc/net/tcp and
/// tcp6, in any order) have it. That of the connection's own row, or, as long as the peer has not
/// accepted the connection, when that row has no owner yet, that of the socket which listens.
/// Nothing when there is neither.
std::optional<uid_t> ownerOfPeer(QByteArrayView tables, const sockaddr_in& local,
                                 const sockaddr_in& peer);

/// The same for a connected socket, from the kernel's tables of now.
std::optional<uid_t> ownerOfPeer(int socket);

/// Whether the peer of a socket sends nothing more: it has ended the connection, or its half of it.
bool hasPeerEnded(int socket);

} // namespace navrel
