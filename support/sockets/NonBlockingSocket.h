#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QByteArray>
#include <QByteArrayView>

#include <sys/socket.h>

namespace navrel {

// Sockets that never block the caller. A function that fails sets errno. Any thread.

/// Makes a socket of a family and type, which programs that this one starts do not inherit. Invalid
/// on failure.
OwnedDescriptor makeNonBlockingSocket(int family, int type);

/// Makes a socket that is connected to the Unix socket at a path or, on Linux, of an abstract name,
/// which begins with a NUL byte. Invalid on failure: EAGAIN if the listener's queue is full.
OwnedDescriptor connectToUnixSocket(const QByteArray& name, int type = SOCK_STREAM);

/// Sends what the socket takes at once, without SIGPIPE, even if the socket is a blocking one.
/// Returns the number of bytes sent, or -1.
ssize_t sendWithoutWaiting(int socket, QByteArrayView bytes);

} // namespace navrel
