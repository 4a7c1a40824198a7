#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QtGlobal>

#include <chrono>
#include <netinet/in.h>

namespace navrel {

// TCP sockets over IPv4. A function that fails sets errno. Ports and addresses are in host byte
// order. Programs that this one starts do not inherit the sockets. Any thread.

sockaddr_in IPv4SocketAddress(quint16 port, quint32 IPv4Address);

/// Makes a blocking stream socket; invalid on failure.
OwnedDescriptor makeIPv4StreamSocket();

/// Connects a socket, and makes it non-blocking. Blocks until it is connected (true) or not (false,
/// with ETIMEDOUT after `atMost`).
bool connectBlocking(int socket, const sockaddr_in& address, std::chrono::milliseconds atMost);

/// Makes a non-blocking socket that listens with a backlog of 512; invalid on failure.
OwnedDescriptor makeListeningSocket(const sockaddr_in& address);

/// Accepts one connection and fills in the peer's address and its length; invalid on failure.
OwnedDescriptor acceptConnection(int serverSocket, sockaddr_in& address, socklen_t& addressLength);

bool makeNonBlocking(int descriptor);

/// Sets the options of a connection: no signal when the peer is gone (SO_NOSIGPIPE, where the
/// system has it), and no delay of small writes (TCP_NODELAY). Failures are ignored.
void setConnectionOptions(int socket);

} // namespace navrel
