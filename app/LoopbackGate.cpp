#include "app/LoopbackGate.h"

#include "protocol/CompanionProtocol.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "transport/frames/PTChannel.h"
#include "transport/peers/SystemLoopbackPeer.h"

#include <utility>

namespace navrel {

namespace {

constexpr qint64 kUnknownUser = -1;
/// More users than share a machine; only root can invent further ones.
constexpr size_t kMostRefusalsLogged = 64;

} // namespace

LoopbackGate::LoopbackGate(std::function<LoopbackPeer(int socket)> peerOf)
    : peerOf_(std::move(peerOf)) {}

// A peer whose owner is not known is not served. Where it has ended the connection, nobody need be
// refused: the connection ends as any other does, and says nothing about the next one.
LoopbackGate::Trust LoopbackGate::trustIn(const PTChannel& channel) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto stream = channel.dispatchChannel();
    const LoopbackPeer peer = stream ? peerOf_(stream->descriptor()) : LoopbackPeer{{}, true};
    if (isOfThisUser(peer)) {
        loggedRefusedUsers_.clear();
        return Trust::full;
    }
    if (!peer.owner && peer.hasEnded) {
        return Trust::gone;
    }
    logRefusal(peer);
    return Trust::none;
}

void LoopbackGate::logRefusal(const LoopbackPeer& peer) {
    const qint64 user = peer.owner ? qint64{*peer.owner} : kUnknownUser;
    if (loggedRefusedUsers_.size() < kMostRefusalsLogged &&
        loggedRefusedUsers_.insert(user).second) {
        log(QStringLiteral("Refused to serve 127.0.0.1:%1: it belongs to another user (%2)")
                .arg(kCompanionPort)
                .arg(peer.owner ? QString::number(*peer.owner) : QStringLiteral("unknown")));
    }
}

} // namespace navrel
