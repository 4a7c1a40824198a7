#include "transport/usb/daemon/KeptUSBStream.h"

#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/propertylist/PropertyList.h"
#include "transport/usb/PTUSBChannel.h"

#include <cerrno>
#include <utility>

namespace navrel {

namespace {

/// Bytes that may wait on one side before the other is read on. Room for the largest packet, so
/// that one can arrive as a whole.
constexpr qsizetype kMostWaitingBytes = kMaxPTUSBPacketSize;

/// USB has 127 addresses on a bus. Further devices of a daemon that makes them up are passed on,
/// but not remembered.
constexpr size_t kMostAttachedDevices = 4096;

const QString kDeviceID = QStringLiteral("DeviceID");
const QString kDetached = QStringLiteral("Detached");

bool isListenRequest(const PTUSBPacket& request) {
    return request.message &&
           request.message->value(kMessageType).toString() == QStringLiteral("Listen");
}

} // namespace

KeptUSBStream::KeptUSBStream(USBDaemon& source, Clock& clock,
                             std::chrono::milliseconds replyTimeout, Events events)
    : source_(source), clock_(clock), replyTimeout_(replyTimeout), events_(std::move(events)) {}

std::shared_ptr<KeptUSBStream> KeptUSBStream::create(OwnedDescriptor program, USBDaemon& daemon,
                                                     Clock& clock,
                                                     std::chrono::milliseconds replyTimeout,
                                                     Events events) {
    const std::shared_ptr<KeptUSBStream> stream(
        new KeptUSBStream(daemon, clock, replyTimeout, std::move(events)));
    stream->program_ = stream->bufferedSocket(std::move(program));
    return stream;
}

std::unique_ptr<BufferedSocket> KeptUSBStream::bufferedSocket(OwnedDescriptor socket) {
    return std::make_unique<BufferedSocket>(std::move(socket), [weakSelf = weak_from_this()] {
        if (const auto self = weakSelf.lock()) {
            self->proceed();
        }
    });
}

bool KeptUSBStream::isListening() const {
    return stage_ == KeptStreamStage::listening || stage_ == KeptStreamStage::waitingForDaemon;
}

// Whether what the daemon sends is read packet by packet.
bool KeptUSBStream::isReadingPackets() const {
    return daemon_ &&
           (stage_ == KeptStreamStage::listening || stage_ == KeptStreamStage::awaitingReply);
}

// Looks at both sides and does what can be done, whatever it was that happened.
void KeptUSBStream::proceed() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (stage_ == KeptStreamStage::awaitingRequest) {
        takeRequest();
    }
    if (isReadingPackets()) {
        takePackets();
    }
    if (stage_ == KeptStreamStage::relaying) {
        relay();
    }
    endIfOver();
    arrangeReading();
}

void KeptUSBStream::takeRequest() {
    const PTUSBPacketTaken taken = takePTUSBPacket(program_->received());
    if (!taken.packet) {
        return;
    }
    request_ = *taken.packet;
    const PTUSBPacket request = decodedPTUSBPacket(request_);
    requestTag_ = request.tag;
    happen(isListenRequest(request) ? KeptStreamEvent::listenRequested
                                    : KeptStreamEvent::otherRequested);
    reachDaemon();
}

void KeptUSBStream::reachDaemon() {
    OwnedDescriptor socket = source_.openStream();
    if (!socket.isValid()) {
        return daemonIsGone(errno);
    }
    daemon_ = bufferedSocket(std::move(socket));
    happen(KeptStreamEvent::daemonReached);
    daemon_->write(request_);
    awaitReply();
}

void KeptUSBStream::awaitReply() {
    replyTimer_ = clock_.after(replyTimeout_, [weakSelf = weak_from_this()] {
        if (const auto self = weakSelf.lock()) {
            self->daemonIsGone(ETIMEDOUT);
            self->proceed();
        }
    });
}

bool KeptUSBStream::isOwedReply(quint32 tag) const {
    return replyTimer_ && tag == requestTag_ && tag != kPTUSBBroadcastTag;
}

void KeptUSBStream::takePackets() {
    while (isReadingPackets() && program_->unwritten() < kMostWaitingBytes) {
        const PTUSBPacketTaken taken = takePTUSBPacket(daemon_->received());
        if (taken.isMalformed) {
            return daemonIsGone(EBADMSG);
        }
        if (!taken.packet) {
            break;
        }
        packetDidArrive(*taken.packet);
    }
    if (isReadingPackets() && daemon_->hasEnded() && program_->unwritten() < kMostWaitingBytes) {
        const int errnoValue = daemon_->errnoValue();
        daemonIsGone(errnoValue != 0 ? errnoValue : ECONNRESET);
    }
}

void KeptUSBStream::packetDidArrive(const QByteArray& bytes) {
    if (isListening()) {
        listenPacketDidArrive(bytes);
    } else {
        connectPacketDidArrive(bytes);
    }
}

