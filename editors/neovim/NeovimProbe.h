#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDeadlineTimer>

#include <chrono>
#include <memory>
#include <vector>

namespace navrel {

class NeovimConnection;

/// Whether a Neovim can be talked to.
enum class NeovimState {
    Ready,
    WaitsForAKey, ///< half a command, or a prompt: other requests would wait for the user's next
                  ///< key
    Unknown,      ///< it has not answered yet; another one did that is asked first
    Silent,       ///< it had its time, and did not answer: stopped, or very busy
    NoNeovim,     ///< what answers is none
    Gone,         ///< nobody listens there
};

/// A server that was asked, with the conversation that began.
struct ProbedNeovim {
    QByteArray socket;
    NeovimState state = NeovimState::Unknown;
    /// Null where there is no connection.
    std::unique_ptr<NeovimConnection> connection;
    /// The question for its state, which a server that is Unknown or Silent may answer later.
    qint64 question = 0;

    /// Takes the answer if it has come. Never waits.
    void look();
};

/// More than anyone runs. Sockets on which nobody listens do not count.
inline constexpr std::size_t kMaximumNeovims = 32;

/// Asks servers for their state, all at once, so that those that are stopped cost no more time than
/// one. Returns them in the order of `sockets`, at most `kMaximumNeovims` that are there. Waits
/// until the first that is Ready is known, with those before it; for these no longer than `grace`
/// once another one is Ready, and for nothing beyond the deadline. Any thread.
std::vector<ProbedNeovim> probeNeovims(const QByteArrayList& sockets,
                                       const QDeadlineTimer& deadline,
                                       std::chrono::milliseconds grace);

} // namespace navrel
