#include "transport/peers/SystemLoopbackPeer.h"

#include <unistd.h>

namespace navrel {

LoopbackPeer systemLoopbackPeer([[maybe_unused]] int socket) {
#ifdef __linux__
    return loopbackPeer(socket);
#else
    return {::geteuid(), false};
#endif
}

bool isOfThisUser(const LoopbackPeer& peer) {
    return peer.owner && (*peer.owner == ::geteuid() || *peer.owner == 0);
}

} // namespace navrel
