#include "support/sockets/IPv4Socket.h"

#include <QDeadlineTimer>

#include <cerrno>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace navrel {

namespace {

constexpr int kListenBacklog = 512;

bool setFlag(int socket, int level, int option) {
    const int on = 1;
    return ::setsockopt(socket, level, option, &on, sizeof on) == 0;
}

// Closed in the programs that other threads may be starting meanwhile: where the system can, from
// the very call that makes the socket.
#ifdef __linux__
int makeStreamSocket() {
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

int acceptOn(int serverSocket, sockaddr* address, socklen_t* length) {
    return ::accept4(serverSocket, address, length, SOCK_CLOEXEC);
}
#else
int closedOnExec(int descriptor) {
    if (descriptor >= 0) {
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
    return descriptor;
}

int makeStreamSocket() {
    return closedOnExec(::socket(AF_INET, SOCK_STREAM, 0));
}

int acceptOn(int serverSocket, sockaddr* address, socklen_t* length) {
    return closedOnExec(::accept(serverSocket, address, length));
}
#endif

const sockaddr* asSocketAddress(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

/// Waits for the outcome of a connect that is under way.
bool awaitConnection(int socket, std::chrono::milliseconds atMost) {
    const QDeadlineTimer deadline(atMost);
    pollfd descriptor = {socket, POLLOUT, 0};
    int ready = 0;
    do {
        ready = ::poll(&descriptor, 1, static_cast<int>(deadline.remainingTime()));
    } while (ready < 0 && errno == EINTR);
    if (ready == 0) {
        errno = ETIMEDOUT;
    }
    int outcome = 0;
    socklen_t length = sizeof outcome;
    if (ready <= 0 || ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &outcome, &length) != 0) {
        return false;
    }
    errno = outcome;
    return outcome == 0;
}

} // namespace

sockaddr_in IPv4SocketAddress(quint16 port, quint32 IPv4Address) {
    sockaddr_in address = {};
#ifdef __APPLE__
    address.sin_len = sizeof address;
#endif
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(IPv4Address);
    return address;
}

OwnedDescriptor makeIPv4StreamSocket() {
    return OwnedDescriptor(makeStreamSocket());
}

bool connectBlocking(int socket, const sockaddr_in& address, std::chrono::milliseconds atMost) {
    if (!makeNonBlocking(socket)) {
        return false;
    }
    if (::connect(socket, asSocketAddress(address), sizeof address) == 0) {
        return true;
    }
    return (errno == EINPROGRESS || errno == EINTR) && awaitConnection(socket, atMost);
}

OwnedDescriptor makeListeningSocket(const sockaddr_in& address) {
    OwnedDescriptor socket = makeIPv4StreamSocket();
    if (!socket.isValid() || !setFlag(socket.value(), SOL_SOCKET, SO_REUSEADDR) ||
        !makeNonBlocking(socket.value()) ||
        ::bind(socket.value(), asSocketAddress(address), sizeof address) != 0 ||
        ::listen(socket.value(), kListenBacklog) != 0) {
        return {};
    }
    return socket;
}

OwnedDescriptor acceptConnection(int serverSocket, sockaddr_in& address, socklen_t& addressLength) {
    addressLength = sizeof address;
    return OwnedDescriptor(
        acceptOn(serverSocket, reinterpret_cast<sockaddr*>(&address), &addressLength));
}

bool makeNonBlocking(int descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    return flags >= 0 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) == 0;
}

void setConnectionOptions(int socket) {
#ifdef SO_NOSIGPIPE
    setFlag(socket, SOL_SOCKET, SO_NOSIGPIPE);
#endif
    setFlag(socket, IPPROTO_TCP, TCP_NODELAY);
}

} // namespace navrel
