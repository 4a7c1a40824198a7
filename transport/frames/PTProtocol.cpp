#include "transport/frames/PTProtocol.h"

#include "support/core/Assertion.h"
#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/frames/PTFrame.h"
#include "transport/frames/PTReadOutcome.h"

#include <cerrno>
#include <limits>
#include <memory>
#include <utility>

namespace navrel {

namespace {

/// Skipped payloads come in pieces of this size, so that skipping takes no memory.
constexpr size_t kDiscardedPieceSize = size_t{64} * 1024;

/// Its address is the key under which a queue holds its protocol.
const char currentQueueFrameProtocolKey = 0;

using LocalProtocol = std::shared_ptr<RQueueLocalIOFrameProtocol>;

// What a queue holds is a counted reference, which goes when the queue does.
void releaseQueueLocalProtocol(void* value) {
    if (value == nullptr) {
        return;
    }
    const std::unique_ptr<LocalProtocol> reference(static_cast<LocalProtocol*>(value));
    (*reference)->forgetQueue();
}

size_t sizeOf(const std::optional<DispatchData>& payload) {
    return payload ? payload->size() : 0;
}

bool isFramePayloadSize(size_t size) {
    return size <= std::numeric_limits<quint32>::max();
}

/// Calls back with what the end of a header's read says. What a stream still delivers when it ends
/// within a header is nothing to anybody.
template <typename Callback>
DispatchIO::ReadHandler headerHandler(Callback callback) {
    return [callback = std::move(callback)](bool done, const DispatchData& piece, int errnoValue) {
        if (done) {
            callback(headerOutcome(piece, errnoValue));
        }
    };
}

} // namespace

std::shared_ptr<PTProtocol>
PTProtocol::initWithDispatchQueue(std::shared_ptr<DispatchQueue> queue) {
    return std::shared_ptr<PTProtocol>(new PTProtocol(std::move(queue)));
}

std::shared_ptr<PTProtocol> PTProtocol::init() {
    return initWithDispatchQueue(DispatchQueue::mainQueue());
}

std::shared_ptr<PTProtocol>
PTProtocol::sharedProtocolForQueue(const std::shared_ptr<DispatchQueue>& queue) {
    const void* key = &currentQueueFrameProtocolKey;
    if (queue->specific(key) == nullptr) {
        queue->setSpecific(key,
                           new LocalProtocol(std::make_shared<RQueueLocalIOFrameProtocol>(*queue)),
                           releaseQueueLocalProtocol);
    }
    return *static_cast<LocalProtocol*>(queue->specific(key));
}

DispatchData
PTProtocol::createDispatchDataWithFrameOfType(quint32 type, quint32 frameTag,
                                              const std::optional<DispatchData>& payload) const {
    const size_t payloadSize = sizeOf(payload);
    NAVREL_ASSERT_AS(isFramePayloadSize(payloadSize), "payloadSize <= UINT32_MAX");
    const auto header = encodedFrameHeader({type, frameTag, static_cast<quint32>(payloadSize)});
    // The header's bytes are freed where the last reference goes, not as a job of the queue: nobody
    // can tell the difference, and a job would cost more than all the rest of sending.
    DispatchData frame = DispatchData::copying({header.data(), header.size()});
    if (payload) {
        frame.append(*payload);
    }
    return frame;
}

void PTProtocol::sendFrameOfType(quint32 type, quint32 tag, std::optional<DispatchData> payload,
                                 const std::shared_ptr<DispatchIO>& overChannel,
                                 SendCallback callback) {
    DispatchIO::WriteHandler handler;
    if (callback) {
        handler = [self = shared_from_this(), callback = std::move(callback)](int errnoValue) {
            callback(errorFromErrno(errnoValue));
        };
    }
    // The frame as above, but that its header travels with the write.
    const size_t payloadSize = sizeOf(payload);
    NAVREL_ASSERT_AS(isFramePayloadSize(payloadSize), "payloadSize <= UINT32_MAX");
    const auto header = encodedFrameHeader({type, tag, static_cast<quint32>(payloadSize)});
    overChannel->write(WritePrefix(header), payload ? *std::move(payload) : DispatchData(), queue(),
                       std::move(handler));
}

void PTProtocol::readFrameOverChannel(const std::shared_ptr<DispatchIO>& channel,
                                      FrameCallback callback) {
    channel->read(kPTFrameHeaderSize, queue(),
                  headerHandler([self = shared_from_this(),
                                 callback = std::move(callback)](const PTHeaderOutcome& outcome) {
                      const auto& [type, tag, payloadSize] = outcome.header;
                      callback(outcome.error, type, tag, payloadSize);
                  }));
}

void PTProtocol::readPayloadOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                                   PayloadCallback callback) {
    if (size > kLargestPayload) {
        return refusePayload(std::move(callback));
    }
    overChannel->read(size, queue(),
                      [self = shared_from_this(), callback = std::move(callback)](
                          bool done, DispatchData&& piece, int errnoValue) mutable {
                          if (done) {
                              auto [error, data] = payloadOutcome(std::move(piece), errnoValue);
                              const char* const buffer = data ? data->bytes() : nullptr;
                              const size_t bufferSize = data ? data->size() : 0;
                              callback(error, std::move(data), buffer, bufferSize);
                          }
                      });
}

void PTProtocol::refusePayload(PayloadCallback callback) {
    queue()->async([self = shared_from_this(), callback = std::move(callback)]() mutable {
        callback(Error::posix(ENOMEM), std::nullopt, nullptr, 0);
    });
}

void PTProtocol::readAndDiscardDataOfSize(size_t size,
                                          const std::shared_ptr<DispatchIO>& overChannel,
                                          DiscardCallback callback) {
    overChannel->read(
        size, queue(),
        [self = shared_from_this(), callback = std::move(callback)](
            bool done, const DispatchData& piece, int errnoValue) mutable {
            if (done && callback) {
                callback(errorFromErrno(errnoValue), piece.isEmpty());
            }
        },
        kDiscardedPieceSize);
}

/// What stays the same from one frame of a loop to the next.
struct PTProtocol::FrameLoop {
    std::shared_ptr<PTProtocol> protocol;
    std::shared_ptr<DispatchIO> channel;
    OnFrame onFrame;
};

void PTProtocol::readFramesOverChannel(const std::shared_ptr<DispatchIO>& channel,
                                       OnFrame onFrame) {
    readNextFrame(std::make_shared<const FrameLoop>(
        FrameLoop{shared_from_this(), channel, std::move(onFrame)}));
}

void PTProtocol::readNextFrame(std::shared_ptr<const FrameLoop> loop) {
    const FrameLoop& kept = *loop;
    kept.channel->read(kPTFrameHeaderSize, kept.protocol->queue(),
                       headerHandler([loop = std::move(loop)](const PTHeaderOutcome& outcome) {
                           const auto& [type, tag, payloadSize] = outcome.header;
                           loop->onFrame(outcome.error, type, tag, payloadSize, Resume(loop, type));
                       }));
}

void PTProtocol::Resume::operator()() {
    if (type_ != kPTFrameTypeEndOfStream) {
        readNextFrame(std::move(loop_));
    }
}

// A pointer that owns nothing: the queue must not be kept alive by what it holds itself.
RQueueLocalIOFrameProtocol::RQueueLocalIOFrameProtocol(DispatchQueue& queue)
    : PTProtocol({std::shared_ptr<void>(), &queue}) {}

} // namespace navrel
