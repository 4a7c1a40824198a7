#include "transport/PTProtocol.h"

#include "support/Assertion.h"
#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/PTFrame.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace navrel {

const QString kPTProtocolErrorDomain = QStringLiteral("PTProtocolError");

namespace {

/// Skipped payloads come in pieces of this size, so that skipping takes no memory.
constexpr size_t kDiscardedPieceSize = 64 * 1024;

/// Its address is the key under which a queue holds its protocol.
const char currentQueueFrameProtocolKey = 0;

using LocalProtocol = std::shared_ptr<RQueueLocalIOFrameProtocol>;

// What a queue holds is a counted reference; it goes with the queue.
void releaseQueueLocalProtocol(void* value) {
    delete static_cast<LocalProtocol*>(value);
}

void failHeader(const PTProtocol::FrameCallback& callback, const Error& error) {
    callback(error, kPTFrameTypeEndOfStream, 0, 0);
}

/// The last delivery of a header has come.
void headerDidArrive(const DispatchData& lastPiece, const DispatchData& accumulated, int errnoValue,
                     const PTProtocol::FrameCallback& callback) {
    if (errnoValue != 0) {
        return failHeader(callback, Error::posix(errnoValue));
    }
    // Deliberate: decided on the last piece alone, so a stream that ends within a header has ended
    // as cleanly as one that ends between frames.
    if (lastPiece.isEmpty()) {
        return callback(std::nullopt, kPTFrameTypeEndOfStream, 0, 0);
    }
    const auto contiguous = accumulated.contiguous();
    if (!contiguous) {
        return failHeader(callback, Error::posix(ENOMEM));
    }
    const auto header =
        decodedFrameHeader({contiguous->bytes(), static_cast<qsizetype>(contiguous->size())});
    if (!header) {
        return failHeader(callback, Error(kPTProtocolErrorDomain, 0));
    }
    callback(std::nullopt, header->type, header->tag, header->payloadSize);
}

/// The last delivery of a payload has come.
void payloadDidArrive(const DispatchData& lastPiece, const DispatchData& accumulated,
                      int errnoValue, const PTProtocol::PayloadCallback& callback) {
    if (errnoValue != 0) {
        return callback(Error::posix(errnoValue), std::nullopt, nullptr, 0);
    }
    if (lastPiece.isEmpty()) {
        return callback(std::nullopt, std::nullopt, nullptr, 0);
    }
    const auto contiguous = accumulated.contiguous();
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
                           new LocalProtocol(std::make_shared<RQueueLocalIOFrameProtocol>(queue)),
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
        [self = shared_from_this(), callback = std::move(callback), accumulated = DispatchData()](
            bool done, const DispatchData& piece, int errnoValue) mutable {
            accumulated.append(piece);
            if (done) {
                headerDidArrive(piece, std::exchange(accumulated, {}), errnoValue, callback);
            }
        });
}

void PTProtocol::readPayloadOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                                   PayloadCallback callback) {
    overChannel->read(
        size, queue(),
        [self = shared_from_this(), callback = std::move(callback), accumulated = DispatchData()](
            bool done, const DispatchData& piece, int errnoValue) mutable {
            accumulated.append(piece);
            if (done) {
                payloadDidArrive(piece, std::exchange(accumulated, {}), errnoValue, callback);
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

void PTProtocol::readFramesOverChannel(const std::shared_ptr<DispatchIO>& channel,
                                       OnFrame onFrame) {
    readNextFrame(channel, std::make_shared<const OnFrame>(std::move(onFrame)));
}

void PTProtocol::readNextFrame(const std::shared_ptr<DispatchIO>& channel,
                               const std::shared_ptr<const OnFrame>& onFrame) {
    readFrameOverChannel(channel, [self = shared_from_this(), channel,
                                   onFrame](const std::optional<Error>& error, quint32 type,
                                            quint32 tag, quint32 payloadSize) {
        (*onFrame)(error, type, tag, payloadSize, [self, channel, onFrame, type] {
            if (type != kPTFrameTypeEndOfStream) {
                self->readNextFrame(channel, onFrame);
            }
        });
    });
}

} // namespace navrel
