#include "transport/usb/PTUSBChannel.h"

#include "support/core/Assertion.h"
#include "support/core/Log.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/propertylist/PropertyList.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

const QString kNumber = QStringLiteral("Number");

} // namespace

// Messages.

QVariantMap PTUSBChannel::packetDictionaryWithPacketType(const QString& messageType,
                                                         const Message& payload,
                                                         const BundleInformation& bundle) {
    QVariantMap message = payload.value_or(QVariantMap());
    if (!bundle.name) {
        // Deliberate: a program without a name can do no more than listen, whatever was asked for.
        message.insert(kMessageType, QStringLiteral("Listen"));
        return message;
    }
    message.insert(kMessageType, messageType);
    message.insert(QStringLiteral("ProgName"), *bundle.name);
    message.insert(QStringLiteral("ClientVersionString"), bundle.version);
    return message;
}

bool PTUSBChannel::errorFromPlistResponse(const Message& reply, std::optional<Error>& error) {
    if (error) {
        return true; // deliberate: callers look at the error, not at this
    }
    const auto number = reply ? numberInMessage(*reply, kNumber) : std::nullopt;
    if (!number) {
        error = Error(kPTUSBHubErrorDomain, 0);
        return false;
    }
    const auto code = static_cast<quint32>(*number); // the low 32 bits
    if (code != kPTUSBReplyOK) {
        error = errorOfPTUSBReplyCode(code);
    }
    return code == kPTUSBReplyOK;
}

// Life cycle.

std::shared_ptr<PTUSBChannel> PTUSBChannel::create(std::shared_ptr<USBDaemon> daemon) {
    return std::shared_ptr<PTUSBChannel>(new PTUSBChannel(std::move(daemon)));
}

PTUSBChannel::~PTUSBChannel() = default;

std::optional<Error> PTUSBChannel::openOnQueue(std::shared_ptr<DispatchQueue> queue,
                                               Callback onEnd) {
    NAVREL_ASSERT_AS(queue != nullptr, "queue != nil");
    NAVREL_ASSERT_AS(channel_ == nullptr, "channel_ == nil");
    queue_ = queue;
    OwnedDescriptor socket = daemon_->openStream();
    if (!socket.isValid()) {
        return Error::posix(errno);
    }
    channel_ = DispatchIO::create(
        socket.value(), std::move(queue),
        [daemon = daemon_, descriptor = socket.value(), onEnd = std::move(onEnd)](int errnoValue) {
            ::close(descriptor);
            if (onEnd) {
                onEnd(errorFromErrno(errnoValue));
            }
        });
    if (!channel_) {
        return Error::posix(errno);
    }
    socket.release();
    return std::nullopt;
}

void PTUSBChannel::cancel() {
    close(DispatchIO::Close::afterPending);
}

void PTUSBChannel::stop() {
    close(DispatchIO::Close::stop);
}

// A closed stream is not read any more: each read would fail and be followed by the next.
void PTUSBChannel::close(DispatchIO::Close how) {
    if (channel_) {
        autoReadPackets_ = false;
        channel_->close(how);
    }
}

// Sending.

void PTUSBChannel::listenWithBroadcastHandler(BroadcastHandler broadcastHandler,
                                              Callback callback) {
    autoReadPackets_ = true;
    scheduleReadPacketWithBroadcastHandler(std::move(broadcastHandler));
    sendRequest(packetDictionaryWithPacketType(QStringLiteral("Listen"), std::nullopt),
                [callback = std::move(callback)](std::optional<Error> error, const Message& reply) {
                    errorFromPlistResponse(reply, error);
                    if (callback) {
                        callback(error);
                    }
                });
}

void PTUSBChannel::sendRequest(const QVariantMap& packet, ReplyCallback callback) {
    const quint32 tag = nextPacketTag();
    sendPacket(packet, tag,
               [self = shared_from_this(), tag,
                callback = std::move(callback)](const std::optional<Error>& error) {
                   if (error) {
                       return callback(error, std::nullopt);
                   }
                   if (!self->responseQueue_) {
                       self->responseQueue_.emplace();
                   }
                   self->responseQueue_->insert(tag, callback);
               });
    setNeedsReadingPacket();
}

void PTUSBChannel::sendPacket(const QVariantMap& packet, quint32 tag, Callback callback) {
    std::optional<Error> error;
    const auto payload = XMLDataWithPropertyList(packet, &error);
    if (!payload) {
        if (callback) {
            callback(error);
        }
        return;
    }
    sendPacketOfType(kPTUSBPacketTypePlist, kPTUSBPacketProtocolPlist, tag, *payload,
                     std::move(callback));
}

void PTUSBChannel::sendPacketOfType(quint32 type, quint32 overProtocol, quint32 tag,
                                    QByteArrayView payload, Callback callback) {
    sendDispatchData(createPTUSBPacket(type, overProtocol, tag, payload), std::move(callback));
}

void PTUSBChannel::sendData(const QByteArray& data, Callback callback) {
    sendDispatchData(DispatchData::referencing(data), std::move(callback));
}

