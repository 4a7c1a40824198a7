#pragma once

#include "support/core/Clock.h"
#include "transport/usb/PTUSBPacket.h"
#include "transport/usb/daemon/BufferedSocket.h"
#include "transport/usb/daemon/KeptStreamStage.h"
#include "transport/usb/daemon/USBDaemon.h"

#include <QByteArray>
#include <QtGlobal>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace navrel {

/// One stream of the keeper, between the program, which sees a daemon that never ends, and a
/// connection to the real daemon. What it does depends on the program's first request:
///
///   "Listen"   Packets are passed on whole, and the stream never ends by itself. When the daemon
///              ends or sends anything but a packet, each device that it announced is reported as
///              detached, and the request is sent again to the next daemon. The same goes for a
///              daemon that refuses. The reply to a repeated request is dropped; any other reply is
///              passed on, so that the program logs replies to requests that it did not make.
///   any other  The reply is passed on, and after it the bytes of both sides, until one ends. A
///              reply to another request is logged here, since the program reads only one packet.
///              If the daemon ends or sends anything but a packet before it has replied, the
///              program gets the reply "connection refused".
///
/// A daemon that does not reply in time counts as gone. KeptStreamStage.h has the stages and their
/// transitions. Main thread.
class KeptUSBStream final : public std::enable_shared_from_this<KeptUSBStream> {
public:
    struct Events {
        /// A listening stream has no daemon; `reachDaemon` is due when there may be one.
        std::function<void()> didLoseDaemon;
        /// The stream has ended on both sides and should be released.
        std::function<void()> didEnd;
    };

    /// The program's end of the stream is the peer of `program`. The daemon must reply within
    /// `replyTimeout`. Daemon and clock are not owned, and must outlive the stream.
    static std::shared_ptr<KeptUSBStream> create(OwnedDescriptor program, USBDaemon& daemon,
                                                 Clock& clock,
                                                 std::chrono::milliseconds replyTimeout,
                                                 Events events);

    /// Tries to connect a listening stream that has no daemon.
    void reachDaemon();

    bool isWaitingForDaemon() const { return stage_ == KeptStreamStage::waitingForDaemon; }
    bool hasEnded() const { return stage_ == KeptStreamStage::ended; }

private:
    KeptUSBStream(USBDaemon& source, Clock& clock, std::chrono::milliseconds replyTimeout,
                  Events events);

    std::unique_ptr<BufferedSocket> bufferedSocket(OwnedDescriptor socket);
    void happen(KeptStreamEvent event) { stage_ = nextKeptStreamStage(stage_, event); }
    bool isListening() const;
    bool isReadingPackets() const;
    void proceed();
    void takeRequest();
    void awaitReply();
    void takePackets();
    void packetDidArrive(const QByteArray& bytes);
    void connectPacketDidArrive(const QByteArray& bytes);
    void listenPacketDidArrive(const QByteArray& bytes);
    bool isOwedReply(quint32 tag) const;
    void listenReplyDidArrive(const PTUSBPacket& reply, const QByteArray& bytes);
    void noteDevice(const PTUSBPacket& packet);
    void daemonIsGone(int errnoValue);
    void dropDaemon();
    void reportAllDetached();
    void answerRequest(PTUSBReplyCode code);
    void sendToProgram(quint32 tag, const QVariantMap& message);
    void relay();
    void endIfOver();
    void arrangeReading();

    USBDaemon& source_;
    Clock& clock_;
    const std::chrono::milliseconds replyTimeout_;
    const Events events_;
    KeptStreamStage stage_ = KeptStreamStage::awaitingRequest;
    std::unique_ptr<BufferedSocket> program_;
    std::unique_ptr<BufferedSocket> daemon_; ///< null while there is none
    QByteArray request_;
    quint32 requestTag_ = 0;
    /// Runs while the daemon has yet to reply to the request, as it was sent last.
    std::unique_ptr<ScheduledCall> replyTimer_;
    bool isAnswered_ = false;       ///< the program has had a reply to its Listen
    bool hasToldOfRefusal_ = false; ///< until the daemon has agreed to the Listen
    std::set<qlonglong> attachedDevices_;
};

} // namespace navrel
