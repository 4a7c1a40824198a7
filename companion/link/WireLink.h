#pragma once

#include "support/core/Error.h"
#include "support/files/OwnedDescriptor.h"
#include "transport/peers/SystemLoopbackPeer.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <set>

namespace navrel {

/// The device's end of the wire: it listens, Navrel connects, and every request is a frame whose
/// reply carries the same tag. Nothing runs but within `turn`, which sleeps in the kernel until
/// something happens. One thread.
class WireLink {
public:
    /// Says whom a connected socket has reached on the loopback address.
    using PeerLookup = std::function<LoopbackPeer(int socket)>;
    /// Gets the reply: nothing where Navrel has none, or has gone.
    using Done = std::function<void(std::optional<QVariantMap> reply)>;

    explicit WireLink(PeerLookup loopbackPeer = &systemLoopbackPeer);
    ~WireLink();
    WireLink(const WireLink&) = delete;
    WireLink& operator=(const WireLink&) = delete;

    /// Called with a sentence when a Navrel of another user was turned away: once for each user. It
    /// could show false files, and learn what this user types.
    std::function<void(const QString& sentence)> didRefuse;

    /// Listens on the loopback address. The error where that is not possible, as when another
    /// companion listens already.
    std::optional<Error> listen(quint16 port);
    /// Closes the connection and stops listening; requests under way are done, without a reply.
    void stop();

    bool isConnected() const { return connection_.isValid(); }

    /// Sends a request; `done` is called once, by a later `turn` or by `stop`, or at once while
    /// nothing is connected.
    void request(quint32 type, const QVariantMap& payload, Done done);

    /// Waits until something has happened on the link, or `otherDescriptor` (none if negative) can
    /// be read or has ended, or the time is over; deals with what happened on the link. Returns
    /// whether the other descriptor can be read.
    bool turn(std::chrono::milliseconds atMost, int otherDescriptor = -1);

    /// `turn` until a Navrel is connected and answers: it drops all requests of its first moments.
    /// False when that took too long.
    bool waitUntilServed(std::chrono::milliseconds atMost);
    /// `request`, and `turn` until it is done.
    std::optional<QVariantMap> ask(quint32 type, const QVariantMap& payload = {});

private:
    using TimePoint = std::chrono::steady_clock::time_point;

    struct Pending {
        std::optional<QVariantMap> reply;
        Done done;
    };

    void accept();
    bool isTrusted(int descriptor);
    void receive();
    bool takeFrame();
    void takeReply(quint32 tag, const QByteArray& payload);
    void sendFrame(quint32 type, quint32 tag, const QVariantMap& payload);
    void flush();
    void disconnect();

    const PeerLookup loopbackPeer_;
    std::set<qint64> refusedUsers_; ///< -1 for an unknown one
    OwnedDescriptor listener_;
    OwnedDescriptor connection_;
    QByteArray received_;
    QByteArray unsent_;
    quint32 lastTag_ = 0;
    /// By the tag of the version request that was sent behind each: its reply comes after any
    /// other.
    std::map<quint32, Pending> pending_;
};

} // namespace navrel
