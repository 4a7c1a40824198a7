#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace navrel {

/// A call that a clock has been asked for. It is cancelled when this is destroyed, which the call
/// itself may do.
class ScheduledCall {
public:
    virtual ~ScheduledCall() = default;
    ScheduledCall(const ScheduledCall&) = delete;
    ScheduledCall& operator=(const ScheduledCall&) = delete;

protected:
    ScheduledCall() = default;
};

/// Time as the program's parts see it, so that tests can give them another one. It never goes back,
/// and has nothing to do with the time of day. Main thread.
class Clock {
public:
    using Duration = std::chrono::nanoseconds;
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;
    using Call = std::function<void()>;

    virtual ~Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;

    virtual TimePoint now() const = 0;

    /// Calls once, that much later and never earlier, from the event loop. The clock must outlive
    /// the result.
    [[nodiscard]] virtual std::unique_ptr<ScheduledCall> after(Duration delay, Call call) = 0;

    /// Calls again and again. A call that comes late does not put off the next one; those that a
    /// busy program missed are left out.
    [[nodiscard]] virtual std::unique_ptr<ScheduledCall> every(Duration interval, Call call) = 0;

protected:
    Clock() = default;
};

/// The system's clock. Its calls need a running event loop.
Clock& systemClock();

} // namespace navrel
