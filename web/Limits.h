#pragma once

#include <chrono>
#include <cstddef>

namespace navrel {

/// What the server allows its clients. Each bound keeps one client from taking what the others
/// need; tests and benchmarks set other values.
struct Limits {
    using Duration = std::chrono::steady_clock::duration;

    // Connections. A page takes one for its events and up to six beside; the owner's do not count.
    std::size_t connections = 64;
    std::size_t connectionsPerAddress = 16;
    std::size_t streamsPerDevice = 2; ///< event streams: two open pages

    // A request. The app's own have 600 bytes of head and 100 of body.
    std::size_t headSize = std::size_t{8} * 1024;
    std::size_t headFields = 64;
    std::size_t bodySize = std::size_t{16} * 1024;
    Duration headTime = std::chrono::seconds(10); ///< from its first byte, however it trickles
    Duration bodyTime = std::chrono::seconds(10); ///< from the end of the head
    Duration idleTime = std::chrono::seconds(30); ///< without a request; also before the first one

    // An answer. The largest is the tree of a large project: half a megabyte, compressed.
    Duration answerTime = std::chrono::seconds(60); ///< from the request's end to the last byte
    Duration lingerTime = std::chrono::seconds(2);  ///< for a refused client to read why
    std::size_t lingerSize = std::size_t{64} * 1024;

    // Events.
    std::size_t unsentSize = std::size_t{1024} * 1024;
    Duration heartbeat = std::chrono::seconds(15);

    // Requests of one address: the burst is a page that loads, the rate fast typing in the search.
    double requestsPerSecond = 20;
    double requestBurst = 100;
    std::size_t ratedAddresses = 1024; ///< the table's length
};

/// Lines that one request may read of a source, and bytes: of a source without line feeds, too.
inline constexpr std::size_t kMaximumSourceLines = 2000;
inline constexpr std::size_t kMaximumSourceText = std::size_t{1024} * 1024;

/// Snapshots that are kept for `since`: a page that slept through more reads the whole tree.
inline constexpr std::size_t kKeptSnapshots = 16;

/// Files that an event names; where more changed, everything is asked for again.
inline constexpr std::size_t kMaximumListedFiles = 1000;

/// Ports that are tried after the one that was asked for.
inline constexpr int kFurtherPorts = 10;

} // namespace navrel
