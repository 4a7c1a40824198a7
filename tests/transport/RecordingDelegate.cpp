#include "tests/transport/RecordingDelegate.h"

namespace navrel {

void RecordingDelegate::ioFrameChannelDidReceiveFrameOfType(
    const std::shared_ptr<PTChannel>& channel, quint32 type, quint32 tag,
    const std::shared_ptr<const PTData>& payload) {
    std::optional<QByteArray> bytes;
    if (payload) {
        bytes = QByteArray(payload->data(), static_cast<qsizetype>(payload->length()));
    }
    const Frame frame = {channel.get(), type, tag, bytes};
    frames.push_back(frame);
    if (onFrame) {
        onFrame(frame);
    }
}

bool RecordingDelegate::ioFrameChannelShouldAcceptFrameOfType(
    const std::shared_ptr<PTChannel>& channel, quint32 type, quint32, quint32) {
    askedTypes.push_back(type);
    if (onQuestion) {
        onQuestion(*channel);
    }
    return !refusedTypes.contains(type);
}

void RecordingDelegate::ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                                      const std::optional<Error>& error) {
    ends.push_back({channel.get(), error});
}

void RecordingDelegate::ioFrameChannelDidAcceptConnection(
    const std::shared_ptr<PTChannel>&, const std::shared_ptr<PTChannel>& otherChannel,
    const std::shared_ptr<const PTAddress>& address) {
    accepted.push_back(otherChannel);
    acceptedAddresses.push_back(address->description());
    if (onConnection) {
        onConnection(*otherChannel);
    }
}

} // namespace navrel
