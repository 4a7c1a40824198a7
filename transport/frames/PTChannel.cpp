#include "transport/frames/PTChannel.h"

#include "support/core/Assertion.h"
#include "support/core/Log.h"
#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/DispatchSource.h"
#include "support/sockets/IPv4Socket.h"
#include "transport/frames/PTAddress.h"
#include "transport/frames/PTData.h"
#include "transport/frames/PTFrame.h"
#include "transport/usb/PTUSBHub.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace navrel {

const QString kPTErrorDomain = QStringLiteral("PTError");

namespace {

/// On the loopback a peer answers at once, unless its backlog is full: then the system would go on
/// asking for minutes, and nothing else runs meanwhile.
constexpr std::chrono::seconds kConnectTimeout{2};

template <typename Callback, typename... Arguments>
void callIfSet(const Callback& callback, const Arguments&... arguments) {
    if (callback) {
        callback(arguments...);
    }
}

QString wordForState(PTConnState state) {
    switch (state) {
    case kConnStateConnecting:
        return QStringLiteral("connecting");
    case kConnStateConnected:
        return QStringLiteral("connected");
    case kConnStateListening:
        return QStringLiteral("listening");
    default:
        return QStringLiteral("closed");
    }
}

void logFailedAccept(const Error& error) {
    log(QStringLiteral("startReadingFromConnectedChannel failed in accept: %1")
            .arg(error.description()));
}

bool hasLengthOfItsFamily([[maybe_unused]] const sockaddr_in& address, socklen_t length) {
#ifdef __APPLE__
    return address.sin_len == length;
#else
    return address.sin_family == AF_INET && length == sizeof address;
#endif
}

} // namespace

// Creation and properties.

PTChannel::PTChannel(std::shared_ptr<PTProtocol> protocol) : protocol_(std::move(protocol)) {}

std::shared_ptr<PTChannel>
PTChannel::channelWithDelegate(std::shared_ptr<PTChannelDelegate> delegate) {
    return initWithProtocol(PTProtocol::sharedProtocolForQueue(DispatchQueue::mainQueue()),
                            std::move(delegate));
}

std::shared_ptr<PTChannel>
PTChannel::initWithProtocol(std::shared_ptr<PTProtocol> protocol,
                            std::shared_ptr<PTChannelDelegate> delegate) {
    auto channel = initWithProtocol(std::move(protocol));
    channel->setDelegate(std::move(delegate));
    return channel;
}

std::shared_ptr<PTChannel> PTChannel::initWithProtocol(std::shared_ptr<PTProtocol> protocol) {
    return std::shared_ptr<PTChannel>(new PTChannel(std::move(protocol)));
}

std::shared_ptr<PTChannel> PTChannel::init() {
    return initWithProtocol(PTProtocol::sharedProtocolForQueue(DispatchQueue::mainQueue()));
}

void PTChannel::setDelegate(std::shared_ptr<PTChannelDelegate> delegate) {
    delegate_ = std::move(delegate);
    delegateFlags_ = delegate_ ? delegate_->optionalOperations() : quint8{0};
}

bool PTChannel::delegateHas(PTChannelDelegate::OptionalOperation operation) const {
    return (delegateFlags_ & operation) != 0;
}

bool PTChannel::isConnected() const {
    return connState_ == kConnStateConnecting || connState_ == kConnStateConnected;
}

void PTChannel::setDispatchChannel(std::shared_ptr<DispatchIO> channel) {
    NAVREL_ASSERT(connState_ == kConnStateConnecting || connState_ == kConnStateConnected ||
                  connState_ == kConnStateNone);
    if (channel != dispatchObj_channel_) {
        dispatchObj_channel_ = std::move(channel);
        becomeNoneIfIdle();
    }
}

void PTChannel::setDispatchSource(std::shared_ptr<DispatchSource> source) {
    NAVREL_ASSERT(connState_ == kConnStateListening || connState_ == kConnStateNone);
    if (source != dispatchObj_source_) {
        dispatchObj_source_ = std::move(source);
        becomeNoneIfIdle();
    }
}

