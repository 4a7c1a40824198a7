#include "support/core/NotificationCentre.h"
#include "support/dispatch/DispatchQueue.h"
#include "tests/FakeUSBDaemon.h"
#include "tests/Sanitizers.h"
#include "tests/app/ServedProject.h"
#include "tests/transport/FullListener.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/daemon/USBDaemonKeeper.h"

#include <QDir>

#include <chrono>
#include <unistd.h>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

const QString kConnect = QStringLiteral("Connect");

/// The link on a daemon that the test has in hand, with or without a simulator.
class USBLinkTest : public ServedProject {
protected:
    USBLinkTest() { hub_ = PTUSBHub::create(keeper_); }

    void TearDown() override {
        daemon_.stop(); // attempts that are under way fail
        hub_ = nullptr;
    }

    void launchWithDaemon() {
        ASSERT_TRUE(daemon_.start());
        launchUnconnected();
        listen();
        ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
        delegate_->activate();
        passTime(seconds(2));
        ASSERT_EQ(clock_.scheduledCalls(), kAtRest);
    }

    void listen() { hub_->listenOnQueue(DispatchQueue::mainQueue(), nullptr, nullptr); }

    int connects() const { return daemon_.countOfRequests(kConnect); }

    /// Waits for a connection to the device, of which the test's device becomes the other end.
    [[nodiscard]] bool waitForDevice() {
        const int descriptor = daemon_.waitForDeviceConnection();
        device_.adopt(descriptor);
        return descriptor >= 0 && waitUntil([this] { return isConnected(); });
    }

    [[nodiscard]] bool connectDevice(qlonglong deviceID) {
        daemon_.attach(deviceID);
        return waitForDevice();
    }

    bool isConnected() const { return delegate_->connectedChannel() != nullptr; }

    /// Whether a failed attempt is to be repeated, while the second of the log's lines lasts, too.
    bool isRetryScheduled() const { return clock_.scheduledCalls() == kAtRest + 2; }

    /// Seconds in which the menu, the attempt on 127.0.0.1 and one more come, each once.
    void expectOneRetryASecond() {
        for (int second = 0; second < 3; ++second) {
            ASSERT_TRUE(waitUntil([&] { return clock_.scheduledCalls() == kAtRest + 1; }));
            EXPECT_EQ(clock_.advance(milliseconds(999)), 0);
            EXPECT_EQ(clock_.advance(milliseconds(1)), 3);
        }
        ASSERT_TRUE(waitUntil([&] { return clock_.scheduledCalls() == kAtRest + 1; }));
    }

    /// The daemon goes and comes back, with a device that it can connect.
    void expectServedAfterDaemonsReturn() {
        daemon_.stop();
        ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 7")));
        daemon_.connectAnswer = 0;
        ASSERT_TRUE(daemon_.start());
        EXPECT_TRUE(connectDevice(7));
    }

    bool waitForLog(const QString& message) {
        return waitUntil([&] { return log_.messages().contains(message); });
    }

    /// What always waits for its time: the menu, and the next attempt on 127.0.0.1.
    static constexpr std::size_t kAtRest = 2;

    FakeUSBDaemon daemon_;
    std::shared_ptr<USBDaemonKeeper> keeper_ =
        std::make_shared<USBDaemonKeeper>(*USBDaemonAddress::fromText(daemon_.address()));
};

// Reaching a device.

TEST_F(USBLinkTest, anAttachedDeviceIsReachedAndServed) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("PTUSBDeviceDidAttachNotification: 7")});
    ASSERT_NE(delegate_->connectedDeviceID(), nullptr);
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 7);
    EXPECT_EQ(delegate_->connectedChannel()->userInfo(), delegate_->connectedDeviceID());
    for (int round = 0; round < 3; ++round) {
        const auto reply = device_.ask(209);
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->value(QStringLiteral("project")).toString(), project_.folder());
    }
}

TEST_F(USBLinkTest, theStatedFactsFollowDeviceAndSimulator) {
    launchWithDaemon();
    using State = ProgramFacts::Device::State;
    const auto device = [this] {
        ProgramFacts facts;
        delegate_->addFacts(facts);
        return facts.device;
    };
    EXPECT_EQ(device().state, State::absent);
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    EXPECT_EQ(device().state, State::silent);
    TestDevice simulator;
    ASSERT_TRUE(simulator.listen());
    ASSERT_TRUE(waitForReconnection(simulator));
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    EXPECT_EQ(device().state, State::connected);
    EXPECT_TRUE(device().isSimulator);

    simulator.stopListening();
    daemon_.connectAnswer = 0;
    simulator.disconnect();
    ASSERT_TRUE(waitForDevice());
    EXPECT_EQ(device().state, State::connected);
    EXPECT_FALSE(device().isSimulator);
    daemon_.detach(7);
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    EXPECT_EQ(device().state, State::absent);
}

