#pragma once

#include "support/core/Error.h"
#include "support/dispatch/DispatchData.h"
#include "support/dispatch/DispatchIO.h"
#include "transport/usb/BundleInformation.h"
#include "transport/usb/PTUSBPacket.h"
#include "transport/usb/daemon/USBDaemon.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace navrel {

class DispatchQueue;

/// One connection to the USB multiplexing daemon, which carries packets (PTUSBPacket.h): requests,
/// their replies, and broadcasts. After a successful "Connect" its stream carries the bytes of a
/// device's port instead, and lives on with its taker.
///
/// Must be used on the queue that it was opened on. Callbacks run there, after the call has
/// returned; only for a message that a property list cannot hold, before that. Releasing the last
/// reference closes the stream, unless a packet is being read: that keeps the channel alive until
/// `cancel` or `stop`, or until the packet has arrived.
class PTUSBChannel final : public std::enable_shared_from_this<PTUSBChannel> {
public:
    using Message = std::optional<QVariantMap>;
    using Callback = std::function<void(const std::optional<Error>& error)>;
    /// The reply is nil for a packet that could not be read or is not a dictionary.
    using BroadcastHandler = std::function<void(const Message& packet)>;
    using ReplyCallback =
        std::function<void(const std::optional<Error>& error, const Message& reply)>;
    using PacketCallback =
        std::function<void(const std::optional<Error>& error, const Message& packet, quint32 tag)>;
    using DataCallback =
        std::function<void(const std::optional<Error>& error, const DispatchData& data)>;

    /// A message of a type, with the program's name and version and the keys of `payload`. If
    /// `payload` has one of the former, it is ignored.
    static QVariantMap packetDictionaryWithPacketType(
        const QString& messageType, const Message& payload,
        const BundleInformation& bundle = BundleInformation::mainBundle());

    /// Sets `error` if a reply reports a failure, unless there is an error already. False if the
    /// reply does not report success.
    static bool errorFromPlistResponse(const Message& reply, std::optional<Error>& error);

    /// Logs a reply that belongs to no pending request.
    static void logIgnoredReply(const Message& reply);

    /// Makes a channel that is not open yet. It keeps the daemon alive as long as it uses the
    /// stream.
    static std::shared_ptr<PTUSBChannel> create(std::shared_ptr<USBDaemon> daemon);
    ~PTUSBChannel();
    PTUSBChannel(const PTUSBChannel&) = delete;
    PTUSBChannel& operator=(const PTUSBChannel&) = delete;

    /// Opens the stream. Must be called at most once, and with a queue: otherwise aborts the
    /// program. `onEnd` (may be null) is called once, when the stream is closed, with a POSIX error
    /// or nil. On failure nothing stays open.
    [[nodiscard]] std::optional<Error> openOnQueue(std::shared_ptr<DispatchQueue> queue,
                                                   Callback onEnd);

    /// Asks for broadcasts. The callback (may be null) receives the outcome. Must not be called
    /// while a packet is being read: aborts the program.
    void listenWithBroadcastHandler(BroadcastHandler broadcastHandler, Callback callback);

    /// Sends a request. The callback, which must not be null, receives the reply, or the error if
    /// it could not be sent. It is not called if the stream fails before the reply has arrived.
    void sendRequest(const QVariantMap& packet, ReplyCallback callback);

    // The steps of a request. Send callbacks may be null.

    void sendPacket(const QVariantMap& packet, quint32 tag, Callback callback);
    void sendPacketOfType(quint32 type, quint32 overProtocol, quint32 tag, QByteArrayView payload,
                          Callback callback);
    void sendDispatchData(DispatchData data, Callback callback);
    /// The bytes are shared, not copied.
    void sendData(const QByteArray& data, Callback callback);
    /// The next tag: 1, 2, 3, …; after 4294967295 comes 0, the tag of broadcasts: that one request
    /// gets no reply.
    quint32 nextPacketTag() { return ++nextPacketTag_; }

    // The steps of reading.

    /// Reads exactly `length` bytes. A stream has no positions: the offset says what the bytes are
    /// for. Deliberately, the callback receives only the bytes of the last delivery, so none if the
    /// stream ends first.
    void readFromOffset(size_t offset, size_t length, DataCallback callback);
    /// Reads a packet, unless one is being read.
    void setNeedsReadingPacket();
    /// Reads a packet, and passes it to the callback of the request with its tag or, for tag 0 and
    /// for a failed read, to the handler (may be null). Must not be called while a packet is being
    /// read: aborts the program.
    void scheduleReadPacketWithBroadcastHandler(BroadcastHandler broadcastHandler);
    /// Reads a packet. Deliberately, a stream that ends before or within a packet aborts the
    /// program: a daemon never does that, and the provider of the stream must make sure of it. A
    /// size that no packet has is a read error, EBADMSG, and stops the stream.
    void scheduleReadPacketWithCallback(PacketCallback callback);

    /// Closes the stream once what is being read and written is finished. Does nothing if it was
    /// never opened.
    void cancel();
    /// Closes the stream at once. Does nothing if it was never opened.
    void stop();

    /// The stream; null until it is opened.
    const std::shared_ptr<DispatchIO>& dispatchChannel() const { return channel_; }
    int fileDescriptor() const { return channel_ ? channel_->descriptor() : -1; }
    bool valid() const { return channel_ != nullptr; }

private:
    explicit PTUSBChannel(std::shared_ptr<USBDaemon> daemon) : daemon_(std::move(daemon)) {}

    void close(DispatchIO::Close how);
    void sizeWordDidArrive(const std::optional<Error>& error, const DispatchData& data,
                           const PacketCallback& callback);
    void packetDidArrive(const std::optional<Error>& error, const DispatchData& data, quint32 size,
                         const PacketCallback& callback);
    void readingDidFail(const Error& error, const PacketCallback& callback);
    void dispatchPacket(const std::optional<Error>& error, const Message& packet, quint32 tag,
                        const BroadcastHandler& broadcastHandler);
    void dispatchReply(const std::optional<Error>& error, const Message& reply, quint32 tag);

    const std::shared_ptr<USBDaemon> daemon_;
    std::shared_ptr<DispatchIO> channel_;
    std::weak_ptr<DispatchQueue> queue_;
    quint32 nextPacketTag_ = 0;
    std::optional<QHash<quint32, ReplyCallback>> responseQueue_; ///< made by the first request
    bool autoReadPackets_ = false;
    bool isReadingPackets_ = false;
};

} // namespace navrel
