#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QtGlobal>

#include <chrono>
#include <netinet/in.h>

namespace navrel {

// TCP sockets over IPv4. Each function leaves errno set when it fails. Ports and addresses are in
// host byte order. All sockets are closed in the programs that this one starts.

sockaddr_in IPv4SocketAddress(quint16 port, quint32 IPv4Address);

/// A blocking stream socket; invalid on failure.
OwnedDescriptor makeIPv4StreamSocket();

/// Connects, and returns once the connection is made or refused, or with ETIMEDOUT. The socket is
/// non-blocking afterwards.
bool connectBlocking(int socket, const sockaddr_in& address, std::chrono::milliseconds atMost);

/// A non-blocking socket that listens with a backlog of 512; invalid on failure.
OwnedDescriptor makeListeningSocket(const sockaddr_in& address);

/// Accepts one connection and fills in the peer's address and its length; invalid on failure.
OwnedDescriptor acceptConnection(int serverSocket, sockaddr_in& address, socklen_t& addressLength);

bool makeNonBlocking(int descriptor);

/// What every connection gets: no signal when the peer is gone, and frames that leave at once
/// instead of waiting for the peer to acknowledge the one before. Failures do not matter.
void setConnectionOptions(int socket);

} // namespace navrel
