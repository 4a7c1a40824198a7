#include "transport/usb/daemon/BufferedSocket.h"

#include "support/core/MainThread.h"
#include "support/sockets/IPv4Socket.h"

#include <QObject>

#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <utility>

namespace navrel {

namespace {

/// One event reads this much, so that a busy peer starves nobody.
constexpr size_t kPieceSize = 64 * 1024;

#ifdef MSG_NOSIGNAL
constexpr int kSendFlags = MSG_NOSIGNAL;
#else
constexpr int kSendFlags = 0; // the socket has SO_NOSIGPIPE
#endif

bool isPassing(int errnoValue) {
    return errnoValue == EAGAIN || errnoValue == EWOULDBLOCK || errnoValue == EINTR;
}

} // namespace

BufferedSocket::BufferedSocket(OwnedDescriptor socket, std::function<void()> didChange)
    : socket_(std::move(socket)), didChange_(std::move(didChange)) {
    makeNonBlocking(socket_.value());
    readNotifier_ = notifier(QSocketNotifier::Read, &BufferedSocket::readable);
    writeNotifier_ = notifier(QSocketNotifier::Write, &BufferedSocket::flush);
    writeNotifier_->setEnabled(false);
}

// The notifiers are deleted later, since one of them may be at work; the socket goes now.
BufferedSocket::~BufferedSocket() {
    readNotifier_->setEnabled(false);
    writeNotifier_->setEnabled(false);
}

// The owner may destroy this object when it is told of a change, so it is told last, by a copy of
// the function.
BufferedSocket::Notifier BufferedSocket::notifier(QSocketNotifier::Type type,
                                                  void (BufferedSocket::*activated)()) {
    Notifier result(new QSocketNotifier(socket_.value(), type));
    QObject::connect(result.get(), &QSocketNotifier::activated, result.get(), [this, activated] {
        (this->*activated)();
        const auto didChange = didChange_;
        didChange();
    });
    return result;
}

void BufferedSocket::setReading(bool wanted) {
    NAVREL_ASSERT_MAIN_THREAD();
    readNotifier_->setEnabled(wanted && !hasEnded_);
}

void BufferedSocket::readable() {
    NAVREL_ASSERT_MAIN_THREAD();
    std::array<char, kPieceSize> piece;
    const ssize_t count = ::recv(socket_.value(), piece.data(), piece.size(), 0);
    if (count > 0) {
        received_.append(piece.data(), count);
    } else if (count == 0) {
        end(0);
    } else if (!isPassing(errno)) {
        end(errno);
    }
}

void BufferedSocket::write(QByteArrayView bytes) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!isPeerDeaf_) {
        unwritten_.append(bytes);
        flush();
    }
}

void BufferedSocket::write(QByteArray&& bytes) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (isPeerDeaf_ || !unwritten_.isEmpty()) {
        return write(QByteArrayView(bytes));
    }
    unwritten_ = std::move(bytes);
    flush();
}

void BufferedSocket::flush() {
    NAVREL_ASSERT_MAIN_THREAD();
    while (!unwritten_.isEmpty()) {
        const ssize_t count = ::send(socket_.value(), unwritten_.constData(),
                                     static_cast<size_t>(unwritten_.size()), kSendFlags);
        if (count < 0) {
            if (!isPassing(errno)) {
                isPeerDeaf_ = true;
                unwritten_.clear();
            }
            break;
        }
        unwritten_.remove(0, count);
    }
    writeNotifier_->setEnabled(!unwritten_.isEmpty());
}

void BufferedSocket::end(int errnoValue) {
    hasEnded_ = true;
    errnoValue_ = errnoValue;
    readNotifier_->setEnabled(false);
}

} // namespace navrel