void PTUSBChannel::sendDispatchData(DispatchData data, Callback callback) {
    DispatchIO::WriteHandler handler;
    if (callback) {
        handler = [callback = std::move(callback)](int errnoValue) {
            callback(errorFromErrno(errnoValue));
        };
    }
    channel_->write(std::move(data), queue_.lock(), std::move(handler));
}

// Reading.

void PTUSBChannel::readFromOffset(size_t, size_t length, DataCallback callback) {
    channel_->read(
        length, queue_.lock(),
        [callback = std::move(callback)](bool done, const DispatchData& data, int errnoValue) {
            if (done) {
                callback(errorFromErrno(errnoValue), data);
            }
        });
}

void PTUSBChannel::setNeedsReadingPacket() {
    if (!isReadingPackets_) {
        scheduleReadPacketWithBroadcastHandler(nullptr);
    }
}

void PTUSBChannel::scheduleReadPacketWithCallback(PacketCallback callback) {
    isReadingPackets_ = true;
    readFromOffset(0, kPTUSBPacketSizeWordSize,
                   [self = shared_from_this(), callback = std::move(callback)](
                       const std::optional<Error>& error, const DispatchData& data) {
                       self->sizeWordDidArrive(error, data, callback);
                   });
}

void PTUSBChannel::sizeWordDidArrive(const std::optional<Error>& error, const DispatchData& data,
                                     const PacketCallback& callback) {
    if (error) {
        return readingDidFail(*error, callback);
    }
    // Deliberate: a stream that ends between packets is not a clean end.
    NAVREL_ASSERT_AS(data.size() == kPTUSBPacketSizeWordSize,
                     "buffer_size == sizeof(ref_upacket.size)");
    const quint32 size = announcedPTUSBPacketSize(data.bytes());
    if (!isPTUSBPacketSizeAllowed(size)) {
        stop(); // where the next packet begins, nobody knows
        return readingDidFail(Error::posix(EBADMSG), callback);
    }
    readFromOffset(kPTUSBPacketSizeWordSize, size - kPTUSBPacketSizeWordSize,
                   [self = shared_from_this(), size, callback](const std::optional<Error>& failure,
                                                               const DispatchData& rest) {
                       self->packetDidArrive(failure, rest, size, callback);
                   });
}

void PTUSBChannel::packetDidArrive(const std::optional<Error>& error, const DispatchData& data,
                                   quint32 size, const PacketCallback& callback) {
    if (error) {
        return readingDidFail(*error, callback);
    }
    NAVREL_ASSERT_AS(data.size() == size - kPTUSBPacketSizeWordSize,
                     "buffer_size == upacket->size - offset");
    isReadingPackets_ = false;
    const MallocedBytes bytes = usbmuxPacketAlloc(size - kPTUSBPacketHeaderSize);
    std::memcpy(bytes.get() + kPTUSBPacketSizeWordSize, data.bytes(), data.size());
    const PTUSBPacket packet = decodedPTUSBPacket({bytes.get(), static_cast<qsizetype>(size)});
    callback(packet.error, packet.message, packet.tag);
}

void PTUSBChannel::readingDidFail(const Error& error, const PacketCallback& callback) {
    isReadingPackets_ = false;
    callback(error, std::nullopt, kPTUSBBroadcastTag);
}

void PTUSBChannel::scheduleReadPacketWithBroadcastHandler(BroadcastHandler broadcastHandler) {
    NAVREL_ASSERT_AS(!isReadingPackets_, "isReadingPackets_ == NO");
    scheduleReadPacketWithCallback(
        [self = shared_from_this(), broadcastHandler = std::move(broadcastHandler)](
            const std::optional<Error>& error, const Message& packet, quint32 tag) {
            self->dispatchPacket(error, packet, tag, broadcastHandler);
        });
}

void PTUSBChannel::dispatchPacket(const std::optional<Error>& error, const Message& packet,
                                  quint32 tag, const BroadcastHandler& broadcastHandler) {
    if (tag != kPTUSBBroadcastTag) {
        dispatchReply(error, packet, tag);
    } else if (broadcastHandler) {
        broadcastHandler(packet); // deliberate: of a failed read, nothing but that there was one
    }
    if (autoReadPackets_) {
        scheduleReadPacketWithBroadcastHandler(broadcastHandler);
    }
}

void PTUSBChannel::dispatchReply(const std::optional<Error>& error, const Message& reply,
                                 quint32 tag) {
    if (!responseQueue_) {
        return; // deliberate: before the first request no reply is worth a message
    }
    const ReplyCallback callback = responseQueue_->take(tag);
    if (callback) {
        return callback(error, reply);
    }
    logIgnoredReply(reply);
}

void PTUSBChannel::logIgnoredReply(const Message& reply) {
    log(QStringLiteral("Warning: Ignoring reply packet for which there is no registered callback. "
                       "Packet => %1")
            .arg(descriptionOfMessage(reply)));
}

} // namespace navrel
