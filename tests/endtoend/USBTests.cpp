// The real program and a device over USB, behind a daemon made of sockets.

#include "tests/FakeUSBDaemon.h"
#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

class USBTest : public ::testing::Test {
protected:
    void SetUp() override {
        project_.writeFile(QStringLiteral("a.h"), "\n");
        project_.addEntry("A", "a.h");
        navrel_.setLastKnownProject(project_.bundle());
        navrel_.setUSBDaemonAddress(daemon_.address());
    }

    [[nodiscard]] bool waitForDevice() {
        const int descriptor = daemon_.waitForDeviceConnection();
        device_.adopt(descriptor);
        return descriptor >= 0;
    }

    SmallProject project_;
    FakeUSBDaemon daemon_;
    NavrelProcess navrel_;
    TestDevice device_;
};

TEST_F(USBTest, aDeviceIsFoundServedAndForgotten) {
    ASSERT_TRUE(daemon_.start());
    daemon_.attach(7);
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitForDevice());
    EXPECT_TRUE(navrel_.waitForLog("PTUSBDeviceDidAttachNotification: 7\n"));
    ASSERT_TRUE(device_.waitUntilServed());
    EXPECT_TRUE(waitUntil([&] {
        const auto reply = device_.ask(200, {{QStringLiteral("identifier"), QStringLiteral("A")}});
        return reply && reply->value(QStringLiteral("label")) == QStringLiteral("a.h");
    }));

    daemon_.detach(7);
    EXPECT_TRUE(device_.waitForEnd());
    EXPECT_TRUE(navrel_.waitForLog("PTUSBDeviceDidDetachNotification: 7\n"));
    EXPECT_TRUE(navrel_.waitForLog("Disconnected from device\n"));
    EXPECT_TRUE(navrel_.waitForLog("Disconnected from 7\n"));
}

TEST_F(USBTest, aDaemonThatComesAndGoesWithItsDevicesIsFollowed) {
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(navrel_.waitForLog("PTUSBHub failed to initialize: "));
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(daemon_.start());
        daemon_.attach(7);
        ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
        ASSERT_TRUE(waitForDevice());
        ASSERT_TRUE(device_.waitUntilServed());
        daemon_.stop();
        device_.disconnect();
    }
    EXPECT_TRUE(navrel_.isRunning());
    EXPECT_EQ(navrel_.log().count("PTUSBHub failed to initialize: "), 1);
}

TEST_F(USBTest, aDaemonThatRefusesToListenIsLoggedOnceAndListenedToOnceItAgrees) {
    daemon_.listenAnswer = 6;
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([&] { return daemon_.countOfRequests(QStringLiteral("Listen")) == 3; }));
    daemon_.listenAnswer = 0;
    daemon_.attach(7);
    ASSERT_TRUE(waitForDevice());
    ASSERT_TRUE(device_.waitUntilServed());
    EXPECT_EQ(navrel_.log().count("PTUSBHub failed to initialize: Error Domain=PTUSBHubError "
                                  "Code=6 \"invalid version\"\n"),
              1);
    EXPECT_FALSE(navrel_.log().contains("refuses to announce"));
}

TEST_F(USBTest, aDaemonThatSendsNonsenseLeavesTheSimulatorServed) {
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());
    for (const char* bytes : {"00000000", "0f000000", "ffffffff", "100000000100000009000000",
                              "120000000100000008000000000000003c3c"}) {
        ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; })) << bytes;
        daemon_.sendToListeners(QByteArray::fromHex(bytes));
        EXPECT_TRUE(device_.ask(211).has_value()) << bytes;
    }
    EXPECT_TRUE(navrel_.isRunning());
}

} // namespace
} // namespace navrel