TEST_F(USBLinkTest, aRequestInTheSamePieceAsTheDaemonsReplyIsAnswered) {
    daemon_.behindConnectReply = TestDevice::frame(211, 5);
    for (const bool splits : {false, true}) {
        daemon_.splitsWrites = splits;
        if (!splits) {
            launchWithDaemon();
        }
        ASSERT_TRUE(connectDevice(splits ? 8 : 7));
        const auto reply = device_.nextFrame();
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->tag, 5U);
        daemon_.splitsWrites = false;
        daemon_.detach(splits ? 8 : 7);
        ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    }
}

TEST_F(USBLinkTest, theSameDeviceAttachedTwiceIsReachedOnce) {
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt; // both come while the first attempt is under way
    daemon_.attach(7);
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return log_.messages().size() == 2 && connects() == 1; }));
    passTime(seconds(2));
    EXPECT_EQ(connects(), 1);
}

TEST_F(USBLinkTest, aFailingAttemptIsSilentAndRepeatedEverySecondUntilTheDeviceGoes) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    const auto start = clock_.now();
    daemon_.attach(7);
    ASSERT_TRUE(waitWhileTimePasses([&] { return connects() == 3; }));
    EXPECT_GE(clock_.now() - start, seconds(2));
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("PTUSBDeviceDidAttachNotification: 7")});

    daemon_.detach(7);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 7")));
    const int attempts = connects();
    passTime(seconds(2));
    EXPECT_EQ(connects(), attempts);
}

TEST_F(USBLinkTest, anAttemptThatTheDaemonNeverAnswersFailsInTheEndAndIsRepeated) {
    keeper_ = std::make_shared<USBDaemonKeeper>(*USBDaemonAddress::fromText(daemon_.address()),
                                                milliseconds(300));
    hub_ = PTUSBHub::create(keeper_);
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt;
    daemon_.attach(7);
    ASSERT_TRUE(waitWhileTimePasses([&] { return connects() == 2; }));
    daemon_.connectAnswer = 0;
    EXPECT_TRUE(waitWhileTimePasses([&] { return isConnected(); }));
}

TEST_F(USBLinkTest, aDeviceThatIsAttachedAnewWhileAnAttemptFailsIsReachedByItsOwnAttemptAlone) {
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    daemon_.detach(7);
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 2; }));
    daemon_.closeConnecting(); // both fail; only the second one is repeated
    ASSERT_TRUE(waitWhileTimePasses([&] { return connects() == 3; }));
    passTime(seconds(2));
    EXPECT_EQ(connects(), 3);
}

TEST_F(USBLinkTest, afterADetachTheAttemptsGoOnForNoDeviceUntilOneIsAttached) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1 && isRetryScheduled(); }));
    daemon_.detach(7);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 7")));
    EXPECT_EQ(clock_.advance(seconds(1)), 4); // with the second of the log's lines
    expectOneRetryASecond();

    daemon_.connectAnswer = 0;
    EXPECT_TRUE(connectDevice(8));
    ASSERT_NE(delegate_->connectedDeviceID(), nullptr);
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 8);
    EXPECT_EQ(connects(), 2); // attempts for no device never reach the daemon
    EXPECT_FALSE(isRetryScheduled());
}

TEST_F(USBLinkTest, howeverFastADeviceComesAndGoesTheAttemptsForNoneAreOneASecond) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    for (int round = 1; round <= 5; ++round) {
        daemon_.attach(7);
        ASSERT_TRUE(waitUntil([&] { return connects() == round && isRetryScheduled(); }));
        daemon_.detach(7);
        ASSERT_TRUE(waitUntil([&] { return log_.messages().size() == 2 * round; }));
    }
    EXPECT_EQ(clock_.advance(seconds(1)), 4); // with the second of the log's lines
    expectOneRetryASecond();
}

