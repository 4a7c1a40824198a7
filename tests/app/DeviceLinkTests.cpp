#include "tests/app/ServedProject.h"
#include "transport/frames/PTAddress.h"

#include <gmock/gmock.h>

#include <chrono>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

using std::chrono::milliseconds;

/// While it lives, the process can open no descriptor: all that it may have are open. The limit
/// stays above what the event loop polls, which the kernel holds to the same number.
class NoDescriptorsLeft {
public:
    NoDescriptorsLeft() {
        ::getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few = {kDescriptors, before_.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        for (int one = openOne(); one >= 0; one = openOne()) {
            taken_.push_back(one);
        }
    }
    ~NoDescriptorsLeft() {
        for (const int one : taken_) {
            ::close(one);
        }
        ::setrlimit(RLIMIT_NOFILE, &before_);
    }
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;

private:
    static constexpr rlim_t kDescriptors = 128;
    static int openOne() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }

    rlimit before_ = {};
    std::vector<int> taken_;
};

class DeviceLinkTest : public ServedProject {
protected:
    /// Starts without a listener.
    void launchAlone() {
        launch();
        device_.stopListening();
        device_.disconnect();
        ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() == nullptr; }));
        log_.take();
    }
};

TEST_F(DeviceLinkTest, aConnectionIsLoggedWithItsAddress) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("Connected to 127.0.0.1:2345")});
}

TEST_F(DeviceLinkTest, aConnectedChannelIsKnownByTheAddressOfItsPeer) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    const auto address =
        std::dynamic_pointer_cast<const PTAddress>(delegate_->connectedChannel()->userInfo());
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(address->port(), 2345);
}

TEST_F(DeviceLinkTest, withNobodyListeningNothingIsLoggedAndTheAttemptRepeats) {
    launchAlone();
    passTime(milliseconds(2500));
    EXPECT_EQ(log_.messages(), QStringList());

    ASSERT_TRUE(device_.listen());
    EXPECT_TRUE(waitForReconnection(device_));
}

TEST_F(DeviceLinkTest, anyOtherFailureIsLoggedAndTriedAgainOnceASecond) {
    launchAlone();
    // One attempt first: the sanitizer needs descriptors of its own for each type that it meets.
    passTime(milliseconds(1500));
    std::vector<Clock::TimePoint> times;
    {
        const NoDescriptorsLeft limit;
        for (const qsizetype count : {1, 3}) {
            ASSERT_TRUE(waitWhileTimePasses([&] { return log_.messages().size() >= count; }));
            times.push_back(clock_.now());
        }
    }
    EXPECT_GE(times[1] - times[0], milliseconds(1900)) << "two attempts more, each a second later";
    EXPECT_EQ(log_.messages().value(0),
              QStringLiteral("Failed to connect to 127.0.0.1:2345: Error Domain=NSPOSIXErrorDomain "
                             "Code=24 \"Too many open files\""));
}

TEST_F(DeviceLinkTest, whileAChannelIsConnectedNoAttemptIsMade) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    passTime(milliseconds(2500));
    EXPECT_FALSE(isNextPollScheduled()); // which an attempt does: the one that was due is parked
    EXPECT_FALSE(device_.isConnectionWaiting());
}

TEST_F(DeviceLinkTest, anEndedConnectionIsLoggedOnceAndMadeAgain) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    log_.take();
    device_.disconnect();
    ASSERT_TRUE(waitForReconnection(device_));
    ASSERT_TRUE(waitUntil([this] { return log_.messages().size() >= 2; }));
    EXPECT_EQ(log_.messages(), (QStringList{QStringLiteral("Disconnected from 127.0.0.1:2345"),
                                            QStringLiteral("Connected to 127.0.0.1:2345")}));
}

TEST_F(DeviceLinkTest, aConnectionThatEndsWithAnErrorIsLoggedWithoutIt) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    device_.stopListening(); // it is not made again
    log_.take();
    ASSERT_TRUE(device_.sendBytes(QByteArray(16, 'x'))); // no frame
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(waitUntil([this] { return !log_.messages().isEmpty(); }));
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("Disconnected from 127.0.0.1:2345")});
}

TEST_F(DeviceLinkTest, theEndOfAnotherChannelIsNoConcern) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    log_.take();
    delegate_->ioFrameChannelDidEndWithError(PTChannel::init(), std::nullopt);
    EXPECT_NE(delegate_->connectedChannel(), nullptr);
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(DeviceLinkTest, settingTheChannelTwiceKeepsTheQueueBalanced) {
    launch();
    ASSERT_TRUE(waitUntil([this] { return delegate_->connectedChannel() != nullptr; }));
    passTime(std::chrono::seconds(1)); // the next attempt is parked
    const auto channel = delegate_->connectedChannel();
    delegate_->setConnectedChannel(channel);
    delegate_->setConnectedChannel(channel);
    delegate_->setConnectedChannel(nullptr);
    delegate_->setConnectedChannel(nullptr);
    // The parked attempt runs: the queue is not left suspended.
    EXPECT_TRUE(device_.waitForConnection());
}

} // namespace
} // namespace navrel
