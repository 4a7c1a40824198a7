#include "app/WantedDevice.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

std::shared_ptr<const DeviceID> device(qlonglong value) {
    return std::make_shared<const DeviceID>(value);
}

class WantedDeviceTest : public testing::Test {
protected:
    /// The wanted device's number, or 0.
    qlonglong wanted() const { return wanted_.ID() ? wanted_.ID()->value() : 0; }

    WantedDevice wanted_;
};

TEST_F(WantedDeviceTest, isNoneAtFirst) {
    EXPECT_EQ(wanted_.ID(), nullptr);
    EXPECT_FALSE(wanted_.wantAnnounced());
}

TEST_F(WantedDeviceTest, isTheOneAnnouncedOnceThatIsChosen) {
    const auto seven = device(7);
    EXPECT_TRUE(wanted_.announce(seven, {}));
    EXPECT_EQ(wanted(), 0);
    EXPECT_TRUE(wanted_.wantAnnounced());
    EXPECT_EQ(wanted_.ID(), seven);
}

TEST_F(WantedDeviceTest, announcedAgainIsStillTheSame) {
    const auto seven = device(7);
    wanted_.announce(seven, {});
    wanted_.wantAnnounced();
    EXPECT_TRUE(wanted_.announce(device(7), {}));
    EXPECT_FALSE(wanted_.wantAnnounced());
    EXPECT_EQ(wanted_.ID(), seven);
}

TEST_F(WantedDeviceTest, ofSeveralAnnouncedIsTheLastAndOneChoiceIsDue) {
    EXPECT_TRUE(wanted_.announce(device(7), {}));
    EXPECT_FALSE(wanted_.announce(device(8), {}));
    EXPECT_FALSE(wanted_.announce(device(9), {}));
    EXPECT_FALSE(wanted_.announce(device(8), {}));
    EXPECT_TRUE(wanted_.wantAnnounced());
    EXPECT_EQ(wanted(), 8);
    EXPECT_FALSE(wanted_.wantAnnounced()); // the others are forgotten
}

TEST_F(WantedDeviceTest, isNotOneThatHasGoneSinceItWasAnnounced) {
    wanted_.announce(device(7), {});
    wanted_.announce(device(8), {});
    EXPECT_FALSE(wanted_.forget(DeviceID(8)));
    EXPECT_TRUE(wanted_.wantAnnounced());
    EXPECT_EQ(wanted(), 7);
}

TEST_F(WantedDeviceTest, isAChoiceThatIsDueOnceHoweverOftenDevicesComeAndGo) {
    EXPECT_TRUE(wanted_.announce(device(7), {}));
    for (int round = 0; round < 1000; ++round) {
        wanted_.forget(DeviceID(7));
        ASSERT_FALSE(wanted_.announce(device(7), {}));
    }
    EXPECT_TRUE(wanted_.wantAnnounced());
    EXPECT_TRUE(wanted_.announce(device(8), {}));
}

TEST_F(WantedDeviceTest, remembersNoMoreAnnouncedDevicesThanAnybodyHas) {
    constexpr qlonglong kLast = qlonglong{WantedDevice::kMostAnnounced} + 1;
    for (qlonglong number = 1; number <= kLast; ++number) {
        wanted_.announce(device(number), {});
    }
    for (qlonglong number = 2; number <= kLast; ++number) {
        wanted_.forget(DeviceID(number));
    }
    EXPECT_FALSE(wanted_.wantAnnounced()); // the first made room for the last
}

TEST_F(WantedDeviceTest, isForgottenWhenItHasGone) {
    wanted_.announce(device(7), {});
    wanted_.wantAnnounced();
    EXPECT_FALSE(wanted_.forget(DeviceID(8)));
    EXPECT_EQ(wanted(), 7);
    EXPECT_TRUE(wanted_.forget(DeviceID(7)));
    EXPECT_EQ(wanted_.ID(), nullptr);
    EXPECT_FALSE(wanted_.forget(DeviceID(7)));
}

} // namespace
} // namespace navrel