TEST_F(USBLinkTest, anAttemptThatWaitsForItsTurnIsDroppedOnceTheDeviceIsAttachedAnew) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1 && isRetryScheduled(); }));
    daemon_.detach(7);
    daemon_.connectAnswer = 0;
    ASSERT_TRUE(connectDevice(7));
    device_.disconnect();
    ASSERT_TRUE(waitForDevice());
    passTime(seconds(2));
    EXPECT_EQ(connects(), 3);
}

TEST_F(USBLinkTest, anotherDeviceTakesTheWantedOnesPlaceWhileThatIsNotReached) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    daemon_.connectAnswer = 0;
    ASSERT_TRUE(connectDevice(8));
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 8);
}

TEST_F(USBLinkTest, howeverOftenTheSimulatorComesAndGoesADeviceIsTriedOnceASecond) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    for (int round = 0; round < 3; ++round) {
        TestDevice simulator;
        ASSERT_TRUE(simulator.listen());
        ASSERT_TRUE(waitForReconnection(simulator));
        ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
        passTime(milliseconds(1200)); // the next attempt is parked
        simulator.stopListening();
        simulator.disconnect();
        ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    }
    const auto start = clock_.now();
    const int before = connects();
    ASSERT_TRUE(waitWhileTimePasses([&] { return connects() == before + 3; }));
    EXPECT_GE(clock_.now() - start, seconds(2)); // the first comes at once
}

TEST_F(USBLinkTest, anAttemptUnderWayWhenTheSimulatorGoesIsNotMadeTwice) {
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    TestDevice simulator;
    ASSERT_TRUE(simulator.listen());
    ASSERT_TRUE(waitForReconnection(simulator));
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    simulator.stopListening();
    simulator.disconnect();
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    passTime(seconds(2));
    EXPECT_EQ(connects(), 1);
    daemon_.connectAnswer = 3;
    daemon_.closeConnecting(); // it fails, and is repeated
    EXPECT_TRUE(waitWhileTimePasses([&] { return connects() == 2; }));
}

// Losing a device.

TEST_F(USBLinkTest, unpluggingTheConnectedDeviceIsLoggedAndLeavesTheLinkIdle) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    int changes = 0;
    const auto token = NotificationCentre::defaultCentre().addObserver(
        kConnectedDeviceIDDidChange, delegate_.get(), [&](const Notification&) { ++changes; });
    log_.take();
    daemon_.detach(7);
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    EXPECT_EQ(log_.messages(), (QStringList{QStringLiteral("PTUSBDeviceDidDetachNotification: 7"),
                                            QStringLiteral("Disconnected from device"),
                                            QStringLiteral("Disconnected from 7")}));
    EXPECT_EQ(delegate_->connectedDeviceID(), nullptr);
    EXPECT_EQ(changes, 1);

    // The queue runs: the simulator is found.
    ASSERT_TRUE(device_.listen());
    EXPECT_TRUE(waitForReconnection(device_));
    EXPECT_EQ(connects(), 1);
}

TEST_F(USBLinkTest, aConnectionThatEndsWhileTheDeviceStaysIsMadeAgainAtOnce) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    log_.take();
    device_.disconnect();
    ASSERT_TRUE(waitForDevice());
    EXPECT_EQ(log_.messages(), (QStringList{QStringLiteral("Disconnected from device"),
                                            QStringLiteral("Disconnected from 7")}));
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, theDetachmentOfAnotherDeviceIsNoConcern) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    daemon_.sendToListeners(FakeUSBDaemon::detachedPacket(9));
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 9")));
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, theDetachmentOfTheWantedDeviceClosesTheSimulatorToo) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    TestDevice simulator;
    ASSERT_TRUE(simulator.listen());
    ASSERT_TRUE(waitForReconnection(simulator));
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    log_.take();
    daemon_.detach(7);
    EXPECT_TRUE(simulator.waitForEnd());
    ASSERT_TRUE(waitForReconnection(simulator));
    ASSERT_TRUE(waitUntil([&] { return log_.messages().size() >= 3; }));
    EXPECT_EQ(log_.messages(), (QStringList{QStringLiteral("PTUSBDeviceDidDetachNotification: 7"),
                                            QStringLiteral("Disconnected from 127.0.0.1:2345"),
                                            QStringLiteral("Connected to 127.0.0.1:2345")}));
}

