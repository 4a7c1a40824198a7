// The real program and Debian's own USB multiplexing daemon.

#include "tests/RealUSBDaemon.h"
#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(RealUSBDaemonProcess, thatComesAndGoesThreeTimesIsListenedToEachTime) {
    RealUSBDaemon daemon;
    if (!daemon.start()) {
        GTEST_SKIP() << "no USB daemon can run here: " << daemon.log().constData();
    }
    SmallProject project;
    NavrelProcess navrel;
    navrel.setLastKnownProject(project.bundle());
    navrel.setUSBDaemonAddress(daemon.address());
    TestDevice device;
    ASSERT_TRUE(device.listen());
    ASSERT_TRUE(navrel.start());
    ASSERT_TRUE(device.waitForConnection());
    ASSERT_TRUE(device.waitUntilServed());
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(waitUntil([&] { return daemon.log().contains("now LISTENING"); })) << round;
        daemon.stop();
        EXPECT_TRUE(device.ask(211).has_value()) << round;
        ASSERT_TRUE(daemon.start()) << round;
    }
    EXPECT_TRUE(waitUntil([&] { return daemon.log().contains("now LISTENING"); }));
    EXPECT_TRUE(navrel.isRunning());
    EXPECT_FALSE(navrel.log().contains("PTUSBHub"));
}

} // namespace
} // namespace navrel
