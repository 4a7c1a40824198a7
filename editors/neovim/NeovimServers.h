#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDeadlineTimer>

namespace navrel {

/// Where a running Neovim may listen, by the process's environment: `$NVIM`,
/// `$NVIM_LISTEN_ADDRESS`, then the server sockets of this user in `$XDG_RUNTIME_DIR` and in
/// `$TMPDIR` (`/tmp` where that is unset), the newest first. Absolute paths, none twice; whether
/// somebody listens there is not examined. At most `kMaximumNeovimSockets`; what has been found
/// when the deadline passes is all, and `isWhole` (may be null) is false then. Any thread.
QByteArrayList neovimServerSockets(const QDeadlineTimer& deadline, bool* isWhole = nullptr);

/// A crashed Neovim leaves its socket behind. To see that nobody listens on one costs a few
/// microseconds, so even so many do not hide the Neovims that run.
inline constexpr int kMaximumNeovimSockets = 1024;

} // namespace navrel