TEST_F(USBLinkTest, anAttemptThatSucceedsOnceItsDeviceHasGoneIsAConnectionOfNoDevice) {
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    daemon_.detach(7);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 7")));
    daemon_.sendToConnecting(FakeUSBDaemon::packet(1, {{QStringLiteral("Number"), 0}}));
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    EXPECT_EQ(delegate_->connectedDeviceID(), nullptr);
    log_.take();
    daemon_.closeConnecting();
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("Disconnected from 7")});
}

TEST_F(USBLinkTest, anAnnouncementThatNamesNoDeviceIsLoggedAndPassedOver) {
    launchWithDaemon();
    daemon_.sendToListeners(
        FakeUSBDaemon::packet(0, {{QStringLiteral("MessageType"), QStringLiteral("Attached")}}) +
        FakeUSBDaemon::packet(0, {{QStringLiteral("MessageType"), QStringLiteral("Detached")},
                                  {QStringLiteral("DeviceID"), QStringLiteral("x")}}));
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: (null)")));
    EXPECT_TRUE(
        log_.messages().contains(QStringLiteral("PTUSBDeviceDidAttachNotification: (null)")));
    EXPECT_EQ(connects(), 0);
}

// Several at once.

TEST_F(USBLinkTest, aSecondDeviceWaitsUntilTheFirstHasGone) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    daemon_.attach(8);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidAttachNotification: 8")));
    passTime(seconds(2));
    EXPECT_EQ(connects(), 1);
    EXPECT_TRUE(device_.ask(211).has_value());

    daemon_.detach(7);
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(waitForDevice());
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 8);
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, ofSeveralDevicesThatWaitedTheLastOneIsReachedOnce) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    daemon_.attach(8);
    daemon_.attach(9);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidAttachNotification: 9")));
    daemon_.detach(7);
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(waitForDevice());
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 9);
    passTime(seconds(2));
    EXPECT_EQ(connects(), 2);
}

TEST_F(USBLinkTest, ofSeveralDevicesThatWaitedOneThatHasGoneIsPassedOver) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    daemon_.attach(8);
    daemon_.attach(9);
    daemon_.detach(9);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 9")));
    daemon_.detach(7);
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(waitForDevice());
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 8);
    EXPECT_EQ(connects(), 2);
}

/// How many devices a hub has told of as attached and detached.
class BroadcastCount {
public:
    explicit BroadcastCount(const PTUSBHub& hub) {
        auto& centre = NotificationCentre::defaultCentre();
        for (const QString& name :
             {PTUSBDeviceDidAttachNotification, PTUSBDeviceDidDetachNotification}) {
            tokens_.push_back(
                centre.addObserver(name, &hub, [this](const Notification&) { ++count_; }));
        }
    }
    BroadcastCount(const BroadcastCount&) = delete;
    BroadcastCount& operator=(const BroadcastCount&) = delete;

    int count() const { return count_; }

private:
    int count_ = 0;
    std::vector<NotificationCentre::Token> tokens_;
};

TEST_F(USBLinkTest, aDeviceThatCameAndWentWhileTheSimulatorWasConnectedIsNotTried) {
    constexpr int kRounds = 1000;
    ASSERT_TRUE(daemon_.start());
    launch();
    listen();
    ASSERT_TRUE(waitUntil([&] { return isConnected() && daemon_.listenerCount() == 1; }));
    QByteArray traffic;
    for (int round = 0; round < kRounds; ++round) {
        traffic += FakeUSBDaemon::attachedPacket(8) + FakeUSBDaemon::detachedPacket(8);
    }
    const BroadcastCount broadcasts(*hub_);
    daemon_.sendToListeners(traffic);
    // A turn of the event loop each, which takes a while on a busy machine.
    ASSERT_TRUE(waitUntil([&] { return broadcasts.count() == 2 * kRounds; }, minutes(2)));
    device_.stopListening();
    device_.disconnect();
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    passTime(seconds(2));
    EXPECT_EQ(connects(), 0);
    EXPECT_TRUE(connectDevice(8));
}

