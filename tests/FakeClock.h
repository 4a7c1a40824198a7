#pragma once

#include "support/core/Clock.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace navrel {

/// A clock that stands still until a test advances it.
class FakeClock final : public Clock {
public:
    TimePoint now() const override { return now_; }

    std::unique_ptr<ScheduledCall> after(Duration delay, Call call) override {
        return schedule(delay, Duration::zero(), std::move(call));
    }
    std::unique_ptr<ScheduledCall> every(Duration interval, Call call) override {
        return schedule(interval, interval, std::move(call));
    }

    /// Makes all calls that become due meanwhile, each at its time, in order. Returns how many.
    int advance(Duration duration) {
        const TimePoint end = now_ + duration;
        int made = 0;
        while (const auto next = nextDue(end)) {
            now_ = std::max(now_, next->due);
            if (next->interval == Duration::zero()) {
                std::erase(calls_, next);
            } else {
                next->due += next->interval;
            }
            next->call();
            ++made;
        }
        now_ = end;
        return made;
    }

    /// Time passes while the event loop is held up: the calls that become due wait for `advance`.
    void advanceWithoutCalls(Duration duration) { now_ += duration; }

    std::size_t scheduledCalls() const { return calls_.size(); }

private:
    struct Entry {
        TimePoint due;
        Duration interval;
        Call call;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    class Scheduled final : public ScheduledCall {
    public:
        Scheduled(Entries& calls, std::shared_ptr<Entry> entry)
            : calls_(calls), entry_(std::move(entry)) {}
        ~Scheduled() override { std::erase(calls_, entry_); }

    private:
        Entries& calls_;
        std::shared_ptr<Entry> entry_;
    };

    std::unique_ptr<ScheduledCall> schedule(Duration delay, Duration interval, Call call) {
        calls_.push_back(std::make_shared<Entry>(Entry{now_ + delay, interval, std::move(call)}));
        return std::make_unique<Scheduled>(calls_, calls_.back());
    }

    std::shared_ptr<Entry> nextDue(TimePoint end) const {
        const auto earliest =
            std::min_element(calls_.begin(), calls_.end(), [](const auto& left, const auto& right) {
                return left->due < right->due;
            });
        return earliest != calls_.end() && (*earliest)->due <= end ? *earliest : nullptr;
    }

    TimePoint now_{std::chrono::hours(1)};
    Entries calls_;
};

} // namespace navrel
