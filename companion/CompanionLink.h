#pragma once

#include "transport/PTChannel.h"

#include <QVariantMap>

#include <chrono>
#include <memory>
#include <optional>
#include <unordered_map>

class QDeadlineTimer;

namespace navrel {

/// The companion app's end of the connection: it listens, Navrel connects, and every question is a
/// frame whose answer carries the same tag. Questions block, spinning the event loop meanwhile, as
/// suits a program at a terminal. Main thread; never from within a job of the main queue.
class CompanionLink final : public PTChannelDelegate,
                            public std::enable_shared_from_this<CompanionLink> {
public:
    static std::shared_ptr<CompanionLink> create();
    ~CompanionLink() override;

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
    CompanionLink() = default;

    quint32 send(quint32 type, const QVariantMap& request);
    bool waitForReply(quint32 tag, const QDeadlineTimer& deadline);
    std::optional<QVariantMap> takeReply(quint32 tag);

    std::shared_ptr<PTChannel> listener_;
    std::shared_ptr<PTChannel> connection_;
    quint32 lastTag_ = 0;
    std::unordered_map<quint32, QVariantMap> replies_; // by tag, until taken
};

} // namespace navrel
