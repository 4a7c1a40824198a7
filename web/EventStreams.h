#pragma once

#include <functional>
#include <string>
#include <vector>

namespace navrel {

/// The owner's number among the devices.
inline constexpr int kOwner = 0;

/// One open stream of events. Network thread.
class EventStream {
public:
    explicit EventStream(int device) : device_(device) {}
    virtual ~EventStream() = default;

    /// Whose it is.
    int device() const { return device_; }

    /// Takes an event, as `eventText` makes it; never waits for the reader.
    virtual void deliver(const std::string& event) = 0;
    /// Ends the connection.
    virtual void end() = 0;

private:
    const int device_;
};

/// All open streams, the oldest first. They are borrowed: each must be removed before its end.
/// Network thread.
class EventStreams {
public:
    /// Adds a stream. Where its device has `limit` others already, the oldest of them ends: most
    /// likely it belongs to a page that sleeps, whose device cannot say so.
    void add(EventStream& stream, std::size_t limit);
    void remove(EventStream& stream);

    void deliverToAll(const std::string& event) const;
    void deliverTo(int device, const std::string& event) const;
    void endAllOf(int device);

    const std::vector<EventStream*>& all() const { return streams_; }

private:
    std::vector<EventStream*> of(int device) const;

    std::vector<EventStream*> streams_;
};

} // namespace navrel
