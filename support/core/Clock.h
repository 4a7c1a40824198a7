#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace navrel {

/// A call that a clock will make. Destroying this cancels it; the call itself may do that.
class ScheduledCall {
public:
    virtual ~ScheduledCall() = default;
    ScheduledCall(const ScheduledCall&) = delete;
    ScheduledCall& operator=(const ScheduledCall&) = delete;

protected:
    ScheduledCall() = default;
};

/// Time as the program's parts see it; tests pass in one that they advance. It never goes back, and
/// is not the time of day. Main thread.
class Clock {
public:
    using Duration = std::chrono::nanoseconds;
    using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Duration>;
    using Call = std::function<void()>;

    virtual ~Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;

    virtual TimePoint now() const = 0;

    /// Makes the call once, after `delay` and never earlier, from the event loop. The clock must
    /// outlive the result.
    [[nodiscard]] virtual std::unique_ptr<ScheduledCall> after(Duration delay, Call call) = 0;

    /// Makes the call every `interval`, the first time after one, from the event loop. A late call
    /// does not delay the next one; calls that a busy program missed are skipped. The clock must
    /// outlive the result.
    [[nodiscard]] virtual std::unique_ptr<ScheduledCall> every(Duration interval, Call call) = 0;

protected:
    Clock() = default;
};

/// The system's clock, never destroyed. It makes its calls while an event loop runs.
Clock& systemClock();

} // namespace navrel
