#include "support/process/Errands.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <pthread.h>
#include <thread>

namespace navrel {
namespace {

class ErrandsTest : public ::testing::Test {
protected:
    ~ErrandsTest() override {
        isHeld = false;
        EXPECT_TRUE(waitUntil([this] { return running == 0; }));
    }

    Errands::Job job() {
        return [this] {
            ++running;
            while (isHeld) {
                std::this_thread::yield();
            }
            ++done;
            --running;
        };
    }

    const Errands errands{QStringLiteral("errands"), 3};
    LogRecorder log;
    std::atomic<bool> isHeld = true;
    std::atomic<int> running = 0;
    std::atomic<int> done = 0;
};

TEST_F(ErrandsTest, nobodyWaitsForAJob) {
    EXPECT_TRUE(errands.start({job(), job()}));
    EXPECT_TRUE(waitUntil([this] { return running == 2; })) << "at the same time";
    EXPECT_EQ(done, 0);
    isHeld = false;
    EXPECT_TRUE(waitUntil([this] { return done == 2; }));
}

TEST_F(ErrandsTest, onlySoManyRunAtATime) {
    EXPECT_TRUE(errands.start({job(), job()}));
    EXPECT_FALSE(errands.start({job(), job()})) << "one of the two would be one too many";
    EXPECT_EQ(log.take(),
              QStringList{QStringLiteral("Too many errands at a time: one was refused")});
    EXPECT_TRUE(errands.start({job()}));
    EXPECT_FALSE(errands.start({job()}));
    isHeld = false;
    EXPECT_TRUE(waitUntil([this] { return errands.start({job(), job(), job()}); }));
    EXPECT_TRUE(waitUntil([this] { return done == 6; })) << "the three before, and these";
}

#ifdef __GLIBC__
TEST_F(ErrandsTest, whereNoThreadCanBeMadeNothingIsDone) {
    pthread_attr_t before;
    ASSERT_EQ(::pthread_getattr_default_np(&before), 0);
    pthread_attr_t impossible;
    ASSERT_EQ(::pthread_attr_init(&impossible), 0);
    // A stack that no address space holds.
    ASSERT_EQ(::pthread_attr_setstacksize(&impossible, std::size_t{1} << 60), 0);
    ASSERT_EQ(::pthread_setattr_default_np(&impossible), 0);
    for (int attempt = 0; attempt < 5; ++attempt) {
        EXPECT_FALSE(errands.start({job()}));
    }
    ASSERT_EQ(::pthread_setattr_default_np(&before), 0);
    ASSERT_EQ(log.messages().size(), 5);
    EXPECT_TRUE(log.messages().front().startsWith(QStringLiteral("No thread for errands: ")));

    // What was not done does not count as running.
    EXPECT_TRUE(errands.start({job(), job(), job()}));
    EXPECT_TRUE(waitUntil([this] { return running == 3; }));
}
#endif

} // namespace
} // namespace navrel
