#pragma once

#include "transport/BufferedSocket.h"
#include "transport/PTUSBPacket.h"
#include "transport/USBDaemon.h"

#include <QByteArray>
#include <QTimer>
#include <QtGlobal>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace navrel {

/// One stream of the keeper: on one side the program, which sees a daemon that never goes; on the
/// other a connection to the real one. What the program asks for first decides what becomes of it.
///
///   "Listen"   Packets are passed on whole, and the stream never ends by itself. When the daemon
///              goes, or sends what is no packet, each device that it had announced is reported as
///              detached, and the request is repeated to the daemon that comes next. A daemon that
///              refuses is left and asked again, too. The reply to a repeated request stays here;
///              any other reply is passed on, so that the program logs what it did not ask for.
///   any other  The reply is passed on, and from then on the bytes of both sides, until one ends. A
///              reply to another request is logged here, since the program reads only one packet. A
///              daemon that goes, or sends what is no packet, before it has replied is answered
///              for: "connection refused".
///
/// A daemon that does not reply in time counts as gone. Main thread.
class KeptUSBStream final : public std::enable_shared_from_this<KeptUSBStream> {
public:
    struct Events {
        /// A listening stream has no daemon; `reachDaemon` is due when there may be one.
        std::function<void()> didLoseDaemon;
        /// The stream has ended on both sides and is to be let go of.
        std::function<void()> didEnd;
    };

    /// The program's end of the stream is the peer of `program`. The daemon, which is not owned,
    /// has `replyTimeout` for its reply.
    static std::shared_ptr<KeptUSBStream> create(OwnedDescriptor program, USBDaemon& daemon,
                                                 std::chrono::milliseconds replyTimeout,
                                                 Events events);

    /// Tries to connect a listening stream that has no daemon.
    void reachDaemon();

    bool isWaitingForDaemon() const { return isListening_ && !daemon_; }
    bool hasEnded() const { return hasEnded_; }

private:
    KeptUSBStream(USBDaemon& source, Events events) : source_(source), events_(std::move(events)) {}

    std::unique_ptr<BufferedSocket> bufferedSocket(OwnedDescriptor socket);
    void proceed();
    void takeRequest();
    void takePackets();
    void packetDidArrive(const QByteArray& bytes);
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
    const Events events_;
    std::unique_ptr<BufferedSocket> program_;
    std::unique_ptr<BufferedSocket> daemon_; ///< null while there is none
    QByteArray request_;                     ///< empty until it has arrived
    quint32 requestTag_ = 0;
    /// Whether the daemon has yet to reply to the request, as it was sent last.
    bool isReplyOwed_ = false;
    /// Runs while the daemon owes its reply. Deleted later, since it may be what ends the stream.
    const std::unique_ptr<QTimer, QScopedPointerDeleteLater> replyTimer_{new QTimer};
    bool isListening_ = false;
    bool isAnswered_ = false;
    bool hasToldOfRefusal_ = false; ///< until the daemon has agreed to the Listen
    bool isRelaying_ = false;
    bool hasEnded_ = false;
    std::set<qlonglong> attachedDevices_;
};

} // namespace navrel
