#include "companion/CompanionLink.h"

#include "protocol/CompanionProtocol.h"
#include "transport/PTAddress.h"
#include "transport/PTData.h"
#include "transport/PTPayload.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <utility>

namespace navrel {

namespace {

constexpr quint32 kLoopbackAddress = 0x7F000001; // 127.0.0.1

constexpr qint64 kUnknownUser = -1;
/// More users than share a machine.
constexpr size_t kMostRefusalsReported = 64;

/// An answer takes milliseconds; an open panel on the other side takes as long as a person does.
constexpr std::chrono::minutes kLongestAnswer{10};

/// How often a Navrel that does not answer yet is asked again: it drops every request of its first
/// moments.
constexpr std::chrono::milliseconds kAskAgainAfter{200};

/// How long one turn of the event loop may wait for something to happen.
constexpr int kLoopTurnMilliseconds = 20;

template <typename Condition>
bool spinUntil(Condition condition, const QDeadlineTimer& deadline) {
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents,
                                        kLoopTurnMilliseconds);
    }
    return true;
}

} // namespace

std::shared_ptr<CompanionLink> CompanionLink::create(PeerLookup loopbackPeer) {
    return std::shared_ptr<CompanionLink>(new CompanionLink(std::move(loopbackPeer)));
}

CompanionLink::~CompanionLink() = default;

std::optional<Error> CompanionLink::listen(quint16 port) {
    listener_ = PTChannel::channelWithDelegate(shared_from_this());
    std::optional<Error> failure;
    listener_->listenOnPort(port, kLoopbackAddress,
                            [&failure](const std::optional<Error>& error) { failure = error; });
    return failure;
}

void CompanionLink::stop() {
    for (auto* channel : {&connection_, &listener_}) {
        if (*channel != nullptr) {
            (*channel)->close();
            (*channel)->setDelegate(nullptr);
            channel->reset();
        }
    }
    replies_.clear();
}

bool CompanionLink::waitUntilServed(std::chrono::milliseconds atMost) {
    const QDeadlineTimer deadline(atMost);
    while (spinUntil([this] { return isConnected(); }, deadline)) {
        const quint32 tag = send(kFrameVersion, {});
        if (waitForReply(tag, QDeadlineTimer(kAskAgainAfter))) {
            return true;
        }
    }
    return false;
}

std::optional<QVariantMap> CompanionLink::ask(quint32 type, const QVariantMap& request) {
    if (!isConnected()) {
        return std::nullopt;
    }
    const quint32 tag = send(type, request);
    // A request without an answer is met with silence. Requests are dealt with in order, so the
    // answer to a version request behind it tells that no other will come.
    const quint32 endTag = send(kFrameVersion, {});
    waitForReply(endTag, QDeadlineTimer(kLongestAnswer));
    takeReply(endTag);
    return takeReply(tag);
}

quint32 CompanionLink::send(quint32 type, const QVariantMap& request) {
    const quint32 tag = ++lastTag_;
    const auto payload = request.isEmpty() ? std::nullopt : createReferencingDispatchData(request);
    connection_->sendFrameOfType(type, tag, payload, {});
    return tag;
}

bool CompanionLink::waitForReply(quint32 tag, const QDeadlineTimer& deadline) {
    spinUntil([&] { return replies_.contains(tag) || !isConnected(); }, deadline);
    return replies_.contains(tag);
}

std::optional<QVariantMap> CompanionLink::takeReply(quint32 tag) {
    const auto node = replies_.extract(tag);
    return node.empty() ? std::nullopt : std::optional(node.mapped());
}

quint8 CompanionLink::optionalOperations() const {
    return kDidEnd | kDidAcceptConnection;
}

void CompanionLink::ioFrameChannelDidReceiveFrameOfType(
    const std::shared_ptr<PTChannel>&, quint32 type, quint32 tag,
    const std::shared_ptr<const PTData>& payload) {
    if (type != kFrameReply || payload == nullptr) {
        return;
    }
    const auto reply = dictionaryWithContentsOfDispatchData(payload->dispatchData());
    replies_[tag] = reply ? reply->toMap() : QVariantMap();
}

void CompanionLink::ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                                  const std::optional<Error>&) {
    if (channel == connection_) {
        connection_ = nullptr;
        replies_.clear();
    }
}

void CompanionLink::ioFrameChannelDidAcceptConnection(
    const std::shared_ptr<PTChannel>&, const std::shared_ptr<PTChannel>& otherChannel,
    const std::shared_ptr<const PTAddress>&) {
    if (!isTrusted(*otherChannel)) {
        return otherChannel->close();
    }
    // The newest one counts, as with a device: a Navrel that is gone may not have said so yet.
    if (connection_ != nullptr) {
        connection_->close();
    }
    connection_ = otherChannel;
    replies_.clear();
}

// Any local user may connect. One that has ended the connection already is nobody to complain of.
bool CompanionLink::isTrusted(const PTChannel& channel) {
    const auto stream = channel.dispatchChannel();
    const LoopbackPeer peer = stream ? loopbackPeer_(stream->descriptor()) : LoopbackPeer{{}, true};
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

} // namespace navrel