void PTChannel::becomeNoneIfIdle() {
    if (!dispatchObj_channel_ && !dispatchObj_source_) {
        connState_ = kConnStateNone;
    }
}

QString PTChannel::description() const {
    const QString information =
        userInfo_ ? QStringLiteral(" ") + userInfo_->description() : QString();
    return QStringLiteral("<PTChannel: %1 (%2)%3>")
        .arg(QString::asprintf("%p", static_cast<const void*>(this)), wordForState(connState_),
             information);
}

// Connecting.

void PTChannel::connectToPort(quint16 port, quint32 IPv4Address, const ConnectCallback& callback) {
    NAVREL_ASSERT_AS(protocol_ != nullptr, "protocol_ != NULL");
    if (connState_ != kConnStateNone) {
        return callIfSet(callback, Error::posix(EPERM), nullptr);
    }
    // Deliberate: the failures below leave this state, so that a channel is good for one attempt.
    connState_ = kConnStateConnecting;
    OwnedDescriptor socket = makeIPv4StreamSocket();
    if (!socket.isValid()) {
        const Error error = Error::posix(errno);
        std::perror("socket(AF_INET, SOCK_STREAM, 0) failed");
        return callIfSet(callback, error, nullptr);
    }
    setConnectionOptions(socket.value());
    const sockaddr_in address = IPv4SocketAddress(port, IPv4Address);
    if (!connectBlocking(socket.value(), address, kConnectTimeout)) {
        return callIfSet(callback, Error::posix(errno), nullptr);
    }
    const auto stream = streamChannelOnSocket(std::move(socket), nullptr);
    if (!stream) {
        return callIfSet(callback, Error(kPTErrorDomain, 0), nullptr);
    }
    const auto peer =
        std::make_shared<const PTAddress>(reinterpret_cast<const sockaddr*>(&address));
    callIfSet(callback, startReadingFromConnectedChannel(stream), peer);
}

void PTChannel::connectToPort(quint16 port, const std::shared_ptr<PTUSBHub>& overUSBHub,
                              const QVariant& deviceID, Callback callback) {
    NAVREL_ASSERT_AS(protocol_ != nullptr, "protocol_ != NULL");
    if (connState_ != kConnStateNone) {
        return callIfSet(callback, Error::posix(EPERM));
    }
    connState_ = kConnStateConnecting;
    const auto onStart = [self = shared_from_this(), callback = std::move(callback)](
                             const std::optional<Error>& error,
                             const std::shared_ptr<DispatchIO>& stream) {
        if (error) {
            self->connState_ = kConnStateNone;
            return callIfSet(callback, error);
        }
        callIfSet(callback, self->startReadingFromConnectedChannel(stream));
    };
    overUSBHub->connectToDevice(
        deviceID, port, onStart,
        // Deliberate: of this stream the delegate is told the hub's error, not the channel's.
        [self = shared_from_this()](const std::optional<Error>& error) {
            self->tellDelegateOfEnd(error);
        });
}

// The stream channel owns the socket from here on. A listener is kept until the connection that it
// accepted has ended.
std::shared_ptr<DispatchIO> PTChannel::streamChannelOnSocket(OwnedDescriptor socket,
                                                             std::shared_ptr<PTChannel> listener) {
    const int descriptor = socket.value();
    auto stream = DispatchIO::create(
        descriptor, protocol_->queue(),
        [self = shared_from_this(), listener = std::move(listener), descriptor](int errnoValue) {
            ::close(descriptor);
            self->connectionDidEnd(errnoValue);
        });
    if (stream) {
        socket.release();
    }
    return stream;
}

void PTChannel::connectionDidEnd(int errnoValue) {
    const auto error = errorFromErrno(errnoValue);
    tellDelegateOfEnd(error ? error : endError_);
}

void PTChannel::tellDelegateOfEnd(const std::optional<Error>& error) {
    if (delegateHas(PTChannelDelegate::kDidEnd)) {
        const auto delegate = delegate_; // it may let go of this channel, and that of it
        delegate->ioFrameChannelDidEndWithError(shared_from_this(), error);
    }
    endError_.reset();
}

// Reading.

