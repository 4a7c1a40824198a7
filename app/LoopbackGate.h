#pragma once

#include "transport/peers/LoopbackPeer.h"

#include <QtGlobal>

#include <functional>
#include <set>

namespace navrel {

class PTChannel;

/// Decides whom the program serves on the loopback address, where any local user may listen on the
/// companion app's port: the project is shown to its owner alone. Main thread.
class LoopbackGate {
public:
    enum class Trust {
        none, ///< it must be turned away
        gone, ///< it has ended the connection, and its user is not known
        full, ///< it is served
    };

    /// `peerOf` says who is at the other end of a connected socket.
    explicit LoopbackGate(std::function<LoopbackPeer(int socket)> peerOf);

    /// How far the peer of a connected channel is trusted. A refusal is logged, once for each user
    /// until a peer has been served again.
    Trust trustIn(const PTChannel& channel);

    /// Users that were turned away since a peer was served; -1 for an unknown one.
    const std::set<qint64>& refusedUsers() const { return loggedRefusedUsers_; }

private:
    void logRefusal(const LoopbackPeer& peer);

    const std::function<LoopbackPeer(int socket)> peerOf_;
    std::set<qint64> loggedRefusedUsers_; ///< -1 for an unknown one
};

} // namespace navrel
