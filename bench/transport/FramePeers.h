#pragma once

#include <cstddef>

namespace navrel::bench {

enum class Transport { tcp, unixSocket };

/// What one measurement moves: `frames` frames with payloads of `payloadSize` bytes. Each is
/// answered with a frame of the same size, or, in a stream, only the last one, with an empty frame.
struct Traffic {
    Transport transport;
    int frames;
    size_t payloadSize;
    bool isStream;
};

/// Serves the traffic with blocking system calls: read 16, read n, writev.
void serveWithSystemCalls(const Traffic& traffic);

/// Serves it with a PTChannel on the main queue. The peer is the same blocking client.
void serveWithChannel(const Traffic& traffic);

/// Pins the calling thread, and those that it starts, to one core: both ends of a connection then
/// take turns on it, and how threads are spread over cores plays no part.
void pinToOneCore();

} // namespace navrel::bench
