#pragma once

#include "support/core/Described.h"
#include "support/core/Error.h"
#include "support/dispatch/DispatchData.h"
#include "support/dispatch/DispatchIO.h"
#include "transport/frames/PTChannelDelegate.h"
#include "transport/frames/PTProtocol.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <netinet/in.h>
#include <optional>

namespace navrel {

class DispatchSource;
class OwnedDescriptor;
class PTUSBHub;

/// Domain of the one error of channels: code 0, a stream channel could not be made on the socket.
extern const QString kPTErrorDomain;

/// States of a channel.
enum PTConnState : quint8 {
    kConnStateNone = 0,
    kConnStateConnecting = 1,
    kConnStateConnected = 2,
    kConnStateListening = 3,
};

/// One connection that carries frames, or one listening socket.
///
///   None ──connect──▶ Connecting ──▶ Connected ──close, cancel, end──▶ None
///     ◀──failure (USB)──┘
///   None ──listen───▶ Listening
///
/// Must be used on the queue of its protocol, where the delegate is called too. Callbacks may be
/// null; connect, listen and send in the wrong state call theirs with the POSIX error EPERM. A
/// channel that is connected or listening keeps itself alive until it has ended.
class PTChannel final : public std::enable_shared_from_this<PTChannel> {
public:
    using Callback = std::function<void(const std::optional<Error>& error)>;
    using ConnectCallback = std::function<void(const std::optional<Error>& error,
                                               const std::shared_ptr<const PTAddress>& address)>;

    /// On the shared protocol of the main queue.
    static std::shared_ptr<PTChannel>
    channelWithDelegate(std::shared_ptr<PTChannelDelegate> delegate);

    static std::shared_ptr<PTChannel> initWithProtocol(std::shared_ptr<PTProtocol> protocol,
                                                       std::shared_ptr<PTChannelDelegate> delegate);
    static std::shared_ptr<PTChannel> initWithProtocol(std::shared_ptr<PTProtocol> protocol);

    /// On the shared protocol of the main queue, without a delegate.
    static std::shared_ptr<PTChannel> init();

    PTChannel(const PTChannel&) = delete;
    PTChannel& operator=(const PTChannel&) = delete;

    const std::shared_ptr<PTProtocol>& protocol() const { return protocol_; }
    void setProtocol(std::shared_ptr<PTProtocol> protocol) { protocol_ = std::move(protocol); }

    /// The channel keeps its delegate alive, and asks it for its optional operations when it is
    /// set. Null, as at first, for none.
    const std::shared_ptr<PTChannelDelegate>& delegate() const { return delegate_; }
    void setDelegate(std::shared_ptr<PTChannelDelegate> delegate);

    /// An object that the application attaches; null at first.
    const std::shared_ptr<const Described>& userInfo() const { return userInfo_; }
    void setUserInfo(std::shared_ptr<const Described> userInfo) { userInfo_ = std::move(userInfo); }

    /// Deliberately true also while connecting.
    bool isConnected() const;
    bool isListening() const { return connState_ == kConnStateListening; }

    PTConnState connState() const { return connState_; }

    /// Stores a state without any check.
    void setConnState(PTConnState state) { connState_ = state; }

    /// Connects over TCP; port and address are in host byte order. Blocks until the connection is
    /// made or refused, for at most two seconds (then ETIMEDOUT). The callback is called before
    /// this returns, with the peer's address on success. Deliberately, a channel whose attempt
    /// failed stays in the state Connecting: every attempt needs a new channel.
    void connectToPort(quint16 port, quint32 IPv4Address, const ConnectCallback& callback);

    /// Connects to a port (in host byte order) of a device on USB, as PTUSBHub::connectToDevice. A
    /// channel whose attempt failed is in the state None again. The callback is called before this
    /// returns if the daemon cannot be reached, otherwise later. If the daemon refuses the attempt,
    /// the delegate is also called for the end of the stream.
    void connectToPort(quint16 port, const std::shared_ptr<PTUSBHub>& overUSBHub,
                       const QVariant& deviceID, Callback callback);

    /// Listens on a TCP port of the given address; both are in host byte order. The callback is
    /// called before this returns.
    void listenOnPort(quint16 port, quint32 IPv4Address, const Callback& callback);

    /// Adopts a stream channel in place of any other, which is closed, and begins to read frames.
    /// The error is EPERM for a listening channel, which goes on listening.
    std::optional<Error>
    startReadingFromConnectedChannel(const std::shared_ptr<DispatchIO>& channel);

    /// Accepts one connection on a listening socket. False if no more can be accepted now.
    bool acceptIncomingConnection(int serverSocket);

    /// Sends one frame. The callback is called when it has been written, or has failed.
    void sendFrameOfType(quint32 type, quint32 tag, std::optional<DispatchData> payload,
                         PTProtocol::SendCallback callback);

    /// Ends the connection, and abandons what is being read and written; or stops listening. The
    /// delegate is called later, once the socket is closed.
    void close();

    /// As `close`, but finishes what is being read and written first.
    void cancel();

    /// The stream channel of a connection. Setting it in the listening state stops the program;
    /// with neither channel nor source left the state is None.
    const std::shared_ptr<DispatchIO>& dispatchChannel() const { return dispatchObj_channel_; }
    void setDispatchChannel(std::shared_ptr<DispatchIO> channel);

    /// The source of a listening socket. Setting it in the states Connecting and Connected stops
    /// the program; with neither channel nor source left the state is None.
    const std::shared_ptr<DispatchSource>& dispatchSource() const { return dispatchObj_source_; }
    void setDispatchSource(std::shared_ptr<DispatchSource> source);

    /// Text for the log: address, state, and the user information if there is any.
    QString description() const;

private:
    struct IncomingFrame;

    explicit PTChannel(std::shared_ptr<PTProtocol> protocol);

    bool delegateHas(PTChannelDelegate::OptionalOperation operation) const;
    void becomeNoneIfIdle();
    void end(DispatchIO::Close how);
    void connectionDidEnd(int errnoValue);
    void tellDelegateOfEnd(const std::optional<Error>& error);

    std::shared_ptr<DispatchIO> streamChannelOnSocket(OwnedDescriptor socket,
                                                      std::shared_ptr<PTChannel> listener);
    std::shared_ptr<DispatchSource> sourceOnListeningSocket(int socket);
    void listeningDidEnd(int socket);
    void adoptIncomingConnection(OwnedDescriptor socket, const sockaddr_in& address);

    void frameDidBegin(const std::shared_ptr<DispatchIO>& stream, IncomingFrame frame);
    bool shouldAccept(const std::shared_ptr<DispatchIO>& stream, const IncomingFrame& frame);
    void receivePayload(const std::shared_ptr<DispatchIO>& stream, IncomingFrame frame);
    void deliverFrame(const IncomingFrame& frame, const std::shared_ptr<const PTData>& payload);
    void discardPayload(const std::shared_ptr<DispatchIO>& stream, IncomingFrame frame);
    bool hasEnded(const std::optional<Error>& error, bool endOfStream);

    std::shared_ptr<PTProtocol> protocol_;
    std::shared_ptr<PTChannelDelegate> delegate_;
    quint8 delegateFlags_ = 0;
    PTConnState connState_ = kConnStateNone;
    std::shared_ptr<DispatchIO> dispatchObj_channel_;
    std::shared_ptr<DispatchSource> dispatchObj_source_;
    std::optional<Error> endError_; ///< until the delegate has been told
    std::shared_ptr<const Described> userInfo_;
};

} // namespace navrel
