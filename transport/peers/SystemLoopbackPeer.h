#pragma once

#include "transport/peers/LoopbackPeer.h"

namespace navrel {

/// The peer of a socket that is connected over the loopback address, as the kernel has it. Where
/// its tables are not known, always this user. Any thread.
LoopbackPeer systemLoopbackPeer(int socket);

/// Whether a peer runs as this user or as root: nobody else is served.
bool isOfThisUser(const LoopbackPeer& peer);

} // namespace navrel
