#include "support/sockets/NonBlockingSocket.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/un.h>

namespace navrel {

OwnedDescriptor makeNonBlockingSocket(int family, int type) {
#ifdef __linux__
    return OwnedDescriptor(::socket(family, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
#else
    OwnedDescriptor socket(::socket(family, type, 0));
    const int on = 1;
    if (socket.isValid()) {
        ::fcntl(socket.value(), F_SETFD, FD_CLOEXEC);
        ::fcntl(socket.value(), F_SETFL, O_NONBLOCK);
        ::setsockopt(socket.value(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    }
    return socket;
#endif
}

OwnedDescriptor connectToUnixSocket(const QByteArray& name, int type) {
    const bool isAbstract = name.startsWith('\0');
    const auto size = static_cast<std::size_t>(name.size());
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (size >= sizeof address.sun_path || (!isAbstract && name.contains('\0'))) {
        errno = size >= sizeof address.sun_path ? ENAMETOOLONG : ENOENT;
        return {};
    }
    std::memcpy(address.sun_path, name.constData(), size);
    // The length is part of an abstract name.
    const std::size_t length = isAbstract ? offsetof(sockaddr_un, sun_path) + size : sizeof address;
    OwnedDescriptor socket = makeNonBlockingSocket(AF_UNIX, type);
    if (!socket.isValid() || ::connect(socket.value(), reinterpret_cast<const sockaddr*>(&address),
                                       static_cast<socklen_t>(length)) != 0) {
        return {};
    }
    return socket;
}

ssize_t sendWithoutWaiting(int socket, QByteArrayView bytes) {
#ifdef MSG_NOSIGNAL
    constexpr int kFlags = MSG_DONTWAIT | MSG_NOSIGNAL;
#else
    constexpr int kFlags = MSG_DONTWAIT; // the socket's own option keeps the signal away
#endif
    return ::send(socket, bytes.data(), static_cast<std::size_t>(bytes.size()), kFlags);
}

} // namespace navrel
