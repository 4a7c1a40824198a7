#pragma once

#include "transport/PTChannel.h"
#include "transport/SystemLoopbackPeer.h"

#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

class QDeadlineTimer;

namespace navrel {

/// The companion app's end of the connection: it listens, Navrel connects, and every question is a
/// frame whose answer carries the same tag. Questions block, spinning the event loop meanwhile, as
/// suits a program at a terminal. Main thread; never from within a job of the main queue.
class CompanionLink final : public PTChannelDelegate,
                            public std::enable_shared_from_this<CompanionLink> {
public:
    /// Tells whom a connected socket has reached on the loopback address.
    using PeerLookup = std::function<LoopbackPeer(int socket)>;

    static std::shared_ptr<CompanionLink> create(PeerLookup loopbackPeer = &systemLoopbackPeer);
    ~CompanionLink() override;

    /// Called with a sentence when a Navrel of another user was turned away: once for each user. It
    /// could show false files, and learn what this user types.
    std::function<void(const QString& sentence)> didRefuse;

    /// Listens on the loopback address. The error when that is not possible, as when another
    /// companion listens already.
    std::optional<Error> listen(quint16 port);

    /// Closes the connection and stops listening. The channels hold the link as their delegate: it
    /// lives until it is stopped.
    void stop();

    /// Waits until a Navrel is connected and answers. False when that took too long.
    bool waitUntilServed(std::chrono::milliseconds atMost);

    bool isConnected() const { return connection_ != nullptr; }

    /// Sends a request and waits until it has been dealt with: the answer, or nothing when Navrel
    /// has none, or is gone.
    std::optional<QVariantMap> ask(quint32 type, const QVariantMap& request = {});

    quint8 optionalOperations() const override;
    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                             quint32 type, quint32 tag,
                                             const std::shared_ptr<const PTData>& payload) override;
    void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                       const std::optional<Error>& error) override;
    void
    ioFrameChannelDidAcceptConnection(const std::shared_ptr<PTChannel>& channel,
                                      const std::shared_ptr<PTChannel>& otherChannel,
                                      const std::shared_ptr<const PTAddress>& address) override;

private:
    explicit CompanionLink(PeerLookup loopbackPeer) : loopbackPeer_(std::move(loopbackPeer)) {}

    bool isTrusted(const PTChannel& channel);
    quint32 send(quint32 type, const QVariantMap& request);
    bool waitForReply(quint32 tag, const QDeadlineTimer& deadline);
    std::optional<QVariantMap> takeReply(quint32 tag);

    const PeerLookup loopbackPeer_;
    std::set<qint64> refusedUsers_; ///< -1 for an unknown one
    std::shared_ptr<PTChannel> listener_;
    std::shared_ptr<PTChannel> connection_;
    quint32 lastTag_ = 0;
    std::unordered_map<quint32, QVariantMap> replies_; // by tag, until taken
};

} // namespace navrel
