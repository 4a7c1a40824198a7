#pragma once

#include <QByteArrayView>

#include <netinet/in.h>
#include <optional>
#include <sys/types.h>

namespace navrel {

/// The peer of a connection to the loopback address, where any local user may listen.
struct LoopbackPeer {
    std::optional<uid_t> owner; ///< nothing when nobody is known to own the peer's socket
    bool hasEnded = false;      ///< the peer had ended the connection when its owner was looked for
};

/// The peer of a connected socket, from the kernel's current tables.
LoopbackPeer loopbackPeer(int socket);

/// The user who owns the peer's socket, from the kernel's tables of TCP sockets (/proc/net/tcp and
/// tcp6, in any order): the owner of the connection's row or, if the peer has not accepted the
/// connection yet and that row has no owner, the owner of the listening socket. Nil if there is
/// neither. Pure.
std::optional<uid_t> ownerOfPeer(QByteArrayView tables, const sockaddr_in& local,
                                 const sockaddr_in& peer);

/// As above for a connected socket, from the kernel's current tables.
std::optional<uid_t> ownerOfPeer(int socket);

/// Whether the peer of a socket has ended the connection, or its half of it.
bool hasPeerEnded(int socket);

} // namespace navrel
