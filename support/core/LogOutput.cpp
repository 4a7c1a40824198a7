#include "support/core/LogOutput.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

constexpr int kNoDescriptor = -1;

void close(int& descriptor) {
    if (descriptor != kNoDescriptor) {
        ::close(std::exchange(descriptor, kNoDescriptor));
    }
}

bool hasRoom(int descriptor) {
    struct pollfd state = {descriptor, POLLOUT, 0};
    return ::poll(&state, 1, 0) == 1 && state.revents == POLLOUT;
}

ssize_t sendToSocket(int socket, const QByteArray& bytes) {
#ifdef MSG_NOSIGNAL
    constexpr int kFlags = MSG_DONTWAIT | MSG_NOSIGNAL;
#else
    constexpr int kFlags = MSG_DONTWAIT;
#endif
    return ::send(socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), kFlags);
}

/// The time as the system's log wants it, whatever the user's language.
QByteArray timestamp() {
    static constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%s %2d %02d:%02d:%02d",
                  kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour,
                  local.tm_min, local.tm_sec);
    return text.data();
}

} // namespace

void LogOutput::put(const QByteArray& line) {
    const bool isFlowing =
        lost_ == 0 || take("Lines of the log that were lost here, as nobody read them: " +
                           QByteArray::number(lost_));
    if (isFlowing) {
        lost_ = 0;
    }
    if (!isFlowing || !take(line)) {
        ++lost_;
    }
}

StandardError::~StandardError() {
    close(own_);
}

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
        written = sendToSocket(descriptor_, text);
    } else if (S_ISREG(status.st_mode)) {
        written = ::write(descriptor_, text.constData(), static_cast<std::size_t>(text.size()));
    } else {
        const int own = unblockedDescriptor(status.st_dev, status.st_ino);
        const int descriptor = own != kNoDescriptor ? own : descriptor_;
        if (own != kNoDescriptor || hasRoom(descriptor)) {
            written = ::write(descriptor, text.constData(), static_cast<std::size_t>(text.size()));
        }
    }
    isInLine_ = written > 0 ? written < text.size() : isInLine_;
    return written == text.size();
}

/// `kNoDescriptor` where the system does not give a second way.
int StandardError::unblockedDescriptor(dev_t device, ino_t inode) {
    const bool isSame = own_ != kNoDescriptor && ownDevice_ == device && ownInode_ == inode;
    if (!isSame) {
        close(own_);
#ifdef __linux__
        const QByteArray path = "/proc/self/fd/" + QByteArray::number(descriptor_);
        own_ = ::open(path.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
#endif
        ownDevice_ = device;
        ownInode_ = inode;
    }
    return own_;
}

SystemLog::SystemLog(QByteArray socketPath) : socketPath_(std::move(socketPath)) {}

SystemLog::~SystemLog() {
    close(socket_);
}

bool SystemLog::take(const QByteArray& line) {
    if (socket_ == kNoDescriptor && !connectAgain()) {
        return true;
    }
    const QByteArray packet = '<' + QByteArray::number(LOG_USER | LOG_NOTICE) + '>' + timestamp() +
                              " Navrel[" + QByteArray::number(::getpid()) + "]: " + line;
    if (sendToSocket(socket_, packet) == packet.size()) {
        return true;
    }
    if (errno == EAGAIN || errno == EMSGSIZE || errno == ENOBUFS) {
        return false;
    }
    // The daemon has been started again meanwhile, or has gone.
    return !connectAgain() || sendToSocket(socket_, packet) == packet.size();
}

bool SystemLog::connectAgain() {
    close(socket_);
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(socketPath_.size()) >= sizeof(address.sun_path)) {
        return false;
    }
    std::memcpy(address.sun_path, socketPath_.constData(),
                static_cast<std::size_t>(socketPath_.size()));
    socket_ = ::socket(AF_UNIX, SOCK_DGRAM, 0);
    if (socket_ == kNoDescriptor) {
        return false;
    }
    ::fcntl(socket_, F_SETFD, FD_CLOEXEC);
    if (::connect(socket_, reinterpret_cast<const struct sockaddr*>(&address), sizeof(address)) !=
        0) {
        close(socket_);
    }
    return socket_ != kNoDescriptor;
}

} // namespace navrel
