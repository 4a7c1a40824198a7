#include "support/dispatch/StreamDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {

namespace {

using Transfer = StreamDescriptor::Transfer;

Transfer outcome(ssize_t result) {
    if (result < 0) {
        return {0, errno};
    }
    return {static_cast<size_t>(result), 0};
}

template <typename Call>
Transfer uninterrupted(Call call) {
    Transfer transfer = call();
    while (transfer.errnoValue == EINTR) {
        transfer = call();
    }
    return transfer;
}

/// Keeps SIGPIPE from the calling thread while it lives, and takes away the one that the thread's
/// own write raised. A signal that was pending before stays so.
class BrokenPipeSignalGuard {
public:
    BrokenPipeSignalGuard() {
        sigemptyset(&brokenPipe_);
        sigaddset(&brokenPipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &brokenPipe_, &previous_);
    }
    ~BrokenPipeSignalGuard() {
        sigset_t pending;
        sigpending(&pending);
        if (!wasPending_ && sigismember(&pending, SIGPIPE) == 1) {
            int signal = 0;
            sigwait(&brokenPipe_, &signal);
        }
        pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    }
    BrokenPipeSignalGuard(const BrokenPipeSignalGuard&) = delete;
    BrokenPipeSignalGuard& operator=(const BrokenPipeSignalGuard&) = delete;

private:
    sigset_t brokenPipe_;
    sigset_t previous_;
    bool wasPending_ = false;
};

Transfer writeWithoutSignal(int descriptor, std::span<const iovec> buffers) {
    const BrokenPipeSignalGuard guard;
    return outcome(::writev(descriptor, buffers.data(), static_cast<int>(buffers.size())));
}

/// Up to this size, copying takes less than handing the parts to the kernel one by one.
constexpr size_t kJoinedSize = 512;

/// Copies the buffers one behind the other; nothing where they do not fit.
std::span<const char> joined(std::span<const iovec> buffers, std::span<char, kJoinedSize> room) {
    size_t size = 0;
    for (const iovec& buffer : buffers) {
        if (buffer.iov_len > room.size() - size) {
            return {};
        }
        std::copy_n(static_cast<const char*>(buffer.iov_base), buffer.iov_len, room.data() + size);
        size += buffer.iov_len;
    }
    return room.first(size);
}

Transfer sendWithoutSignal(int socket, std::span<const iovec> buffers) {
#ifdef MSG_NOSIGNAL
    std::array<char, kJoinedSize> room;
    if (const auto bytes = joined(buffers, room); !bytes.empty()) {
        return outcome(::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL));
    }
    msghdr message = {};
    message.msg_iov = const_cast<iovec*>(buffers.data());
    message.msg_iovlen = buffers.size();
    return outcome(::sendmsg(socket, &message, MSG_NOSIGNAL));
#else
    return writeWithoutSignal(socket, buffers);
#endif
}

} // namespace

bool StreamDescriptor::Transfer::wouldBlock() const {
    return errnoValue == EAGAIN || errnoValue == EWOULDBLOCK;
}

std::optional<StreamDescriptor> StreamDescriptor::adopt(int descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0) {
        return std::nullopt;
    }
    if ((flags & O_NONBLOCK) == 0 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) < 0) {
        return std::nullopt;
    }
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) {
        return std::nullopt;
    }
    return StreamDescriptor(descriptor, S_ISSOCK(status.st_mode));
}

Transfer StreamDescriptor::read(std::span<char> buffer) const {
    return uninterrupted([&] {
        return outcome(isSocket_ ? ::recv(value_, buffer.data(), buffer.size(), 0)
                                 : ::read(value_, buffer.data(), buffer.size()));
    });
}

Transfer StreamDescriptor::read(std::span<const iovec> buffers) const {
    return uninterrupted(
        [&] { return outcome(::readv(value_, buffers.data(), static_cast<int>(buffers.size()))); });
}

Transfer StreamDescriptor::write(std::span<const iovec> buffers) const {
    return uninterrupted([&] {
        return isSocket_ ? sendWithoutSignal(value_, buffers) : writeWithoutSignal(value_, buffers);
    });
}

} // namespace navrel
