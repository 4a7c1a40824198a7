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
constexpr size_t kDiscardedPieceSize = 64 * 1024;

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

/// Decodes a header that has arrived, or tells why there is none; it then is an end of stream.
std::optional<Error> headerError(DispatchData accumulated, int errnoValue, PTFrameHeader& header) {
    if (errnoValue != 0) {
        return Error::posix(errnoValue);
    }
    const auto contiguous = std::move(accumulated).contiguous();
    if (!contiguous) {
        return Error::posix(ENOMEM);
    }
    const auto decoded =
        decodedFrameHeader({contiguous->bytes(), static_cast<qsizetype>(contiguous->size())});
    if (!decoded) {
        return Error(kPTProtocolErrorDomain, 0);
    }
    header = *decoded;
    return std::nullopt;
}

/// Handles the deliveries of a header and calls back with (error, header) after the last one.
template <typename Callback>
DispatchIO::ReadHandler headerHandler(Callback callback) {
    return [callback = std::move(callback), accumulated = DispatchData()](
               bool done, const DispatchData& piece, int errnoValue) mutable {
        accumulated.append(piece);
        if (!done) {
            return;
        }
        PTFrameHeader header;
        // Deliberate: the end of the stream is decided on the last piece alone, so a stream that
        // ends within a header has ended as cleanly as one that ends between frames.
        const bool isEndOfStream = errnoValue == 0 && piece.isEmpty();
        const auto error =
            isEndOfStream ? std::nullopt : headerError(std::move(accumulated), errnoValue, header);
        callback(error, header);
    };
}

/// The last delivery of a payload has come.
void payloadDidArrive(const DispatchData& lastPiece, DispatchData accumulated, int errnoValue,
                      const PTProtocol::PayloadCallback& callback) {
    if (errnoValue != 0) {
        return callback(Error::posix(errnoValue), std::nullopt, nullptr, 0);
    }
    if (lastPiece.isEmpty()) {
        return callback(std::nullopt, std::nullopt, nullptr, 0);
    }
    const auto contiguous = std::move(accumulated).contiguous();
    if (!contiguous) {
        return callback(Error::posix(ENOMEM), std::nullopt, nullptr, 0);
    }
    callback(std::nullopt, contiguous, contiguous->bytes(), contiguous->size());
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
    channel->read(
        kPTFrameHeaderSize, queue(),
        headerHandler([self = shared_from_this(), callback = std::move(callback)](
                          const std::optional<Error>& error, const PTFrameHeader& header) {
            callback(error, header.type, header.tag, header.payloadSize);
        }));
}

void PTProtocol::readPayloadOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                                   PayloadCallback callback) {
    overChannel->read(size, queue(),
                      [self = shared_from_this(), callback = std::move(callback),
                       accumulated = DispatchData()](bool done, const DispatchData& piece,
                                                     int errnoValue) mutable {
                          accumulated.append(piece);
                          if (done) {
                              payloadDidArrive(piece, std::move(accumulated), errnoValue, callback);
                          }
                      });
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
    const auto frameDidBegin = [loop](const std::optional<Error>& error,
                                      const PTFrameHeader& header) {
        loop->onFrame(error, header.type, header.tag, header.payloadSize,
                      [loop, type = header.type] {
                          if (type != kPTFrameTypeEndOfStream) {
                              loop->protocol->readNextFrame(loop);
                          }
                      });
    };
    loop->channel->read(kPTFrameHeaderSize, queue(), headerHandler(frameDidBegin));
}

// A pointer that owns nothing: the queue must not be kept alive by what it holds itself.
RQueueLocalIOFrameProtocol::RQueueLocalIOFrameProtocol(DispatchQueue& queue)
    : PTProtocol({std::shared_ptr<void>(), &queue}) {}

} // namespace navrel
