// The real program and a device made of sockets: how they find each other and talk.

#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr quint32 kReply = 500;
constexpr milliseconds kReachedWithin{2000};

class LinkTest : public ::testing::Test {
protected:
    void SetUp() override {
        project_.writeFile(QStringLiteral("a.h"), "\n");
        project_.addEntry("A", "a.h");
        navrel_.setLastKnownProject(project_.bundle());
    }

    SmallProject project_;
    NavrelProcess navrel_;
    TestDevice device_;
};

TEST_F(LinkTest, startedWithNobodyListeningItIsSilentAndConnectsSoonAfterAListenerAppears) {
    ASSERT_TRUE(navrel_.start());
    // Some attempts fail first.
    QElapsedTimer sinceStart;
    sinceStart.start();
    ASSERT_TRUE(waitUntil([&] { return sinceStart.elapsed() > 2500; }));
    EXPECT_EQ(navrel_.log(),
              "Navrel: PTUSBHub failed to initialize: Error Domain=NSPOSIXErrorDomain "
              "Code=2 \"No such file or directory\"\n");

    ASSERT_TRUE(device_.listen());
    EXPECT_TRUE(device_.waitForConnection(kReachedWithin));
    EXPECT_TRUE(navrel_.waitForLog("Connected to 127.0.0.1:2345\n"));
}

TEST_F(LinkTest, aLostConnectionIsMadeAgain) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    for (int round = 0; round < 3; ++round) {
        device_.disconnect();
        ASSERT_TRUE(device_.waitForConnection(kReachedWithin)) << round;
    }
    EXPECT_TRUE(navrel_.waitForLog("Disconnected from 127.0.0.1:2345\n"));
    EXPECT_TRUE(device_.waitUntilServed()) << navrel_.log().data();
}

TEST_F(LinkTest, aListenerThatGoesAndComesBackIsFoundAgain) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    device_.stopListening();
    device_.disconnect();
    ASSERT_TRUE(navrel_.waitForLog("Disconnected from 127.0.0.1:2345\n"));

    ASSERT_TRUE(device_.listen());
    EXPECT_TRUE(device_.waitForConnection(kReachedWithin));
}

TEST_F(LinkTest, whileOneConnectionStandsNoOtherIsTried) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());

    QElapsedTimer sinceServed;
    sinceServed.start();
    EXPECT_FALSE(waitUntil([&] { return device_.isConnectionWaiting(); }, seconds(3)));
    EXPECT_TRUE(device_.ask(209).has_value());
}

TEST_F(LinkTest, framesOfTheFirstMomentsAreDropped) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    QElapsedTimer sinceConnection;
    sinceConnection.start();
    ASSERT_TRUE(device_.sendBytes(TestDevice::frame(211, 1)));

    // No answer to the first request, at whatever time one would come; a later one is answered.
    EXPECT_FALSE(device_.nextFrame(milliseconds(3000)).has_value());
    EXPECT_GT(sinceConnection.elapsed(), 1500);
    ASSERT_TRUE(device_.sendBytes(TestDevice::frame(211, 2)));
    const auto reply = device_.nextFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->tag, 2u);
}

TEST_F(LinkTest, aThousandRequestsAtOnceAreAnsweredInOrderWithTheirTags) {
    constexpr quint32 kRequests = 1000;
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());

    QByteArray bytes;
    for (quint32 tag = 0; tag < kRequests; ++tag) {
        bytes += TestDevice::frame(tag % 2 == 0 ? 211 : 202, 1'000'000 + tag);
    }
    ASSERT_TRUE(device_.sendBytes(bytes));
    for (quint32 tag = 0; tag < kRequests; ++tag) {
        const auto reply = device_.nextFrame();
        ASSERT_TRUE(reply.has_value()) << tag;
        ASSERT_EQ(reply->type, kReply);
        ASSERT_EQ(reply->tag, 1'000'000 + tag);
        const QString key = tag % 2 == 0 ? QStringLiteral("version") : QStringLiteral("items");
        ASSERT_TRUE(dictionaryOf(reply->payload).contains(key)) << tag;
    }
}

TEST_F(LinkTest, aRequestInSingleBytesIsAnswered) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());

    const QByteArray bytes =
        TestDevice::request(200, 77, {{QStringLiteral("identifier"), QStringLiteral("A")}});
    for (const char byte : bytes) {
        ASSERT_TRUE(device_.sendBytes(QByteArray(1, byte)));
    }
    const auto reply = device_.nextFrame();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->tag, 77u);
    EXPECT_EQ(dictionaryOf(reply->payload).value(QStringLiteral("identifier")).toString(),
              QStringLiteral("A"));
}

TEST_F(LinkTest, anUnexpectedFrameClosesTheConnectionAndANewOneIsMade) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.sendBytes(TestDevice::frame(212, 1)));

    EXPECT_TRUE(device_.waitForEnd());
    EXPECT_TRUE(navrel_.waitForLog("Unexpected frame of type 212\n"));
    EXPECT_TRUE(device_.waitForConnection(kReachedWithin));
}

TEST_F(LinkTest, garbageClosesTheConnectionAndANewOneIsMade) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.sendBytes("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n"));

    EXPECT_TRUE(device_.waitForEnd());
    EXPECT_TRUE(device_.waitForConnection(kReachedWithin));
    EXPECT_TRUE(device_.waitUntilServed());
}

TEST_F(LinkTest, aPayloadThatUnfoldsWithoutBoundIsNoRequest) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());

    // 24 arrays, each holding the next one ten times; the last one is empty.
    constexpr char kLevels = 24;
    QByteArray list = "bplist00";
    QByteArray offsets;
    for (char level = 0; level < kLevels; ++level) {
        offsets += static_cast<char>(list.size() >> 8);
        offsets += static_cast<char>(list.size() & 0xFF);
        if (level + 1 < kLevels) {
            list += '\xAA' + QByteArray(10, static_cast<char>(level + 1));
        } else {
            list += '\xA0';
        }
    }
    const auto offsetTable = static_cast<char>(list.size() & 0xFF);
    const auto offsetTableHigh = static_cast<char>(list.size() >> 8);
    list += offsets + QByteArray("\0\0\0\0\0\0\2\1", 8) + QByteArray("\0\0\0\0\0\0\0", 7) +
            kLevels + QByteArray(8, '\0') + QByteArray("\0\0\0\0\0\0", 6) + offsetTableHigh +
            offsetTable;
    ASSERT_TRUE(device_.sendBytes(TestDevice::frame(206, 5, list)));

    EXPECT_TRUE(device_.ask(209).has_value());
}

} // namespace
} // namespace navrel
