#include "support/core/MainThread.h"

#include <gtest/gtest.h>

#include <thread>

namespace navrel {
namespace {

void onAnotherThread() {
    std::thread([] { NAVREL_ASSERT_MAIN_THREAD(); }).join();
}

TEST(MainThread, isTheOneThatTheProgramStartedOn) {
    NAVREL_ASSERT_MAIN_THREAD();
    EXPECT_TRUE(isMainThread());
    bool other = true;
    std::thread([&other] { other = isMainThread(); }).join();
    EXPECT_FALSE(other);
}

TEST(MainThread, theProgramStopsOnAnotherOne) {
    EXPECT_DEATH(onAnotherThread(), "on the main thread.*function operator\\(\\)");
}

} // namespace
} // namespace navrel
