#include "support/core/Clock.h"

#include "support/core/MainThread.h"

#include <QObject>
#include <QTimer>

#include <utility>

namespace navrel {

namespace {

class TimerCall final : public ScheduledCall {
public:
    TimerCall(Clock::Duration duration, Clock::Call call, bool isRepeated) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [kept = std::move(call)] {
            const Clock::Call copy = kept; // the call may end this object
            copy();
        });
        // Other types of timer may be early by a twentieth.
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setSingleShot(!isRepeated);
        timer_.start(std::chrono::ceil<std::chrono::milliseconds>(duration));
    }

private:
    QTimer timer_;
};

class SystemClock final : public Clock {
public:
    TimePoint now() const override { return std::chrono::steady_clock::now(); }

    std::unique_ptr<ScheduledCall> after(Duration delay, Call call) override {
        NAVREL_ASSERT_MAIN_THREAD();
        return std::make_unique<TimerCall>(delay, std::move(call), false);
    }
    std::unique_ptr<ScheduledCall> every(Duration interval, Call call) override {
        NAVREL_ASSERT_MAIN_THREAD();
        return std::make_unique<TimerCall>(interval, std::move(call), true);
    }
};

} // namespace

Clock& systemClock() {
    static SystemClock clock;
    return clock;
}

} // namespace navrel
