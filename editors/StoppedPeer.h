#pragma once

namespace navrel {

/// Whether the process at the other end of a connected local socket is suspended (Ctrl-Z). False
/// where that cannot be seen. Any thread; never blocks.
bool isPeerStopped(int socket);

} // namespace navrel
