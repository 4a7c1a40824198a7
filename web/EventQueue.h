#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace navrel {

/// What one event stream still has to send. A reader that is too slow loses the events that wait,
/// and gets one `resync` in their place.
class EventQueue {
public:
    explicit EventQueue(std::size_t limit) : limit_(limit) {}

    /// Appends an event, as `eventText` makes it.
    void add(std::string_view event);

    bool isEmpty() const { return waiting_.empty(); }

    /// Everything that waits, which counts as unsent until `sent`.
    std::string take();
    void sent() { underWay_ = 0; }

    /// Bytes that the reader has not taken.
    std::size_t unsent() const { return waiting_.size() + underWay_; }

private:
    const std::size_t limit_;
    std::string waiting_;
    std::size_t underWay_ = 0;
    bool lostSome_ = false; ///< what waits is a `resync`, which stands for all that comes
};

/// An event as it is sent. Neither text may hold a line break.
std::string eventText(std::string_view name, std::string_view data);

/// What tells a reader that the server is still there.
inline constexpr std::string_view kHeartbeat = ":\n\n";

} // namespace navrel
