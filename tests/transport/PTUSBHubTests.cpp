#include "support/core/NotificationCentre.h"
#include "support/dispatch/DispatchQueue.h"
#include "tests/FakeUSBDaemon.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/transport/PairedUSBDaemon.h"
#include "tests/transport/RecordingDelegate.h"
#include "transport/frames/PTChannel.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/daemon/USBDaemonSocket.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <cerrno>
#include <unistd.h>

namespace navrel {
namespace {

using Outcomes = std::vector<std::optional<Error>>;

class PTUSBHubTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(daemon_.start()); }

    static PTUSBHub::Callback into(Outcomes& outcomes) {
        return [&outcomes](const std::optional<Error>& error) { outcomes.push_back(error); };
    }

    void listen() {
        hub_->listenOnQueue(DispatchQueue::mainQueue(), into(starts_), into(ends_));
        ASSERT_TRUE(waitUntil([&] { return !starts_.empty(); }));
    }

    void connect(const QVariant& deviceID) {
        hub_->connectToDevice(
            deviceID, 2345,
            [this](const std::optional<Error>& error, const std::shared_ptr<DispatchIO>& stream) {
                connectOutcomes_.push_back(error);
                stream_ = stream;
            },
            into(connectionEnds_));
    }

    NotificationCentre::Token observe(const QString& name, std::vector<Notification>& into) {
        return NotificationCentre::defaultCentre().addObserver(
            name, hub_.get(),
            [&into](const Notification& notification) { into.push_back(notification); });
    }

    std::shared_ptr<USBDaemonSocket> socket() const {
        return std::make_shared<USBDaemonSocket>(*USBDaemonAddress::fromText(daemon_.address()));
    }

    void TearDown() override {
        hub_ = nullptr;
        stream_ = nullptr;
        // What is under way ends, and tells this object.
        EXPECT_TRUE(waitUntil([&] { return daemon_.connectionCount() == 0; }));
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    FakeUSBDaemon daemon_;
    std::shared_ptr<PTUSBHub> hub_ = PTUSBHub::create(socket());
    Outcomes starts_;
    Outcomes ends_;
    Outcomes connectOutcomes_;
    Outcomes connectionEnds_;
    std::shared_ptr<DispatchIO> stream_;
    LogRecorder log_;
};

// Listening.

TEST_F(PTUSBHubTest, listeningIsReportedWhenTheDaemonHasAgreed) {
    listen();
    EXPECT_EQ(starts_, Outcomes{std::nullopt});
    EXPECT_EQ(daemon_.countOfRequests(kListen), 1);
    EXPECT_EQ(daemon_.requests()[0].tag, 1U);
    EXPECT_EQ(daemon_.requests()[0].message.keys(),
              (QStringList{QStringLiteral("ClientVersionString"), QStringLiteral("MessageType"),
                           QStringLiteral("ProgName")}));
}

TEST_F(PTUSBHubTest, aRefusalToListenIsReportedWithItsCode) {
    daemon_.listenAnswer = 6;
    listen();
    EXPECT_EQ(starts_, Outcomes{Error(kPTUSBHubErrorDomain, 6)});
}

TEST_F(PTUSBHubTest, aSecondListenSucceedsAtOnceAndSendsNothing) {
    listen();
    Outcomes again;
    hub_->listenOnQueue(DispatchQueue::mainQueue(), into(again), nullptr);
    EXPECT_EQ(again, Outcomes{std::nullopt});
    daemon_.attach(7); // had something been sent, it would have come before
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    EXPECT_EQ(daemon_.requests().size(), 1U);
}

TEST_F(PTUSBHubTest, afterAFailureToOpenEveryLaterListenSucceedsWithoutListening) {
    const auto daemon = std::make_shared<PairedUSBDaemon>();
    daemon->errnoValue = ENOENT;
    hub_ = PTUSBHub::create(daemon);
    hub_->listenOnQueue(DispatchQueue::mainQueue(), into(starts_), nullptr);
    EXPECT_EQ(starts_, Outcomes{Error::posix(ENOENT)});
    daemon->errnoValue = 0;
    hub_->listenOnQueue(DispatchQueue::mainQueue(), into(starts_), nullptr);
    EXPECT_EQ(starts_, (Outcomes{Error::posix(ENOENT), std::nullopt}));
    EXPECT_TRUE(daemon->peers.empty());
}

TEST_F(PTUSBHubTest, callbacksMayBeLeftOut) {
    hub_->listenOnQueue(DispatchQueue::mainQueue(), nullptr, nullptr);
    hub_->listenOnQueue(DispatchQueue::mainQueue(), nullptr, nullptr);
    EXPECT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
}

TEST_F(PTUSBHubTest, aHubThatGoesStopsListening) {
    listen();
    const std::weak_ptr<PTUSBHub> watch = hub_;
    hub_.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 0; }));
    EXPECT_EQ(ends_.size(), 1U);
}

