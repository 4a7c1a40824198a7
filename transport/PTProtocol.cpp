#include "transport/PTProtocol.h"

#include "support/Assertion.h"
#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/PTFrame.h"

#include <cerrno>
#include <limits>
#include <memory>
#include <utility>

namespace navrel {

const QString kPTProtocolErrorDomain = QStringLiteral("PTProtocolError");

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

/// How a read of an exact length has ended.
struct ReadOutcome {
    DispatchData data;
    int errnoValue;
    // Deliberate: decided on the last piece alone, so a stream that ends within a frame has ended
    // as cleanly as one that ends between frames.
    bool isEndOfStream;
};

/// Gathers the pieces of a read, and calls back with the outcome after the last one.
template <typename Callback>
DispatchIO::ReadHandler gatheringHandler(Callback callback) {
    return [callback = std::move(callback),
            accumulated = DispatchData()](bool done, DispatchData piece, int errnoValue) mutable {
        const bool isEndOfStream = errnoValue == 0 && piece.isEmpty();
        accumulated.append(std::move(piece));
        if (done) {
            callback(ReadOutcome{std::move(accumulated), errnoValue, isEndOfStream});
        }
    };
}

/// The bytes in one piece, or the reason why there are none.
std::optional<Error> mapOutcome(ReadOutcome& outcome) {
    if (outcome.errnoValue != 0) {
        return Error::posix(outcome.errnoValue);
    }
    auto contiguous = std::move(outcome.data).contiguous();
    if (!contiguous) {
        return Error::posix(ENOMEM);
    }
    outcome.data = std::move(*contiguous);
    return std::nullopt;
}

/// Calls back with (error, header) at the end of a read; the header of an end of stream, and of a
/// failure, has type 0.
template <typename Callback>
void tellHeader(ReadOutcome outcome, const Callback& callback) {
    if (outcome.isEndOfStream) {
        return callback(std::nullopt, PTFrameHeader());
    }
    if (const auto error = mapOutcome(outcome)) {
        return callback(error, PTFrameHeader());
    }
    const auto header =
        decodedFrameHeader({outcome.data.bytes(), static_cast<qsizetype>(outcome.data.size())});
    if (!header) {
        return callback(Error(kPTProtocolErrorDomain, 0), PTFrameHeader());
    }
    callback(std::nullopt, *header);
}

void tellPayload(ReadOutcome outcome, const PTProtocol::PayloadCallback& callback) {
    if (outcome.isEndOfStream) {
        return callback(std::nullopt, std::nullopt, nullptr, 0);
    }
    if (const auto error = mapOutcome(outcome)) {
        return callback(error, std::nullopt, nullptr, 0);
    }
    const std::optional<DispatchData> data = std::move(outcome.data);
    callback(std::nullopt, data, data->bytes(), data->size());
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
    const size_t payloadSize = payload ? payload->size() : 0;
    NAVREL_ASSERT_AS(payloadSize <= std::numeric_limits<quint32>::max(),
                     "payloadSize <= UINT32_MAX");
    const auto header = encodedFrameHeader({type, frameTag, static_cast<quint32>(payloadSize)});
    DispatchData frame = DispatchData::copying({header.data(), header.size()});
    if (payload) {
        frame.append(*payload);
    }
    return frame;
}

void PTProtocol::sendFrameOfType(quint32 type, quint32 tag,
                                 const std::optional<DispatchData>& payload,
                                 const std::shared_ptr<DispatchIO>& overChannel,
                                 SendCallback callback) {
    DispatchIO::WriteHandler handler;
    if (callback) {
        handler = [self = shared_from_this(), callback = std::move(callback)](int errnoValue) {
            callback(errorFromErrno(errnoValue));
        };
    }
    overChannel->write(createDispatchDataWithFrameOfType(type, tag, payload), queue(),
                       std::move(handler));
}

void PTProtocol::readFrameOverChannel(const std::shared_ptr<DispatchIO>& channel,
                                      FrameCallback callback) {
    const auto tell = [callback = std::move(callback)](const std::optional<Error>& error,
                                                       const PTFrameHeader& header) {
        callback(error, header.type, header.tag, header.payloadSize);
    };
    channel->read(kPTFrameHeaderSize, queue(),
                  gatheringHandler([self = shared_from_this(), tell](ReadOutcome outcome) {
                      tellHeader(std::move(outcome), tell);
                  }));
}

void PTProtocol::readPayloadOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                                   PayloadCallback callback) {
    overChannel->read(
        size, queue(),
        gatheringHandler([self = shared_from_this(), callback = std::move(callback)](
                             ReadOutcome outcome) { tellPayload(std::move(outcome), callback); }));
}

void PTProtocol::readAndDiscardDataOfSize(size_t size,
                                          const std::shared_ptr<DispatchIO>& overChannel,
                                          DiscardCallback callback) {
    overChannel->read(
        size, queue(),
        [self = shared_from_this(),
         callback = std::move(callback)](bool done, const DispatchData& piece, int errnoValue) {
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

void PTProtocol::readNextFrame(const std::shared_ptr<const FrameLoop>& loop) {
    loop->channel->read(
        kPTFrameHeaderSize, queue(), gatheringHandler([loop](ReadOutcome outcome) {
            tellHeader(std::move(outcome),
                       [&loop](const std::optional<Error>& error, const PTFrameHeader& header) {
                           tellFrame(loop, error, header);
                       });
        }));
}

void PTProtocol::tellFrame(const std::shared_ptr<const FrameLoop>& loop,
                           const std::optional<Error>& error, const PTFrameHeader& header) {
    loop->onFrame(error, header.type, header.tag, header.payloadSize, [loop, type = header.type] {
        if (type != kPTFrameTypeEndOfStream) {
            loop->protocol->readNextFrame(loop);
        }
    });
}

// A pointer that owns nothing: the queue must not be kept alive by what it holds itself.
RQueueLocalIOFrameProtocol::RQueueLocalIOFrameProtocol(DispatchQueue& queue)
    : PTProtocol({std::shared_ptr<void>(), &queue}) {}

} // namespace navrel
