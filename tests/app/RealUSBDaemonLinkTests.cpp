// The link with Debian's own USB multiplexing daemon.

#include "support/core/NotificationCentre.h"
#include "support/dispatch/DispatchQueue.h"
#include "tests/RealUSBDaemon.h"
#include "tests/app/ServedProject.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/daemon/USBDaemonKeeper.h"

#include <chrono>

namespace navrel {
namespace {

/// A keeper that counts its streams: the first is the listening one, each other an attempt.
class CountingDaemon final : public USBDaemon {
public:
    explicit CountingDaemon(const QString& address)
        : keeper_(*USBDaemonAddress::fromText(address)) {}

    OwnedDescriptor openStream() override {
        ++streams;
        return keeper_.openStream();
    }

    int streams = 0;

private:
    USBDaemonKeeper keeper_;
};

class RealUSBDaemonLinkTest : public ServedProject {
protected:
    void SetUp() override {
        if (!daemon_.start()) {
            GTEST_SKIP() << "no USB daemon can run here: " << daemon_.log().constData();
        }
        streams_ = std::make_shared<CountingDaemon>(daemon_.address());
        hub_ = PTUSBHub::create(streams_);
    }
    void TearDown() override { hub_ = nullptr; }

    RealUSBDaemon daemon_;
    std::shared_ptr<CountingDaemon> streams_;
};

TEST_F(RealUSBDaemonLinkTest, listeningIsAnswered) {
    std::optional<std::optional<Error>> outcome;
    hub_->listenOnQueue(
        DispatchQueue::mainQueue(), [&](const auto& error) { outcome.emplace(error); }, nullptr);
    ASSERT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(*outcome, std::nullopt);
    EXPECT_TRUE(daemon_.log().contains("now LISTENING"));
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(RealUSBDaemonLinkTest, anUnknownDeviceIsRefusedWithNumberTwo) {
    std::optional<Error> refusal;
    hub_->connectToDevice(
        qlonglong{99}, 2345, [&](const auto& error, const auto&) { refusal = error; }, nullptr);
    ASSERT_TRUE(waitUntil([&] { return refusal.has_value(); }));
    EXPECT_EQ(refusal, Error(kPTUSBHubErrorDomain, 2));
}

TEST_F(RealUSBDaemonLinkTest, aRefusedDeviceIsTriedAgainEverySecond) {
    launchUnconnected();
    const auto start = clock_.now();
    NotificationCentre::defaultCentre().post(PTUSBDeviceDidAttachNotification, hub_.get(),
                                             {{QStringLiteral("DeviceID"), qlonglong{99}}});
    ASSERT_TRUE(waitWhileTimePasses([&] { return streams_->streams == 4; }));
    EXPECT_GE(clock_.now() - start, std::chrono::seconds(3));
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("PTUSBDeviceDidAttachNotification: 99")});
}

} // namespace
} // namespace navrel
