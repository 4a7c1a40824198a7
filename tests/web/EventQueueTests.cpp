#include "web/EventQueue.h"
#include "web/Limits.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

const std::string kResync = "event: resync\ndata: {}\n\n";

class EventQueueTests : public ::testing::Test {
protected:
    static constexpr std::size_t kMiB = std::size_t{1024} * 1024;

    EventQueue queue{Limits().unsentSize};
};

TEST_F(EventQueueTests, eventsWaitInTheirOrder) {
    queue.add("one");
    queue.add("two");
    EXPECT_EQ(queue.take(), "onetwo");
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(EventQueueTests, beyondAMebibyteAllOfThemAreOneResync) {
    queue.add(std::string(kMiB, 'x'));
    EXPECT_EQ(queue.unsent(), kMiB);
    queue.add("y");
    queue.add("z");
    EXPECT_EQ(queue.take(), kResync);
    queue.sent();
    queue.add("later");
    EXPECT_EQ(queue.take(), "later");
}

TEST_F(EventQueueTests, whatIsUnderWayIsUnsent) {
    queue.add(std::string(kMiB, 'x'));
    EXPECT_EQ(queue.take().size(), kMiB);
    queue.add("y");
    EXPECT_EQ(queue.take(), kResync);
    queue.sent();
    EXPECT_EQ(queue.unsent(), 0U);
}

} // namespace
} // namespace navrel