/// What has been read of one frame, and how its reading goes on.
struct PTChannel::IncomingFrame {
    quint32 type;
    quint32 tag;
    quint32 payloadSize;
    PTProtocol::Resume resume;
};

std::optional<Error>
PTChannel::startReadingFromConnectedChannel(const std::shared_ptr<DispatchIO>& channel) {
    if (connState_ >= kConnStateListening) {
        return Error::posix(EPERM);
    }
    if (channel != dispatchObj_channel_) {
        close();
        setDispatchChannel(channel);
    }
    connState_ = kConnStateConnected;
    protocol_->readFramesOverChannel(
        channel, [self = shared_from_this(),
                  channel](const std::optional<Error>& error, quint32 type, quint32 tag,
                           quint32 payloadSize, PTProtocol::Resume resume) {
            if (!self->hasEnded(error, type == kPTFrameTypeEndOfStream)) {
                self->frameDidBegin(channel, {type, tag, payloadSize, std::move(resume)});
            }
        });
    return std::nullopt;
}

// Deliberate: whatever loop reports the end, it is the stored stream channel that is closed. A
// stream channel that was replaced while its loop still read takes its successor along.
bool PTChannel::hasEnded(const std::optional<Error>& error, bool endOfStream) {
    if (error) {
        endError_ = error;
        close();
        return true;
    }
    if (endOfStream) {
        cancel();
    }
    return endOfStream;
}

void PTChannel::frameDidBegin(const std::shared_ptr<DispatchIO>& stream, IncomingFrame frame) {
    const bool isAccepted = shouldAccept(stream, frame);
    if (frame.payloadSize > 0) {
        return isAccepted ? receivePayload(stream, std::move(frame))
                          : discardPayload(stream, std::move(frame));
    }
    if (isAccepted) {
        deliverFrame(frame, nullptr);
    }
    frame.resume();
}

bool PTChannel::shouldAccept(const std::shared_ptr<DispatchIO>& stream,
                             const IncomingFrame& frame) {
    if (stream != dispatchObj_channel_) {
        return false; // cancelled or replaced meanwhile; the delegate is not asked
    }
    if (!delegateHas(PTChannelDelegate::kShouldAcceptFrame)) {
        return true;
    }
    const auto delegate = delegate_;
    return delegate->ioFrameChannelShouldAcceptFrameOfType(shared_from_this(), frame.type,
                                                           frame.tag, frame.payloadSize);
}

void PTChannel::receivePayload(const std::shared_ptr<DispatchIO>& stream, IncomingFrame frame) {
    const quint32 size = frame.payloadSize;
    // A small payload has mostly come along with its header, and is not worth an operation.
    if (auto data = stream->takeReadAhead(size)) {
        const char* const buffer = data->bytes();
        deliverFrame(frame, std::make_shared<const PTData>(std::move(data), buffer, size));
        return frame.resume();
    }
    protocol_->readPayloadOfSize(
        size, stream,
        // The frame's loop keeps this channel alive.
        [this, frame = std::move(frame)](const std::optional<Error>& error,
                                         std::optional<DispatchData>&& data, const char* buffer,
                                         size_t bufferSize) mutable {
            if (hasEnded(error, bufferSize == 0)) {
                return;
            }
            deliverFrame(frame,
                         std::make_shared<const PTData>(std::move(data), buffer, bufferSize));
            frame.resume();
        });
}

void PTChannel::deliverFrame(const IncomingFrame& frame,
                             const std::shared_ptr<const PTData>& payload) {
    if (const auto delegate = delegate_) {
        delegate->ioFrameChannelDidReceiveFrameOfType(shared_from_this(), frame.type, frame.tag,
                                                      payload);
    }
}

void PTChannel::discardPayload(const std::shared_ptr<DispatchIO>& stream, IncomingFrame frame) {
    protocol_->readAndDiscardDataOfSize(
        frame.payloadSize, stream,
        [this, resume = std::move(frame.resume)](const std::optional<Error>& error,
                                                 bool endOfStream) mutable {
            if (!hasEnded(error, endOfStream)) {
                resume();
            }
        }); // here, too, the frame's loop keeps this channel alive
}

// Sending and ending.