// The program decodes the reply; nothing but its tag matters here.
void KeptUSBStream::connectPacketDidArrive(const QByteArray& bytes) {
    const quint32 tag = tagOfPTUSBPacket(bytes);
    if (isOwedReply(tag)) {
        replyTimer_.reset();
        happen(KeptStreamEvent::replied);
        program_->write(bytes);
    } else if (tag != kPTUSBBroadcastTag) {
        PTUSBChannel::logIgnoredReply(decodedPTUSBPacket(bytes).message);
    }
}

void KeptUSBStream::listenPacketDidArrive(const QByteArray& bytes) {
    const PTUSBPacket packet = decodedPTUSBPacket(bytes);
    if (isOwedReply(packet.tag)) {
        replyTimer_.reset();
        return listenReplyDidArrive(packet, bytes);
    }
    noteDevice(packet);
    program_->write(bytes);
}

// The program hears the reply to its own request and logs a refusal; one of the request as it was
// repeated is heard of here alone.
void KeptUSBStream::listenReplyDidArrive(const PTUSBPacket& reply, const QByteArray& bytes) {
    std::optional<Error> error = reply.error;
    PTUSBChannel::errorFromPlistResponse(reply.message, error);
    if (!std::exchange(isAnswered_, true)) {
        program_->write(bytes);
    } else if (error && !hasToldOfRefusal_) {
        log(QStringLiteral("The USB daemon refuses to announce devices, and is asked again: %1")
                .arg(error->description()));
    }
    hasToldOfRefusal_ = error.has_value();
    if (error) {
        dropDaemon();
    }
}

void KeptUSBStream::noteDevice(const PTUSBPacket& packet) {
    if (packet.tag != kPTUSBBroadcastTag || !packet.message) {
        return;
    }
    const QString type = packet.message->value(kMessageType).toString();
    const auto deviceID = numberInMessage(*packet.message, kDeviceID);
    if (!deviceID) {
        return;
    }
    if (type == kDetached) {
        attachedDevices_.erase(*deviceID);
    } else if (type == QStringLiteral("Attached") &&
               attachedDevices_.size() < kMostAttachedDevices) {
        attachedDevices_.insert(*deviceID);
    }
}

void KeptUSBStream::daemonIsGone(int errnoValue) {
    dropDaemon();
    if (!isListening()) {
        return answerRequest(kPTUSBReplyConnectionRefused);
    }
    if (!isAnswered_) {
        // The program is told that it listens, since it will. What keeps it from hearing anything
        // for now, only this place knows: so it is logged here, in the hub's words.
        log(QStringLiteral("PTUSBHub failed to initialize: %1")
                .arg(Error::posix(errnoValue).description()));
        answerRequest(kPTUSBReplyOK);
    }
}

void KeptUSBStream::dropDaemon() {
    replyTimer_.reset();
    daemon_.reset();
    happen(KeptStreamEvent::daemonGone);
    if (isListening()) {
        reportAllDetached();
        events_.didLoseDaemon();
    }
}

void KeptUSBStream::reportAllDetached() {
    for (const qlonglong deviceID : std::exchange(attachedDevices_, {})) {
        sendToProgram(kPTUSBBroadcastTag, {{kMessageType, kDetached}, {kDeviceID, deviceID}});
    }
}

void KeptUSBStream::answerRequest(PTUSBReplyCode code) {
    isAnswered_ = true;
    sendToProgram(requestTag_, {{kMessageType, QStringLiteral("Result")},
                                {QStringLiteral("Number"), static_cast<qlonglong>(code)}});
}

void KeptUSBStream::sendToProgram(quint32 tag, const QVariantMap& message) {
    const auto payload = XMLDataWithPropertyList(message);
    program_->write(createPTUSBPacket(kPTUSBPacketTypePlist, kPTUSBPacketProtocolPlist, tag,
                                      payload.value_or(QByteArray()))
                        .toByteArray());
}

void KeptUSBStream::relay() {
    program_->write(std::exchange(daemon_->received(), {}));
    daemon_->write(std::exchange(program_->received(), {}));
}

// A listening stream ends with the program's side alone, any other also with the daemon's; what is
// on its way to the other side still gets there.
void KeptUSBStream::endIfOver() {
    const bool isProgramGone =
        program_->isPeerDeaf() ||
        (program_->hasEnded() && (!daemon_ || isListening() || daemon_->unwritten() == 0));
    const bool isDaemonGone =
        stage_ == KeptStreamStage::relaying && daemon_->hasEnded() && program_->unwritten() == 0;
    if (!hasEnded() && (isProgramGone || isDaemonGone)) {
        happen(KeptStreamEvent::over);
        events_.didEnd();
    }
}

void KeptUSBStream::arrangeReading() {
    const auto mayRead = [](BufferedSocket& from, const BufferedSocket* to) {
        return from.received().size() <= kMostWaitingBytes &&
               (to == nullptr || to->unwritten() < kMostWaitingBytes);
    };
    program_->setReading(mayRead(*program_, daemon_.get()));
    if (daemon_) {
        daemon_->setReading(mayRead(*daemon_, program_.get()));
    }
}

} // namespace navrel