TEST_F(USBLinkTest, aDeviceAttachedWhileTheSimulatorIsConnectedIsReachedAfterIt) {
    ASSERT_TRUE(daemon_.start());
    launch();
    listen();
    delegate_->activate();
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    daemon_.attach(7);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidAttachNotification: 7")));
    EXPECT_TRUE(device_.ask(211).has_value());
    EXPECT_EQ(connects(), 0);

    device_.stopListening();
    device_.disconnect();
    ASSERT_TRUE(waitForDevice());
    EXPECT_EQ(delegate_->connectedDeviceID()->value(), 7);
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, aDeviceAttachedMeanwhileIsReachedThoughTheSimulatorIsThereAgainAtOnce) {
    ASSERT_TRUE(daemon_.start());
    launch();
    listen();
    delegate_->activate();
    ASSERT_TRUE(waitUntil([&] { return isConnected() && daemon_.listenerCount() == 1; }));
    passTime(milliseconds(1200)); // the next attempt on 127.0.0.1 is parked before the device
    daemon_.attach(7);
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidAttachNotification: 7")));

    device_.disconnect(); // it goes on listening
    ASSERT_TRUE(waitForDevice());
    ASSERT_TRUE(waitUntil([&] { return delegate_->connectedDeviceID() != nullptr; }));
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, aDeviceWhoseConnectionEndsIsReachedAgainThoughASimulatorIsThere) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    TestDevice simulator;
    ASSERT_TRUE(simulator.listen());
    passTime(milliseconds(1200)); // the attempt on 127.0.0.1 is parked
    device_.disconnect();
    ASSERT_TRUE(waitForDevice());
    ASSERT_TRUE(waitUntil([&] { return delegate_->connectedDeviceID() != nullptr; }));
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, whileADeviceIsConnectedTheSimulatorIsParkedAndThenFound) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    TestDevice simulator;
    ASSERT_TRUE(simulator.listen());
    passTime(seconds(2));
    EXPECT_FALSE(simulator.isConnectionWaiting());

    daemon_.detach(7);
    ASSERT_TRUE(waitForReconnection(simulator));
    ASSERT_TRUE(waitForLog(QStringLiteral("Connected to 127.0.0.1:2345")));
    EXPECT_EQ(delegate_->connectedDeviceID(), nullptr);
    EXPECT_TRUE(simulator.ask(211).has_value());
}

TEST_F(USBLinkTest, anAttemptUnderWayReplacesTheSimulatorWhichIsReleasedNotClosed) {
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    TestDevice simulator;
    ASSERT_TRUE(simulator.listen());
    ASSERT_TRUE(waitForReconnection(simulator));
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    const std::weak_ptr<PTChannel> simulatorChannel = delegate_->connectedChannel();

    daemon_.sendToConnecting(FakeUSBDaemon::packet(1, {{QStringLiteral("Number"), 0}}));
    ASSERT_TRUE(waitUntil([&] { return delegate_->connectedDeviceID() != nullptr; }));
    if (const auto channel = simulatorChannel.lock()) {
        EXPECT_EQ(channel->connState(), kConnStateConnected);
        EXPECT_NE(delegate_->connectedChannel(), channel);
    } else {
        ADD_FAILURE() << "the simulator's channel is gone";
    }
    simulator.disconnect();
    EXPECT_TRUE(waitUntil([&] { return simulatorChannel.expired(); }));
    EXPECT_TRUE(isConnected());
}

// Disconnecting.

TEST_F(USBLinkTest, disconnectingClosesADevicesChannelOnly) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    delegate_->disconnectFromCurrentChannel();
    EXPECT_FALSE(isConnected());
    EXPECT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(waitForDevice()); // it is still wanted
}

TEST_F(USBLinkTest, aSimulatorThatDoesNotAnswerIsPassedOverSilentlyAndTheDeviceIsServed) {
    const FullListener listener(2345);
    ASSERT_TRUE(listener.isFull());
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    EXPECT_TRUE(device_.ask(211).has_value());
    EXPECT_EQ(log_.messages(), QStringList{QStringLiteral("PTUSBDeviceDidAttachNotification: 7")});
}

TEST_F(USBLinkTest, disconnectingLeavesTheSimulatorAlone) {
    launch();
    ASSERT_TRUE(waitUntil([&] { return isConnected(); }));
    delegate_->disconnectFromCurrentChannel();
    EXPECT_TRUE(isConnected());
}

TEST_F(USBLinkTest, theEndOfADeviceThatIsNotConnectedIsLoggedAndForgetsNothing) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    delegate_->didDisconnectFromDevice(DeviceID(8));
    EXPECT_TRUE(log_.messages().contains(QStringLiteral("Disconnected from device")));
    EXPECT_NE(delegate_->connectedDeviceID(), nullptr);
}

// The daemon comes and goes.