// Broadcasts.

TEST_F(PTUSBHubTest, devicesThatComeAndGoAreTold) {
    std::vector<Notification> attached;
    std::vector<Notification> detached;
    const auto first = observe(PTUSBDeviceDidAttachNotification, attached);
    const auto second = observe(PTUSBDeviceDidDetachNotification, detached);
    listen();
    daemon_.attach(7);
    ASSERT_TRUE(waitUntil([&] { return attached.size() == 1; }));
    EXPECT_EQ(attached[0].sender, hub_.get());
    EXPECT_EQ(attached[0].userInfo.value(kDeviceID), 7);
    EXPECT_EQ(attached[0].userInfo.value(QStringLiteral("MessageType")),
              QStringLiteral("Attached"));
    EXPECT_EQ(attached[0].userInfo.value(QStringLiteral("Properties")).toMap().value(kDeviceID), 7);
    daemon_.detach(7);
    ASSERT_TRUE(waitUntil([&] { return detached.size() == 1; }));
    EXPECT_EQ(detached[0].userInfo.value(kDeviceID), 7);
    EXPECT_EQ(attached.size(), 1U);
}

TEST_F(PTUSBHubTest, notificationsHaveTheNamesThatPeopleKnow) {
    EXPECT_EQ(PTUSBDeviceDidAttachNotification, QStringLiteral("PTUSBDeviceDidAttachNotification"));
    EXPECT_EQ(PTUSBDeviceDidDetachNotification, QStringLiteral("PTUSBDeviceDidDetachNotification"));
}

TEST_F(PTUSBHubTest, anyOtherBroadcastIsLoggedAndNotTold) {
    std::vector<Notification> told;
    const auto first = observe(PTUSBDeviceDidAttachNotification, told);
    const auto second = observe(PTUSBDeviceDidDetachNotification, told);
    hub_->handleBroadcastPacket(
        QVariantMap{{QStringLiteral("MessageType"), QStringLiteral("Paired")}});
    hub_->handleBroadcastPacket(QVariantMap());
    hub_->handleBroadcastPacket(std::nullopt);
    EXPECT_EQ(
        log_.messages(),
        (QStringList{
            QStringLiteral("Warning: Unhandled broadcast message: {\"MessageType\":\"Paired\"}"),
            QStringLiteral("Warning: Unhandled broadcast message: {}"),
            QStringLiteral("Warning: Unhandled broadcast message: (null)")}));
    EXPECT_TRUE(told.empty());
}

// Connections to devices.

TEST_F(PTUSBHubTest, connectingNamesDeviceAndPortInNetworkOrder) {
    daemon_.attach(7);
    connect(7);
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    ASSERT_EQ(daemon_.countOfRequests(kConnect), 1);
    const QVariantMap message = daemon_.requests()[0].message;
    EXPECT_EQ(message.value(kDeviceID), 7);
    EXPECT_EQ(message.value(QStringLiteral("PortNumber")), 10505);
    EXPECT_EQ(message.keys(),
              (QStringList{QStringLiteral("ClientVersionString"), kDeviceID,
                           QStringLiteral("MessageType"), QStringLiteral("PortNumber"),
                           QStringLiteral("ProgName")}));
}

