#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDeadlineTimer>

namespace navrel {

/// Where a running Neovim may listen, by the process's environment: `$NVIM`,
/// `$NVIM_LISTEN_ADDRESS`, then the server sockets of this user in `$XDG_RUNTIME_DIR` and in
/// `$TMPDIR` (`/tmp` where that is unset), the newest first. Absolute paths, none twice; whether
/// somebody listens there is not examined. At most `kMaximumNeovimServers`; what has been found
/// when the deadline passes is all. Any thread.
QByteArrayList neovimServerSockets(const QDeadlineTimer& deadline);

/// More than anyone runs; a folder full of sockets must not cost a query its time.
inline constexpr int kMaximumNeovimServers = 32;

} // namespace navrel
