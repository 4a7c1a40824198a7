#include "fuzz/transport/CutInput.h"
#include "support/core/Assertion.h"
#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/frames/PTChannel.h"
#include "transport/frames/PTData.h"
#include "transport/frames/PTFrame.h"
#include "transport/frames/PTPayload.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QEventLoop>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

// A hostile peer. The first bytes of an input say how its rest is cut into pieces; the rest is what
// the peer sends, piece by piece, to a channel that receives frames. What the channel delivers is
// compared with what a plain walk over the bytes finds.
namespace navrel {
namespace {

constexpr quint32 kRefusedType = 666;

struct Frame {
    quint32 type = 0;
    quint32 tag = 0;
    QByteArray payload;
    bool operator==(const Frame&) const = default;
};

class Recorder final : public PTChannelDelegate {
public:
    quint8 optionalOperations() const override { return kShouldAcceptFrame; }

    bool ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>&, quint32 type,
                                               quint32, quint32) override {
        return type != kRefusedType;
    }

    void
    ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>&, quint32 type,
                                        quint32 tag,
                                        const std::shared_ptr<const PTData>& payload) override {
        Frame frame = {type, tag, {}};
        if (payload) {
            frame.payload = {payload->data(), static_cast<qsizetype>(payload->length())};
        }
        frames.push_back(frame);
    }

    std::vector<Frame> frames;
};

/// What a channel ought to deliver of a stream that ends behind these bytes.
std::vector<Frame> framesIn(QByteArrayView bytes) {
    constexpr auto kHeaderSize = static_cast<qsizetype>(kPTFrameHeaderSize);
    std::vector<Frame> frames;
    while (const auto header = decodedFrameHeader(bytes)) {
        bytes = bytes.sliced(kHeaderSize);
        if (header->type == kPTFrameTypeEndOfStream || header->payloadSize > bytes.size()) {
            break;
        }
        if (header->type != kRefusedType) {
            frames.push_back(
                {header->type, header->tag, bytes.first(header->payloadSize).toByteArray()});
        }
        bytes = bytes.sliced(header->payloadSize);
    }
    return frames;
}

void sendAndServe(int peer, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count = ::send(peer, bytes.data(), static_cast<size_t>(bytes.size()),
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN) {
            return; // the channel has had enough
        }
        QCoreApplication::processEvents();
        bytes = bytes.sliced(std::max<ssize_t>(count, 0));
    }
}

void sendInPieces(int peer, QByteArrayView cuts, QByteArrayView bytes) {
    for (const char cut : cuts) {
        const auto size = std::min<qsizetype>(static_cast<uint8_t>(cut), bytes.size());
        sendAndServe(peer, bytes.first(size));
        bytes = bytes.sliced(size);
    }
    sendAndServe(peer, bytes);
}

void receive(QByteArrayView cuts, QByteArrayView bytes) {
    std::array<int, 2> ends = {};
    NAVREL_ASSERT(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0);
    bool hasEnded = false;
    const auto stream = DispatchIO::create(ends[0], DispatchQueue::mainQueue(), [&](int) {
        ::close(ends[0]);
        hasEnded = true;
    });
    const auto recorder = std::make_shared<Recorder>();
    const auto channel = PTChannel::channelWithDelegate(recorder);
    NAVREL_ASSERT(!channel->startReadingFromConnectedChannel(stream));
    sendInPieces(ends[1], cuts, bytes);
    ::close(ends[1]);
    while (!hasEnded) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    NAVREL_ASSERT(channel->connState() == kConnStateNone);
    NAVREL_ASSERT(recorder->frames == framesIn(bytes));
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    if (bytes.isEmpty()) {
        return 0;
    }
    const auto input = navrel::CutInput::from(bytes);
    navrel::receive(input.cuts, input.bytes);
    return 0;
}
