#include "web/RateLimiter.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

using std::chrono::milliseconds;

/// One request a second, no burst, and room for three addresses.
class RateLimiterTests : public ::testing::Test {
protected:
    RateLimiterTests() {
        limits.requestsPerSecond = 1;
        limits.requestBurst = 1;
        limits.ratedAddresses = 3;
    }

    bool allowsAfter(int passed, const std::string& address) {
        return limiter.allows(address, RateLimiter::Time(milliseconds(passed)));
    }

    Limits limits;
    RateLimiter limiter{limits};
};

TEST_F(RateLimiterTests, whatIsRefusedCostsNothing) {
    EXPECT_TRUE(allowsAfter(0, "a"));
    for (int passed = 100; passed < 1000; passed += 100) {
        EXPECT_FALSE(allowsAfter(passed, "a")) << passed;
    }
    EXPECT_TRUE(allowsAfter(1001, "a"));
}

TEST_F(RateLimiterTests, aFullTableForgetsTheAddressThatWasQuietForLongest) {
    EXPECT_TRUE(allowsAfter(0, "a"));
    EXPECT_TRUE(allowsAfter(1, "b"));
    EXPECT_TRUE(allowsAfter(2, "c"));
    EXPECT_TRUE(allowsAfter(3, "d")); // in the place of a
    EXPECT_FALSE(allowsAfter(4, "b"));
    EXPECT_FALSE(allowsAfter(5, "c"));
    EXPECT_TRUE(allowsAfter(6, "a")); // in the place of d
    EXPECT_FALSE(allowsAfter(7, "b"));
}

TEST_F(RateLimiterTests, thoseThatHaveTheirWholeBurstAgainAreForgottenFirst) {
    EXPECT_TRUE(allowsAfter(0, "a"));
    EXPECT_TRUE(allowsAfter(0, "b"));
    EXPECT_TRUE(allowsAfter(900, "c"));
    EXPECT_TRUE(allowsAfter(1001, "d")); // in the place of a and b
    EXPECT_TRUE(allowsAfter(1002, "e"));
    EXPECT_FALSE(allowsAfter(1003, "c"));
    EXPECT_FALSE(allowsAfter(1004, "d"));
}

} // namespace
} // namespace navrel
