#pragma once

#include "transport/frames/PTAddress.h"
#include "transport/frames/PTChannel.h"
#include "transport/frames/PTData.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace navrel {

/// A delegate that remembers what it was told, and does what the test wants it to.
class RecordingDelegate final : public PTChannelDelegate {
public:
    static constexpr quint8 kAllOperations = kShouldAcceptFrame | kDidEnd | kDidAcceptConnection;

    struct Frame {
        PTChannel* channel; ///< not held: a channel holds its delegate
        quint32 type;
        quint32 tag;
        std::optional<QByteArray> payload; ///< none: the frame had none
    };
    struct End {
        PTChannel* channel;
        std::optional<Error> error;
    };

    explicit RecordingDelegate(quint8 operations = kAllOperations) : operations_(operations) {}

    quint8 optionalOperations() const override { return operations_; }
    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                             quint32 type, quint32 tag,
                                             const std::shared_ptr<const PTData>& payload) override;
    bool ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                               quint32 type, quint32 tag,
                                               quint32 payloadSize) override;
    void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                       const std::optional<Error>& error) override;
    void
    ioFrameChannelDidAcceptConnection(const std::shared_ptr<PTChannel>& channel,
                                      const std::shared_ptr<PTChannel>& otherChannel,
                                      const std::shared_ptr<const PTAddress>& address) override;

    std::vector<Frame> frames;
    std::vector<End> ends;
    std::vector<std::shared_ptr<PTChannel>> accepted; ///< to be cleared when the test is over
    std::vector<QString> acceptedAddresses;
    std::vector<quint32> askedTypes;
    std::set<quint32> refusedTypes;
    std::function<void(PTChannel&)> onQuestion;   ///< called before a frame is accepted or refused
    std::function<void(const Frame&)> onFrame;    ///< called after the frame was recorded
    std::function<void(PTChannel&)> onConnection; ///< called after the connection was recorded

private:
    const quint8 operations_;
};

} // namespace navrel
