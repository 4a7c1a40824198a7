#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <vector>

namespace navrel {

/// Where to connect a stream socket to.
struct SocketAddress {
    sockaddr_storage storage = {};
    socklen_t length = 0;

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

/// The address that a number ("127.0.0.1", "::1") and a port stand for; nothing for a name. Never
/// asks a server. Any thread.
std::optional<SocketAddress> numericAddress(const QString& host, const QString& port);

/// Looks up the addresses of a host's name, on a thread of its own: a name server may take half a
/// minute to say nothing, and cannot be interrupted. Main thread.
class HostLookup {
public:
    HostLookup(const QString& host, const QString& port);
    HostLookup(const HostLookup&) = delete;
    HostLookup& operator=(const HostLookup&) = delete;

    /// The addresses that were found last, the best one first; empty while there is none. Each call
    /// begins a new lookup, since hosts move, unless one is under way; it waits for a new one for
    /// `kPatience`.
    std::vector<SocketAddress> addresses();

    /// Addresses of a name beyond these are not looked at.
    static constexpr size_t kMostAddresses = 8;

    /// Names that are in a file of this machine, or known to its resolver, take less.
    static constexpr std::chrono::milliseconds kPatience{100};

private:
    struct Shared;

    const std::shared_ptr<Shared> shared_; ///< outlives this object as long as a lookup runs
};

} // namespace navrel