TEST_F(PTUSBHubTest, aRefusedConnectionIsReportedWithItsCodeAndItsStreamEnds) {
    daemon_.attach(7);
    daemon_.connectAnswer = 3;
    connect(7);
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 3));
    EXPECT_EQ(stream_, nullptr);
    EXPECT_TRUE(waitUntil([&] { return !connectionEnds_.empty(); }));
}

TEST_F(PTUSBHubTest, withoutADaemonConnectingIsThePOSIXErrorAndNothingEnds) {
    daemon_.stop();
    connect(7);
    EXPECT_EQ(connectOutcomes_, Outcomes{Error::posix(ECONNREFUSED)});
    EXPECT_TRUE(connectionEnds_.empty());
}

TEST_F(PTUSBHubTest, noDeviceIsAnUnknownDeviceWithoutAskingTheDaemon) {
    connect(QVariant());
    EXPECT_TRUE(connectOutcomes_.empty());
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 2));
    EXPECT_TRUE(daemon_.requests().empty());
}

TEST_F(PTUSBHubTest, anAcceptedConnectionIsTheStreamOfTheDevice) {
    daemon_.attach(7);
    daemon_.behindConnectReply = "early";
    connect(7);
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    ASSERT_NE(stream_, nullptr);
    QByteArray received;
    stream_->read(9, DispatchQueue::mainQueue(),
                  [&](bool, const DispatchData& data, int) { received += data.toByteArray(); });
    const RawPeer device(daemon_.waitForDeviceConnection());
    device.send("late");
    ASSERT_TRUE(waitUntil([&] { return received.size() == 9; }));
    EXPECT_EQ(received, "earlylate");

    EXPECT_TRUE(connectionEnds_.empty());
    stream_->close(DispatchIO::Close::stop);
    EXPECT_TRUE(waitUntil([&] { return connectionEnds_ == Outcomes{std::nullopt}; }));
}

// Framed channels over the hub.

class PTUSBFramedChannelTest : public PTUSBHubTest {
protected:
    void connectChannel(const QVariant& deviceID) {
        channel_->connectToPort(2345, hub_, deviceID, into(connectOutcomes_));
    }

    std::shared_ptr<RecordingDelegate> delegate_ = std::make_shared<RecordingDelegate>();
    std::shared_ptr<PTChannel> channel_ = PTChannel::channelWithDelegate(delegate_);
};

TEST_F(PTUSBFramedChannelTest, framesFlowFromTheReplyOnHoweverTheyArrive) {
    for (const bool splits : {false, true}) {
        daemon_.attach(7);
        daemon_.splitsWrites = splits;
        daemon_.behindConnectReply = frameBytes(200, 1, "early");
        channel_ = PTChannel::channelWithDelegate(delegate_);
        delegate_->frames.clear();
        delegate_->ends.clear();
        connectOutcomes_.clear();
        connectChannel(7);
        EXPECT_EQ(channel_->connState(), kConnStateConnecting);
        EXPECT_TRUE(channel_->isConnected());
        ASSERT_TRUE(waitUntil([&] { return connectOutcomes_ == Outcomes{std::nullopt}; }));
        EXPECT_EQ(channel_->connState(), kConnStateConnected);
        RawPeer device(daemon_.waitForDeviceConnection());
        device.send(frameBytes(201, 2, "late"));
        ASSERT_TRUE(waitUntil([&] { return delegate_->frames.size() == 2; }));
        EXPECT_EQ(delegate_->frames[0].payload, "early");
        EXPECT_EQ(delegate_->frames[1].payload, "late");

        channel_->sendFrameOfType(500, 2, std::nullopt, nullptr);
        QByteArray received;
        ASSERT_TRUE(waitUntil([&] {
            received += device.receive();
            return received == frameBytes(500, 2);
        }));
        device.close();
        ASSERT_TRUE(waitUntil([&] { return delegate_->ends.size() == 1; }));
        EXPECT_EQ(delegate_->ends[0].channel, channel_.get());
        EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
    }
}

