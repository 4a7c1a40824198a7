#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QByteArray>
#include <QByteArrayView>

#include <sys/socket.h>

namespace navrel {

// Sockets that never hold the caller. Any thread. A failure sets errno.

/// A socket of a family and type, closed in the programs that this one starts. Invalid on failure.
OwnedDescriptor makeNonBlockingSocket(int family, int type);

/// One that is connected to the Unix socket of a name: a path, or on Linux a NUL and an abstract
/// name. Invalid on failure, which is EAGAIN where the listener's queue is full.
OwnedDescriptor connectToUnixSocket(const QByteArray& name, int type = SOCK_STREAM);

/// Sends what the socket takes at once, without SIGPIPE, also where the socket may block. The
/// number of bytes, or -1.
ssize_t sendWithoutWaiting(int socket, QByteArrayView bytes);

} // namespace navrel
