#include "companion/link/WireLink.h"

#include "protocol/CompanionProtocol.h"
#include "support/propertylist/PropertyList.h"
#include "support/sockets/IPv4Socket.h"
#include "support/sockets/NonBlockingSocket.h"
#include "transport/frames/PTFrame.h"
#include "transport/frames/PTProtocol.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace navrel {

namespace {

using std::chrono::milliseconds;
using Steady = std::chrono::steady_clock;

constexpr qsizetype kHeaderSize = kPTFrameHeaderSize;
constexpr std::size_t kReadLength = 64 * 1024;

constexpr qint64 kUnknownUser = -1;
/// More users than share a machine.
constexpr std::size_t kMostRefusalsReported = 64;

/// A reply takes milliseconds; an open panel on the other side takes as long as its user does.
constexpr std::chrono::minutes kLongestAnswer{10};
/// How often a Navrel that does not answer yet is asked again.
constexpr milliseconds kAskAgainAfter{200};

/// What poll(2) can count; nobody waits that long.
constexpr std::chrono::hours kLongestTurn{24};

milliseconds until(Steady::time_point deadline) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - Steady::now());
    return std::clamp<milliseconds>(left, milliseconds(0), kLongestTurn);
}

bool wouldBlock(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

WireLink::WireLink(PeerLookup loopbackPeer) : loopbackPeer_(std::move(loopbackPeer)) {}

WireLink::~WireLink() {
    stop();
}

std::optional<Error> WireLink::listen(quint16 port) {
    listener_ = makeListeningSocket(IPv4SocketAddress(port, INADDR_LOOPBACK));
    return listener_.isValid() ? std::nullopt : std::optional(Error::posix(errno));
}

void WireLink::stop() {
    listener_ = OwnedDescriptor();
    disconnect();
}

void WireLink::disconnect() {
    connection_ = OwnedDescriptor();
    received_.clear();
    unsent_.clear();
    for (auto& [tag, pending] : std::exchange(pending_, {})) {
        pending.done(std::nullopt);
    }
}

void WireLink::request(quint32 type, const QVariantMap& payload, Done done) {
    if (!isConnected()) {
        return done(std::nullopt);
    }
    // A request without a reply is met with silence. Requests are dealt with in order, so the reply
    // to a version request behind it says that no other will come.
    sendFrame(type, ++lastTag_, payload);
    pending_[++lastTag_] = {std::nullopt, std::move(done)};
    sendFrame(kFrameVersion, lastTag_, {});
    flush();
}

void WireLink::sendFrame(quint32 type, quint32 tag, const QVariantMap& payload) {
    const QByteArray bytes = payload.isEmpty()
                                 ? QByteArray()
                                 : binaryDataWithPropertyList(payload).value_or(QByteArray());
    const auto header = encodedFrameHeader({type, tag, static_cast<quint32>(bytes.size())});
    unsent_.append(header.data(), kHeaderSize);
    unsent_.append(bytes);
}

void WireLink::flush() {
    while (isConnected() && !unsent_.isEmpty()) {
        const ssize_t count = sendWithoutWaiting(connection_.value(), unsent_);
        if (count < 0) {
            return wouldBlock(errno) ? void() : disconnect();
        }
        unsent_.remove(0, count);
    }
}

bool WireLink::turn(milliseconds atMost, int otherDescriptor) {
    // A negative descriptor is passed over.
    std::array<pollfd, 3> waited = {{
        {listener_.value(), POLLIN, 0},
        {connection_.value(), static_cast<short>(unsent_.isEmpty() ? POLLIN : POLLIN | POLLOUT), 0},
        {otherDescriptor, POLLIN, 0},
    }};
    if (::poll(waited.data(), waited.size(), static_cast<int>(atMost.count())) <= 0) {
        return false;
    }
    if (waited[1].revents != 0) {
        flush();
        receive();
    }
    if (waited[0].revents != 0) {
        accept();
    }
    return waited[2].revents != 0;
}

void WireLink::accept() {
    sockaddr_in address = {};
    socklen_t length = 0;
    OwnedDescriptor descriptor = acceptConnection(listener_.value(), address, length);
    if (!descriptor.isValid() || !makeNonBlocking(descriptor.value()) ||
        !isTrusted(descriptor.value())) {
        return;
    }
    setConnectionOptions(descriptor.value());
    // The newest one counts, as with a device: a Navrel that is gone may not have said so yet.
    disconnect();
    connection_ = std::move(descriptor);
}

// Any local user may connect. There is nobody to complain of where the connection has ended.
bool WireLink::isTrusted(int descriptor) {
    const LoopbackPeer peer = loopbackPeer_(descriptor);
    if (isOfThisUser(peer)) {
        return true;
    }
    const qint64 user = peer.owner ? qint64{*peer.owner} : kUnknownUser;
    const bool isWorthASentence = peer.owner || !peer.hasEnded;
    if (isWorthASentence && didRefuse && refusedUsers_.size() < kMostRefusalsReported &&
        refusedUsers_.insert(user).second) {
        didRefuse(QStringLiteral("refused a Navrel of another user (%1)")
                      .arg(peer.owner ? QString::number(*peer.owner) : QStringLiteral("unknown")));
    }
    return false;
}

void WireLink::receive() {
    std::array<char, kReadLength> buffer;
    while (isConnected()) {
        const ssize_t count = ::recv(connection_.value(), buffer.data(), buffer.size(), 0);
        if (count < 0 && wouldBlock(errno)) {
            return;
        }
        if (count <= 0) {
            return disconnect();
        }
        received_.append(buffer.data(), count);
        while (takeFrame()) {
        }
    }
}

bool WireLink::takeFrame() {
    if (received_.size() < kHeaderSize) {
        return false;
    }
    const auto header = decodedFrameHeader(received_);
    if (!header || header->type == kPTFrameTypeEndOfStream ||
        header->payloadSize > PTProtocol::kLargestPayload) {
        disconnect();
        return false;
    }
    const qsizetype size = header->payloadSize;
    if (received_.size() - kHeaderSize < size) {
        return false;
    }
    const QByteArray payload = received_.mid(kHeaderSize, size);
    received_.remove(0, kHeaderSize + size);
    if (header->type == kFrameReply) {
        takeReply(header->tag, payload);
    }
    return true;
}

void WireLink::takeReply(quint32 tag, const QByteArray& payload) {
    const auto own = pending_.find(tag + 1);
    if (own != pending_.end()) {
        own->second.reply = propertyListWithData(payload).value_or(QVariant()).toMap();
        return;
    }
    auto done = pending_.extract(tag);
    if (!done.empty()) {
        done.mapped().done(std::move(done.mapped().reply));
    }
}

bool WireLink::waitUntilServed(milliseconds atMost) {
    const auto deadline = Steady::now() + atMost;
    auto askedAt = Steady::time_point();
    bool isServed = false;
    while (!isServed && Steady::now() < deadline) {
        if (isConnected() && Steady::now() - askedAt >= kAskAgainAfter) {
            askedAt = Steady::now();
            request(kFrameVersion, {}, [&isServed](const auto& reply) { isServed = !!reply; });
        }
        turn(isConnected() ? std::min(kAskAgainAfter, until(deadline)) : until(deadline));
    }
    // Requests that were not answered must not call back into this frame.
    for (auto& [tag, pending] : pending_) {
        pending.done = [](const auto&) {};
    }
    return isServed;
}

std::optional<QVariantMap> WireLink::ask(quint32 type, const QVariantMap& payload) {
    bool isDone = false;
    std::optional<QVariantMap> result;
    request(type, payload, [&](std::optional<QVariantMap> reply) {
        isDone = true;
        result = std::move(reply);
    });
    const auto deadline = Steady::now() + kLongestAnswer;
    while (!isDone && Steady::now() < deadline) {
        turn(until(deadline));
    }
    if (!isDone) {
        disconnect(); // does the request, which must not outlive this frame
    }
    return result;
}

} // namespace navrel