TEST_F(PTUSBFramedChannelTest, theEndIsTheHubsAlsoWhereWhatTheDeviceSentIsNoFrame) {
    daemon_.attach(7);
    connectChannel(7);
    ASSERT_TRUE(waitUntil([&] { return connectOutcomes_ == Outcomes{std::nullopt}; }));
    const RawPeer device(daemon_.waitForDeviceConnection());
    device.send(QByteArray(16, 'x'));
    ASSERT_TRUE(waitUntil([&] { return delegate_->ends.size() == 1; }));
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt); // over TCP it is the protocol's error
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    EXPECT_TRUE(waitUntil([&] { return device.hasEnded(); }));
}

TEST_F(PTUSBFramedChannelTest, aRefusedAttemptLeavesTheChannelReadyForAnother) {
    connectChannel(7);
    ASSERT_TRUE(waitUntil([&] { return connectOutcomes_.size() == 1; }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 2));
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    ASSERT_TRUE(waitUntil([&] { return delegate_->ends.size() == 1; }));

    daemon_.attach(7);
    connectChannel(7);
    ASSERT_TRUE(waitUntil([&] { return connectOutcomes_.size() == 2; }));
    EXPECT_EQ(connectOutcomes_[1], std::nullopt);
    channel_->close();
    EXPECT_TRUE(waitUntil([&] { return delegate_->ends.size() == 2; }));
}

TEST_F(PTUSBFramedChannelTest, withoutADaemonTheAttemptFailsBeforeTheCallReturns) {
    daemon_.stop();
    connectChannel(7);
    EXPECT_EQ(connectOutcomes_, Outcomes{Error::posix(ECONNREFUSED)});
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    EXPECT_TRUE(delegate_->ends.empty());
}

TEST_F(PTUSBFramedChannelTest, aChannelInUseRefusesToConnect) {
    connectChannel(7);
    connectChannel(7);
    EXPECT_EQ(connectOutcomes_, Outcomes{Error::posix(EPERM)});
    EXPECT_TRUE(waitUntil([&] { return delegate_->ends.size() == 1; }));
}

TEST_F(PTUSBFramedChannelTest, withoutAProtocolConnectingStopsTheProgram) {
    channel_->setProtocol(nullptr);
    EXPECT_DEATH(
        {
            setLogReceiver(nullptr);
            connectChannel(7);
        },
        "protocol_ != NULL");
}

TEST_F(PTUSBFramedChannelTest, aChannelThatHasEndedIsLetGoOf) {
    daemon_.attach(7);
    const std::weak_ptr<PTChannel> watch = channel_;
    connectChannel(7);
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    channel_->close();
    channel_.reset();
    EXPECT_TRUE(waitUntil([&] { return watch.expired(); }));
}

// The hub of the process.

TEST_F(PTUSBHubTest, theSharedHubIsOneAndListensOnceThroughAKeeper) {
    qputenv("USBMUXD_SOCKET_ADDRESS", daemon_.address().toUtf8());
    const auto hub = PTUSBHub::sharedHub();
    EXPECT_EQ(PTUSBHub::sharedHub(), hub);
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    Outcomes again;
    hub->listenOnQueue(DispatchQueue::mainQueue(), into(again), nullptr);
    EXPECT_EQ(again, Outcomes{std::nullopt});

    daemon_.stop();
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    EXPECT_EQ(daemon_.countOfRequests(kListen), 2); // one of the program, repeated by the keeper
    EXPECT_EQ(log_.messages(), QStringList());
    daemon_.stop(); // the hub of the process is never destroyed
}

} // namespace
} // namespace navrel
