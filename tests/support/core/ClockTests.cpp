#include "support/core/Clock.h"
#include "tests/FakeClock.h"
#include "tests/WaitUntil.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(SystemClock, aCallComesOnceAndNeverEarly) {
    Clock& clock = systemClock();
    const auto start = clock.now();
    int calls = 0;
    Clock::TimePoint called;
    const auto call = clock.after(milliseconds(20), [&] {
        ++calls;
        called = clock.now();
    });
    int ticks = 0;
    const auto ticking = clock.every(milliseconds(30), [&] { ++ticks; });
    ASSERT_TRUE(waitUntil([&] { return ticks == 3; }));
    EXPECT_EQ(calls, 1);
    EXPECT_GE(called - start, milliseconds(20));
}

TEST(SystemClock, aCallMayEndItself) {
    int calls = 0;
    std::unique_ptr<ScheduledCall> call;
    call = systemClock().every(milliseconds(1), [&] {
        ++calls;
        call.reset();
    });
    int ticks = 0;
    const auto ticking = systemClock().every(milliseconds(5), [&] { ++ticks; });
    ASSERT_TRUE(waitUntil([&] { return ticks == 3; }));
    EXPECT_EQ(calls, 1);
}

TEST(FakeClock, callsComeAtTheirTimeAndInOrder) {
    FakeClock clock;
    const auto start = clock.now();
    std::vector<std::pair<char, Clock::Duration>> calls;
    const auto note = [&](char name) { calls.emplace_back(name, clock.now() - start); };
    const auto every = clock.every(seconds(2), [&] { note('e'); });
    const auto once = clock.after(seconds(3), [&] { note('o'); });
    auto cancelled = clock.after(seconds(1), [&] { note('c'); });
    cancelled.reset();
    clock.advance(seconds(5));
    EXPECT_EQ(calls, (std::vector<std::pair<char, Clock::Duration>>{
                         {'e', seconds(2)}, {'o', seconds(3)}, {'e', seconds(4)}}));
    EXPECT_EQ(clock.now() - start, seconds(5));
}

} // namespace
} // namespace navrel
