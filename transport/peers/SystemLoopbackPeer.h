#pragma once

#include "transport/peers/LoopbackPeer.h"

namespace navrel {

/// The peer of a socket that is connected on the loopback address, from the kernel. On systems
/// whose tables Navrel cannot read, this user. Any thread.
LoopbackPeer systemLoopbackPeer(int socket);

/// Whether a peer runs as this user or as root. No other peer is served.
bool isOfThisUser(const LoopbackPeer& peer);

} // namespace navrel