TEST_F(USBLinkTest, aDaemonAbsentAtStartIsFoundWithItsDevices) {
    launchUnconnected();
    listen();
    ASSERT_TRUE(waitUntil([&] { return !log_.messages().isEmpty(); }));
    EXPECT_TRUE(log_.messages()[0].startsWith(QStringLiteral("PTUSBHub failed to initialize: ")));
    ASSERT_TRUE(daemon_.start());
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    EXPECT_TRUE(waitForDevice());
    EXPECT_EQ(log_.messages().size(), 2);
}

TEST_F(USBLinkTest, aDaemonThatGoesWhileTheLinkIsIdleComesBack) {
    launchWithDaemon();
    daemon_.stop();
    ASSERT_TRUE(daemon_.start());
    EXPECT_TRUE(connectDevice(7));
}

TEST_F(USBLinkTest, aDaemonThatGoesWhileADeviceIsReachedComesBack) {
    launchWithDaemon();
    daemon_.connectAnswer = std::nullopt;
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return connects() == 1; }));
    expectServedAfterDaemonsReturn();
}

TEST_F(USBLinkTest, aDaemonThatGoesBetweenTwoAttemptsComesBack) {
    launchWithDaemon();
    daemon_.connectAnswer = 3;
    daemon_.attach(7);
    ASSERT_TRUE(waitWhileTimePasses([&] { return connects() == 2; }));
    expectServedAfterDaemonsReturn();
}

TEST_F(USBLinkTest, aDaemonThatGoesWhileADeviceIsConnectedComesBack) {
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    daemon_.stop();
    device_.disconnect(); // the daemon held the device's connection
    ASSERT_TRUE(waitForLog(QStringLiteral("PTUSBDeviceDidDetachNotification: 7")));
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(connectDevice(7));
    EXPECT_TRUE(device_.ask(211).has_value());
}

TEST_F(USBLinkTest, aDaemonThatGoesWhileTheSimulatorIsConnectedIsNoConcern) {
    ASSERT_TRUE(daemon_.start());
    launch();
    listen();
    delegate_->activate();
    ASSERT_TRUE(waitUntil([&] { return isConnected() && daemon_.listenerCount() == 1; }));
    daemon_.stop();
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    EXPECT_TRUE(device_.ask(211).has_value());
}

// Endurance.

TEST_F(USBLinkTest, twoHundredTimesPluggedInAndOutNothingIsLeft) {
    constexpr int kCycles = 200;
    const auto openDescriptors = [] {
        return QDir(QStringLiteral("/proc/self/fd")).entryList().size();
    };
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    std::vector<std::weak_ptr<PTChannel>> channels = {delegate_->connectedChannel()};
    daemon_.detach(7);
    ASSERT_TRUE(waitUntil([&] { return !isConnected(); }));
    device_.disconnect();
    const auto before = openDescriptors();
    for (int cycle = 0; cycle < kCycles; ++cycle) {
        ASSERT_TRUE(connectDevice(7 + cycle)) << cycle;
        channels.push_back(delegate_->connectedChannel());
        daemon_.detach(7 + cycle);
        ASSERT_TRUE(waitUntil([&] { return !isConnected(); })) << cycle;
        device_.disconnect();
    }
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= before; })) << openDescriptors();
    for (const auto& channel : channels) {
        EXPECT_TRUE(channel.expired());
    }
}

TEST_F(USBLinkTest, aFloodOfBroadcastsLeavesTheConnectedCompanionServed) {
    constexpr int kPackets = loadOf(10'000, 2'000);
    launchWithDaemon();
    ASSERT_TRUE(connectDevice(7));
    QByteArray flood;
    for (int packet = 0; packet < kPackets / 2; ++packet) {
        flood += FakeUSBDaemon::attachedPacket(8) + FakeUSBDaemon::detachedPacket(8);
    }
    const BroadcastCount broadcasts(*hub_);
    daemon_.sendToListeners(flood);
    int answersMeanwhile = 0;
    while (broadcasts.count() < kPackets) {
        ASSERT_TRUE(device_.ask(211).has_value());
        ++answersMeanwhile;
    }
    EXPECT_GT(answersMeanwhile, 2);
    // Nor does it fill the log: so many lines a second, and the number of the others.
    EXPECT_TRUE(waitWhileTimePasses([&] {
        return log_.messages().last().endsWith(
            QStringLiteral("more lines about devices attached and detached were left out"));
    }));
    EXPECT_LT(log_.messages().size(), kPackets / 10);
}

} // namespace
} // namespace navrel
