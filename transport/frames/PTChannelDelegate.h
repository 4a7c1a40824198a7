#pragma once

#include "support/core/Error.h"

#include <QtGlobal>

#include <memory>
#include <optional>

namespace navrel {

class PTAddress;
class PTChannel;
class PTData;

/// Receives what happens on a channel. Called on the queue of the channel's protocol.
class PTChannelDelegate {
public:
    /// Bits for the operations that a delegate need not have.
    enum OptionalOperation : quint8 {
        kShouldAcceptFrame = 1,
        kDidEnd = 2,
        kDidAcceptConnection = 4,
    };

    virtual ~PTChannelDelegate() = default;

    /// The optional operations that this delegate has; the others are never called. Called whenever
    /// it becomes a channel's delegate.
    virtual quint8 optionalOperations() const { return 0; }

    /// A frame has arrived; `payload` is null if it has none. The next frame is not read before
    /// this returns.
    virtual void
    ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel, quint32 type,
                                        quint32 tag,
                                        const std::shared_ptr<const PTData>& payload) = 0;

    /// Whether to receive a frame whose header has arrived. If not, its payload is skipped.
    virtual bool ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                                       quint32 type, quint32 tag,
                                                       quint32 payloadSize);

    /// The channel has ended, and its socket is closed. `error` is nil if the peer closed it.
    virtual void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                               const std::optional<Error>& error);

    /// A listening channel has accepted a peer, whose own channel is connected and about to read.
    virtual void ioFrameChannelDidAcceptConnection(const std::shared_ptr<PTChannel>& channel,
                                                   const std::shared_ptr<PTChannel>& otherChannel,
                                                   const std::shared_ptr<const PTAddress>& address);
};

} // namespace navrel
