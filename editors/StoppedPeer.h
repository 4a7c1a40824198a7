#pragma once

#include <QtGlobal>

namespace navrel {

/// Whether the process at the other end of a connected local socket is suspended (Ctrl-Z). False
/// where that cannot be seen. Any thread; never blocks.
bool isPeerStopped(int socket);

/// The same of a process of this machine, by its number; there need not be one.
bool isProcessStopped(qint64 process);

} // namespace navrel
