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

/// The address of a numeric host ("127.0.0.1", "::1") and a port; nil for a name. Never asks a
/// server. Any thread.
std::optional<SocketAddress> numericAddress(const QString& host, const QString& port);

/// Looks up the addresses of a host name on a thread of its own: a lookup may take half a minute to
/// fail, and cannot be interrupted. Main thread.
class HostLookup {
public:
    HostLookup(const QString& host, const QString& port);
    HostLookup(const HostLookup&) = delete;
    HostLookup& operator=(const HostLookup&) = delete;

    /// The addresses that were found last, the best one first; empty while there are none. Each
    /// call begins a new lookup, since hosts move, unless one is running, and waits at most
    /// `kPatience` for it.
    std::vector<SocketAddress> addresses();

    /// Addresses of a name beyond these are not looked at.
    static constexpr size_t kMostAddresses = 8;

    /// Names in a file of this machine, or in its resolver's cache, take less.
    static constexpr std::chrono::milliseconds kPatience{100};

private:
    struct Shared;

    const std::shared_ptr<Shared> shared_; ///< outlives this object as long as a lookup runs
};

} // namespace navrel
