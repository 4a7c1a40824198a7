#include "editors/neovim/NeovimConnection.h"

#include "support/sockets/NonBlockingSocket.h"
#include "support/sockets/UnixPeer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <poll.h>
#include <sys/socket.h>

namespace navrel {

namespace {

// The protocol: a request is [0, identifier, method, arguments], its response [1, identifier,
// error, result].
constexpr qint64 kRequest = 0;
constexpr qint64 kResponse = 1;
constexpr qsizetype kResponseFields = 4;

/// A server that writes without end must leave its caller the time to look at others.
constexpr int kMaximumReadsAtATime = 16;

QByteArray requestBytes(qint64 identifier, const QByteArray& method,
                        const QVariantList& arguments) {
    return messagePackOf(QVariantList{kRequest, identifier, method, QVariant(arguments)});
}

} // namespace

std::unique_ptr<NeovimConnection> NeovimConnection::open(const QByteArray& socketPath,
                                                         bool& isOverdue) {
    OwnedDescriptor socket = connectToUnixSocket(socketPath);
    isOverdue = !socket.isValid() && errno == EAGAIN;
    if (!socket.isValid() || !isPeerThisUser(socket.value())) {
        return nullptr;
    }
    return std::unique_ptr<NeovimConnection>(new NeovimConnection(std::move(socket)));
}

NeovimConnection::Reply NeovimConnection::call(const QByteArray& method,
                                               const QVariantList& arguments,
                                               const QDeadlineTimer& deadline) {
    const qint64 identifier = ++lastIdentifier_;
    if (!send(requestBytes(identifier, method, arguments), deadline)) {
        return {};
    }
    while (true) {
        if (const auto reply = takeReply(identifier)) {
            return *reply;
        }
        if (!receive(deadline)) {
            return {};
        }
    }
}

qint64 NeovimConnection::begin(const QByteArray& method, const QVariantList& arguments) {
    const qint64 identifier = ++lastIdentifier_;
    const QByteArray bytes = requestBytes(identifier, method, arguments);
    return sendWithoutWaiting(socket_.value(), bytes) == bytes.size() ? identifier : 0;
}

std::optional<NeovimConnection::Reply> NeovimConnection::replyTo(qint64 identifier) {
    for (int reads = 0; reads < kMaximumReadsAtATime; ++reads) {
        if (const auto reply = takeReply(identifier)) {
            return reply;
        }
        pollfd waited = {socket_.value(), POLLIN, 0};
        if (::poll(&waited, 1, 0) <= 0) {
            return std::nullopt;
        }
        if (!receive(QDeadlineTimer(QDeadlineTimer::Forever))) {
            return Reply();
        }
    }
    return std::nullopt;
}

bool NeovimConnection::waitFor(short event, const QDeadlineTimer& deadline) const {
    pollfd waited = {socket_.value(), event, 0};
    while (!deadline.hasExpired()) {
        constexpr qint64 kLongest = std::numeric_limits<int>::max();
        const auto atMost = static_cast<int>(std::min(deadline.remainingTime(), kLongest));
        const int ready = ::poll(&waited, 1, atMost);
        if (ready > 0) {
            return true;
        }
        if (ready < 0 && errno != EINTR) {
            return false;
        }
    }
    return false;
}

bool NeovimConnection::send(const QByteArray& bytes, const QDeadlineTimer& deadline) const {
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        if (!waitFor(POLLOUT, deadline)) {
            return false;
        }
        const ssize_t count =
            sendWithoutWaiting(socket_.value(), QByteArrayView(bytes).sliced(sent));
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            return false;
        }
        sent += count > 0 ? count : 0;
    }
    return true;
}

/// Takes in what has come, waiting for something. False at the end, on a failure, or in the face of
/// a server that says too much.
bool NeovimConnection::receive(const QDeadlineTimer& deadline) {
    if (received_.size() > kMaximumNeovimReply || !waitFor(POLLIN, deadline)) {
        return false;
    }
    std::array<char, 4096> piece;
    const ssize_t count = ::recv(socket_.value(), piece.data(), piece.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return true;
    }
    received_.append(piece.data(), count > 0 ? count : 0);
    return count > 0;
}

/// The message at the beginning of what has come, which is taken out if it is whole. What is no
/// list is no message.
MessagePackReading NeovimConnection::takeMessage() {
    MessagePackReading reading = readMessagePack(received_);
    if (reading.outcome == MessagePackReading::Outcome::Complete) {
        if (reading.value.typeId() != QMetaType::QVariantList) {
            reading.outcome = MessagePackReading::Outcome::Invalid;
        }
        received_.remove(0, reading.length);
    }
    return reading;
}

/// The response to a request, if it has arrived whole. What is no such response is passed over;
/// what is no message at all counts as no answer.
std::optional<NeovimConnection::Reply> NeovimConnection::takeReply(qint64 identifier) {
    while (!received_.isEmpty()) {
        const MessagePackReading reading = takeMessage();
        if (reading.outcome == MessagePackReading::Outcome::Incomplete) {
            return std::nullopt;
        }
        if (reading.outcome == MessagePackReading::Outcome::Invalid) {
            return Reply();
        }
        const QVariantList message = reading.value.toList();
        if (message.size() != kResponseFields || message[0] != kResponse ||
            message[1] != identifier) {
            continue;
        }
        const bool isError = message[2].isValid();
        return isError ? Reply{Reply::Kind::Error, message[2]}
                       : Reply{Reply::Kind::Result, message[3]};
    }
    return std::nullopt;
}

std::optional<QVariantList> NeovimConnection::nextMessage(bool& isBroken) {
    isBroken = false;
    for (int reads = 0; reads < kMaximumReadsAtATime; ++reads) {
        const MessagePackReading reading = takeMessage();
        if (reading.outcome == MessagePackReading::Outcome::Complete) {
            return reading.value.toList();
        }
        pollfd waited = {socket_.value(), POLLIN, 0};
        const bool isInvalid = reading.outcome == MessagePackReading::Outcome::Invalid;
        if (!isInvalid && ::poll(&waited, 1, 0) <= 0) {
            return std::nullopt;
        }
        if (isInvalid || !receive(QDeadlineTimer(QDeadlineTimer::Forever))) {
            isBroken = true;
            return std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace navrel
