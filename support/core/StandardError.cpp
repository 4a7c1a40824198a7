#include "support/core/StandardError.h"

#include "support/sockets/NonBlockingSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {

namespace {

bool hasRoom(int descriptor) {
    struct pollfd state = {descriptor, POLLOUT, 0};
    return ::poll(&state, 1, 0) == 1 && state.revents == POLLOUT;
}

} // namespace

bool StandardError::take(const QByteArray& line) {
    // One write, so that lines of several threads and processes do not mix.
    return write((isInLine_ ? "\nNavrel: " : "Navrel: ") + line + '\n');
}

bool StandardError::write(const QByteArray& text) {
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0) {
        return true;
    }
    ssize_t written = -1;
    if (S_ISSOCK(status.st_mode)) {
        written = sendWithoutWaiting(descriptor_, text);
    } else if (S_ISREG(status.st_mode)) {
        written = ::write(descriptor_, text.constData(), static_cast<std::size_t>(text.size()));
    } else {
        openUnblocked(status.st_dev, status.st_ino);
        const int descriptor = own_.isValid() ? own_.value() : descriptor_;
        if (own_.isValid() || hasRoom(descriptor)) {
            written = ::write(descriptor, text.constData(), static_cast<std::size_t>(text.size()));
        }
    }
    isInLine_ = written > 0 ? written < text.size() : isInLine_;
    return written == text.size();
}

/// `own_` is invalid where the system does not give a second way.
void StandardError::openUnblocked(dev_t device, ino_t inode) {
    if (own_.isValid() && ownDevice_ == device && ownInode_ == inode) {
        return;
    }
#ifdef __linux__
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(descriptor_);
    own_ = OwnedDescriptor(::open(path.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
#endif
    ownDevice_ = device;
    ownInode_ = inode;
}

} // namespace navrel