void PTChannel::sendFrameOfType(quint32 type, quint32 tag, std::optional<DispatchData> payload,
                                PTProtocol::SendCallback callback) {
    if (!isConnected() || !dispatchObj_channel_) { // none while a connect is under way
        return callIfSet(callback, Error::posix(EPERM));
    }
    protocol_->sendFrameOfType(type, tag, std::move(payload), dispatchObj_channel_,
                               std::move(callback));
}

void PTChannel::close() {
    end(DispatchIO::Close::stop);
}

void PTChannel::cancel() {
    end(DispatchIO::Close::afterPending);
}

void PTChannel::end(DispatchIO::Close how) {
    if (isConnected() && dispatchObj_channel_) {
        dispatchObj_channel_->close(how);
        setDispatchChannel(nullptr);
    } else if (isListening() && dispatchObj_source_) {
        dispatchObj_source_->cancel();
    }
}

// Listening.

void PTChannel::listenOnPort(quint16 port, quint32 IPv4Address, const Callback& callback) {
    if (connState_ != kConnStateNone) {
        return callIfSet(callback, Error::posix(EPERM));
    }
    NAVREL_ASSERT_AS(dispatchObj_source_ == nullptr, "dispatchObj_source_ == nil");
    OwnedDescriptor socket = makeListeningSocket(IPv4SocketAddress(port, IPv4Address));
    if (!socket.isValid()) {
        return callIfSet(callback, Error::posix(errno));
    }
    setDispatchSource(sourceOnListeningSocket(socket.release()));
    dispatchObj_source_->start();
    connState_ = kConnStateListening;
    callIfSet(callback, std::nullopt);
}

std::shared_ptr<DispatchSource> PTChannel::sourceOnListeningSocket(int socket) {
    const auto acceptWaiting = [self = shared_from_this(), socket](quint64 pendingCount) {
        quint64 accepted = 0;
        while (self->acceptIncomingConnection(socket) && ++accepted != pendingCount) {
        }
    };
    return DispatchSource::create(
        socket, protocol_->queue(), acceptWaiting,
        [self = shared_from_this(), socket] { self->listeningDidEnd(socket); });
}

void PTChannel::listeningDidEnd(int socket) {
    // Deliberate: not through the setter, so a channel that has listened stays in that state and
    // can neither listen nor connect again.
    dispatchObj_source_.reset();
    ::close(socket);
    tellDelegateOfEnd(endError_);
}

bool PTChannel::acceptIncomingConnection(int serverSocket) {
    sockaddr_in address = {};
    socklen_t addressLength = 0;
    OwnedDescriptor socket = acceptConnection(serverSocket, address, addressLength);
    if (!socket.isValid()) {
        std::perror("accept()");
        return false;
    }
    setConnectionOptions(socket.value());
    if (!makeNonBlocking(socket.value())) {
        std::perror("fcntl(.. O_NONBLOCK)");
        return false;
    }
    if (!delegateHas(PTChannelDelegate::kDidAcceptConnection)) {
        return true; // refused by closing it
    }
    NAVREL_ASSERT_AS(hasLengthOfItsFamily(address, addressLength),
                     "((struct sockaddr_storage*)&addr)->ss_len == addrLen");
    adoptIncomingConnection(std::move(socket), address);
    return true;
}

void PTChannel::adoptIncomingConnection(OwnedDescriptor socket, const sockaddr_in& address) {
    const auto channel = initWithProtocol(protocol_, delegate_);
    const auto stream = channel->streamChannelOnSocket(std::move(socket), shared_from_this());
    if (!stream) {
        return logFailedAccept(Error(kPTErrorDomain, 0));
    }
    channel->setConnState(kConnStateConnected);
    channel->setDispatchChannel(stream);
    const auto peer =
        std::make_shared<const PTAddress>(reinterpret_cast<const sockaddr*>(&address));
    const auto delegate = delegate_;
    delegate->ioFrameChannelDidAcceptConnection(shared_from_this(), channel, peer);
    if (const auto error = channel->startReadingFromConnectedChannel(stream)) {
        logFailedAccept(*error);
    }
}

} // namespace navrel
