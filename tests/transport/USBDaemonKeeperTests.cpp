#include "support/core/NotificationCentre.h"
#include "support/dispatch/DispatchQueue.h"
#include "tests/FakeClock.h"
#include "tests/FakeUSBDaemon.h"
#include "tests/LogRecorder.h"
#include "tests/Sanitizers.h"
#include "tests/WaitUntil.h"
#include "tests/transport/PairedUSBDaemon.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/daemon/USBDaemonKeeper.h"

#include <QDir>
#include <QStringList>
#include <gtest/gtest.h>

#include <cerrno>

namespace navrel {
namespace {

using std::chrono::seconds;
using Outcomes = std::vector<std::optional<Error>>;

/// A hub on a keeper on a daemon that comes and goes.
class USBDaemonKeeperTest : public testing::Test {
protected:
    USBDaemonKeeperTest() { makeHub(); }

    void makeHub() {
        hub_ = PTUSBHub::create(keeper_);
        auto& centre = NotificationCentre::defaultCentre();
        const auto noting = [this](const QString& what) {
            return [this, what](const Notification& notification) {
                told_.append(what + notification.userInfo.value(kDeviceID).toString());
            };
        };
        tokens_ = {centre.addObserver(PTUSBDeviceDidAttachNotification, hub_.get(),
                                      noting(QStringLiteral("+"))),
                   centre.addObserver(PTUSBDeviceDidDetachNotification, hub_.get(),
                                      noting(QStringLiteral("-")))};
    }

    void listen() {
        hub_->listenOnQueue(
            DispatchQueue::mainQueue(), [this](const auto& error) { starts_.push_back(error); },
            [this](const auto& error) { ends_.push_back(error); });
        ASSERT_TRUE(waitUntil([&] { return !starts_.empty(); }));
    }

    void startAndListen() {
        ASSERT_TRUE(daemon_.start());
        listen();
        ASSERT_EQ(starts_, Outcomes{std::nullopt});
    }

    void connect() {
        hub_->connectToDevice(
            7, 2345,
            [this](const auto& error, const std::shared_ptr<DispatchIO>& stream) {
                connectOutcomes_.push_back(error);
                stream_ = stream;
            },
            [this](const auto& error) { connectionEnds_.push_back(error); });
    }

    bool waitForTold(const QStringList& told) {
        return waitUntil([&] { return told_ == told; });
    }
    /// Time passes only where a test says so.
    void stopTheClock() {
        keeper_ = std::make_shared<USBDaemonKeeper>(*USBDaemonAddress::fromText(daemon_.address()),
                                                    USBDaemonKeeper::kReplyTimeout, clock_);
        makeHub();
    }

    static QStringList list(const char* words) {
        return QString::fromLatin1(words).split(QLatin1Char(' '));
    }

    static QString ignoredReply(const char* reply) {
        return QStringLiteral("Warning: Ignoring reply packet for which there is no registered "
                              "callback. Packet => %1")
            .arg(QString::fromLatin1(reply));
    }

    static int openDescriptors() {
        return static_cast<int>(QDir(QStringLiteral("/proc/self/fd")).entryList().size());
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

    FakeClock clock_;
    FakeUSBDaemon daemon_;
    std::shared_ptr<USBDaemonKeeper> keeper_ =
        std::make_shared<USBDaemonKeeper>(*USBDaemonAddress::fromText(daemon_.address()));
    std::shared_ptr<PTUSBHub> hub_;
    std::vector<NotificationCentre::Token> tokens_;
    QStringList told_;
    Outcomes starts_;
    Outcomes ends_;
    Outcomes connectOutcomes_;
    Outcomes connectionEnds_;
    std::shared_ptr<DispatchIO> stream_;
    LogRecorder log_;
};

// Listening.

TEST_F(USBDaemonKeeperTest, withADaemonItIsAsIfItWereNotThere) {
    startAndListen();
    daemon_.attach(7);
    daemon_.detach(7);
    EXPECT_TRUE(waitForTold(list("+7 -7")));
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(USBDaemonKeeperTest, packetsInSingleBytesArriveWhole) {
    daemon_.splitsWrites = true;
    startAndListen();
    daemon_.attach(7);
    EXPECT_TRUE(waitForTold(list("+7")));
}

TEST_F(USBDaemonKeeperTest, aRefusalToListenIsPassedOn) {
    daemon_.listenAnswer = 6;
    ASSERT_TRUE(daemon_.start());
    listen();
    EXPECT_EQ(starts_, Outcomes{Error(kPTUSBHubErrorDomain, 6)});
}

TEST_F(USBDaemonKeeperTest, afterARefusalListeningIsTakenUpOnceTheDaemonAgrees) {
    daemon_.listenAnswer = 6;
    ASSERT_TRUE(daemon_.start());
    listen();
    EXPECT_TRUE(waitUntil([&] { return daemon_.countOfRequests(kListen) == 3; }));
    daemon_.listenAnswer = 0;
    daemon_.attach(7);
    EXPECT_TRUE(waitForTold(list("+7")));
    EXPECT_EQ(starts_.size(), 1U);
    EXPECT_EQ(log_.messages(), QStringList()); // the hub tells the one that lets it listen
}

TEST_F(USBDaemonKeeperTest, aRefusalOfTheRepeatedListenIsLoggedOnceAndAskedAgain) {
    startAndListen();
    for (int round = 1; round <= 2; ++round) {
        daemon_.stop();
        daemon_.listenAnswer = 1;
        ASSERT_TRUE(daemon_.start());
        daemon_.attach(7);
        const int before = daemon_.countOfRequests(kListen);
        ASSERT_TRUE(waitUntil([&] { return daemon_.countOfRequests(kListen) == before + 3; }));
        ASSERT_EQ(log_.messages().size(), round);
        EXPECT_EQ(log_.messages().last(),
                  QStringLiteral("The USB daemon refuses to announce devices, and is asked again: "
                                 "Error Domain=PTUSBHubError Code=1 \"illegal command\""));
        daemon_.listenAnswer = 0;
        told_.clear();
        ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
        ASSERT_TRUE(waitForTold(list("+7"))) << told_.join(QLatin1Char(' ')).toStdString();
    }
    EXPECT_EQ(starts_, Outcomes{std::nullopt});
}

TEST_F(USBDaemonKeeperTest, aDaemonAbsentAtStartIsLoggedOnceWithTheReason) {
    stopTheClock();
    listen();
    EXPECT_EQ(starts_, Outcomes{std::nullopt});
    EXPECT_EQ(clock_.advance(seconds(3)), 3) << "looked for once a second";
    EXPECT_EQ(log_.messages(),
              QStringList{QStringLiteral("PTUSBHub failed to initialize: Error "
                                         "Domain=NSPOSIXErrorDomain Code=2 \"No such file or "
                                         "directory\"")});
    EXPECT_TRUE(ends_.empty());
}

TEST_F(USBDaemonKeeperTest, devicesOfADaemonThatAppearsAreToldWithinTwoSeconds) {
    stopTheClock();
    listen();
    ASSERT_TRUE(daemon_.start());
    daemon_.attach(7);
    clock_.advance(seconds(2));
    EXPECT_TRUE(waitForTold(list("+7")));
}

TEST_F(USBDaemonKeeperTest, aFolderThatAppearsWithTheDaemonIsNoticedToo) {
    QTemporaryDir folder;
    const QString late = folder.filePath(QStringLiteral("late"));
    hub_ = PTUSBHub::create(std::make_shared<USBDaemonKeeper>(
        USBDaemonAddress{late + QStringLiteral("/usbmuxd"), {}, {}}, USBDaemonKeeper::kReplyTimeout,
        clock_));
    listen();
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(QDir().rename(QFileInfo(daemon_.socketPath()).path(), late));
    clock_.advance(seconds(2));
    EXPECT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    ASSERT_TRUE(QDir().rename(late, QFileInfo(daemon_.socketPath()).path()));
}

TEST_F(USBDaemonKeeperTest, whenTheDaemonGoesItsDevicesAreDetached) {
    startAndListen();
    daemon_.attach(7);
    daemon_.attach(8);
    daemon_.attach(9);
    daemon_.detach(8);
    ASSERT_TRUE(waitForTold(list("+7 +8 +9 -8")));
    daemon_.stop();
    EXPECT_TRUE(waitForTold(list("+7 +8 +9 -8 -7 -9")));
    EXPECT_TRUE(ends_.empty());
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(USBDaemonKeeperTest, listeningIsTakenUpAgainEachTimeTheDaemonComesBack) {
    stopTheClock();
    startAndListen();
    for (int round = 0; round < 3; ++round) {
        daemon_.attach(7);
        clock_.advance(seconds(2));
        ASSERT_TRUE(waitForTold(list("+7"))) << round;
        daemon_.stop();
        ASSERT_TRUE(waitForTold(list("+7 -7"))) << round;
        told_.clear();
        ASSERT_TRUE(daemon_.start());
    }
    EXPECT_EQ(starts_.size(), 1U);
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(USBDaemonKeeperTest, aDaemonThatGoesBeforeItAnswersCountsAsAbsent) {
    daemon_.listenAnswer = std::nullopt;
    ASSERT_TRUE(daemon_.start());
    hub_->listenOnQueue(
        DispatchQueue::mainQueue(), [this](const auto& error) { starts_.push_back(error); },
        nullptr);
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    daemon_.stop();
    ASSERT_TRUE(waitUntil([&] { return !starts_.empty(); }));
    EXPECT_EQ(starts_, Outcomes{std::nullopt});
    EXPECT_EQ(log_.messages().size(), 1);
}

TEST_F(USBDaemonKeeperTest, aDaemonThatNeverAnswersTheListenCountsAsAbsentAndIsAskedAgain) {
    stopTheClock();
    daemon_.listenAnswer = std::nullopt;
    ASSERT_TRUE(daemon_.start());
    hub_->listenOnQueue(
        DispatchQueue::mainQueue(), [this](const auto& error) { starts_.push_back(error); },
        nullptr);
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    clock_.advance(USBDaemonKeeper::kReplyTimeout);
    ASSERT_TRUE(waitUntil([&] { return !starts_.empty(); }));
    EXPECT_EQ(starts_, Outcomes{std::nullopt});
    EXPECT_EQ(log_.messages(),
              QStringList{QStringLiteral("PTUSBHub failed to initialize: Error "
                                         "Domain=NSPOSIXErrorDomain Code=110 \"Connection timed "
                                         "out\"")});
    daemon_.listenAnswer = 0;
    clock_.advance(seconds(2));
    EXPECT_TRUE(waitUntil([&] { return daemon_.countOfRequests(kListen) == 2; }));
    daemon_.attach(7);
    EXPECT_TRUE(waitForTold(list("+7")));
    EXPECT_EQ(log_.messages().size(), 1);
}

TEST_F(USBDaemonKeeperTest, whatIsNoPacketEndsTheDaemonsConnectionAndItIsMadeAgain) {
    startAndListen();
    for (const char* size : {"00000000", "0f000000", "ffffffff", "01001000"}) {
        daemon_.attach(7);
        ASSERT_TRUE(waitUntil([&] { return told_.contains(QStringLiteral("+7")); })) << size;
        daemon_.sendToListeners(QByteArray::fromHex(size));
        ASSERT_TRUE(waitUntil([&] { return told_.contains(QStringLiteral("-7")); })) << size;
        told_.clear();
        ASSERT_TRUE(waitUntil([&] { return told_.contains(QStringLiteral("+7")); })) << size;
        daemon_.detach(7);
        ASSERT_TRUE(waitUntil([&] { return told_.contains(QStringLiteral("-7")); })) << size;
        told_.clear();
    }
    EXPECT_TRUE(ends_.empty());
}

TEST_F(USBDaemonKeeperTest, aPacketCutOffByTheDaemonsEndIsDropped) {
    startAndListen();
    daemon_.sendToListeners(FakeUSBDaemon::attachedPacket(7).first(40));
    ASSERT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 1; }));
    daemon_.stop();
    ASSERT_TRUE(daemon_.start());
    daemon_.attach(8);
    EXPECT_TRUE(waitForTold(list("+8")));
}

TEST_F(USBDaemonKeeperTest, oddPacketsAreLoggedAndTheNextOneIsRead) {
    startAndListen();
    daemon_.sendToListeners(
        FakeUSBDaemon::rawPacket(1, 8, 0, "<plist><dict>") +
        FakeUSBDaemon::rawPacket(2, 8, 0, "{}") + FakeUSBDaemon::rawPacket(1, 3, 0, "{}") +
        FakeUSBDaemon::rawPacket(1, 8, 0, "(1)") + FakeUSBDaemon::rawPacket(1, 8, 99, "{}"));
    daemon_.attach(7);
    ASSERT_TRUE(waitForTold(list("+7")));
    EXPECT_EQ(log_.messages().size(), 5);
}

TEST_F(USBDaemonKeeperTest, repliesThatNobodyOwesReachTheProgramAndDetachNothing) {
    startAndListen();
    daemon_.attach(7);
    ASSERT_TRUE(waitForTold(list("+7")));
    for (const int number : {0, 1}) {
        daemon_.sendToListeners(FakeUSBDaemon::packet(1, {{QStringLiteral("Number"), number}}));
    }
    daemon_.attach(8);
    ASSERT_TRUE(waitForTold(list("+7 +8")));
    EXPECT_EQ(log_.messages(),
              (QStringList{ignoredReply("{\"Number\":0}"), ignoredReply("{\"Number\":1}")}));
    EXPECT_EQ(daemon_.countOfRequests(kListen), 1);
}

TEST_F(USBDaemonKeeperTest, ofTwoRepliesToTheRepeatedListenTheSecondReachesTheProgram) {
    startAndListen();
    daemon_.stop();
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(waitUntil([&] { return daemon_.countOfRequests(kListen) == 2; }));
    daemon_.attach(7);
    ASSERT_TRUE(waitForTold(list("+7")));
    EXPECT_EQ(log_.messages(), QStringList());
    daemon_.sendToListeners(FakeUSBDaemon::packet(1, {{QStringLiteral("Number"), 3}}));
    EXPECT_TRUE(waitUntil([&] { return !log_.messages().isEmpty(); }));
    EXPECT_EQ(log_.messages(), QStringList{ignoredReply("{\"Number\":3}")});
    EXPECT_EQ(told_, list("+7"));
}

TEST_F(USBDaemonKeeperTest, aFloodOfDevicesIsToldOfWhole) {
    constexpr int kDevices = loadOf(10'000, 2'000);
    startAndListen();
    QByteArray flood;
    for (int device = 1; device <= kDevices; ++device) {
        flood += FakeUSBDaemon::attachedPacket(device);
    }
    daemon_.sendToListeners(flood);
    EXPECT_TRUE(waitUntil([&] { return told_.size() == kDevices; }));
}

TEST_F(USBDaemonKeeperTest, aHubThatGoesTakesItsStreamAlong) {
    startAndListen();
    hub_.reset();
    EXPECT_TRUE(waitUntil([&] { return daemon_.listenerCount() == 0; }));
    const std::weak_ptr<USBDaemonKeeper> watch = keeper_;
    keeper_.reset();
    EXPECT_TRUE(waitUntil([&] { return watch.expired(); }));
}

// Connections to devices.

TEST_F(USBDaemonKeeperTest, bytesBehindTheReplyAndAfterItReachTheStream) {
    for (const bool splits : {false, true}) {
        if (!splits) {
            startAndListen();
        }
        daemon_.splitsWrites = splits;
        daemon_.attach(7);
        daemon_.behindConnectReply = "early";
        connect();
        ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; }));
        QByteArray received;
        stream_->read(9, DispatchQueue::mainQueue(),
                      [&](bool, const DispatchData& data, int) { received += data.toByteArray(); });
        const RawPeer device(daemon_.waitForDeviceConnection());
        device.send("late");
        ASSERT_TRUE(waitUntil([&] { return received == "earlylate"; }));
        stream_->close(DispatchIO::Close::stop);
        stream_.reset();
        ASSERT_TRUE(waitUntil([&] { return device.hasEnded(); }));
    }
}

TEST_F(USBDaemonKeeperTest, muchDataGoesThroughUnchangedInBothDirections) {
    constexpr qsizetype kSize = 20 * 1024 * 1024;
    startAndListen();
    daemon_.attach(7);
    connect();
    ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; }));
    const RawPeer device(daemon_.waitForDeviceConnection());
    QByteArray sent(kSize, '\0');
    for (qsizetype i = 0; i < kSize; ++i) {
        sent[i] = static_cast<char>(i * 31 + i / 4096);
    }
    QByteArray toProgram;
    stream_->read(kSize, DispatchQueue::mainQueue(),
                  [&](bool, const DispatchData& data, int) { toProgram += data.toByteArray(); });
    stream_->write(DispatchData::referencing(sent), DispatchQueue::mainQueue(), nullptr);
    QByteArray toDevice;
    qsizetype position = 0;
    ASSERT_TRUE(waitUntil([&] {
        position +=
            device.sendSome(QByteArray::fromRawData(sent.constData() + position, kSize - position));
        toDevice += device.receive();
        return toDevice.size() == kSize && toProgram.size() == kSize;
    }));
    EXPECT_TRUE(toProgram == sent);
    EXPECT_TRUE(toDevice == sent);
}

TEST_F(USBDaemonKeeperTest, aPeerThatDoesNotReadHoldsUpTheOtherInsteadOfFillingTheMemory) {
    constexpr qsizetype kMostOnTheWay = 16 * 1024 * 1024;
    startAndListen();
    daemon_.attach(7);
    connect();
    ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; }));
    const RawPeer device(daemon_.waitForDeviceConnection());
    qsizetype taken = 0;
    int idleRounds = 0;
    ASSERT_TRUE(waitUntil([&] {
        const qsizetype count = device.sendSome(QByteArray(1024 * 1024, 'x'));
        taken += count;
        idleRounds = count > 0 ? 0 : idleRounds + 1;
        return idleRounds > 20 || taken > kMostOnTheWay;
    }));
    EXPECT_LT(taken, kMostOnTheWay);
}

TEST_F(USBDaemonKeeperTest, anEndOnEitherSideComesAfterWhatWasSentBefore) {
    startAndListen();
    daemon_.attach(7);
    connect();
    ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; }));
    RawPeer device(daemon_.waitForDeviceConnection());
    stream_->write(DispatchData::copying("last"), DispatchQueue::mainQueue(), nullptr);
    stream_->close(DispatchIO::Close::afterPending);
    QByteArray received;
    EXPECT_TRUE(waitUntil([&] {
        received += device.receive();
        return received == "last" && device.hasEnded();
    }));

    connect();
    ASSERT_TRUE(waitUntil([&] { return connectOutcomes_.size() == 2; }));
    device = RawPeer(daemon_.waitForDeviceConnection());
    device.send("bye");
    device.close();
    received.clear();
    bool isDone = false;
    stream_->read(100, DispatchQueue::mainQueue(), [&](bool done, const DispatchData& data, int) {
        received += data.toByteArray();
        isDone = done;
    });
    ASSERT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_EQ(received, "bye");
}

TEST_F(USBDaemonKeeperTest, aRefusalToConnectIsPassedOn) {
    startAndListen();
    connect();
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 2));
    EXPECT_TRUE(waitUntil([&] { return connectionEnds_.size() == 1; }));
}

TEST_F(USBDaemonKeeperTest, withoutADaemonConnectingIsRefused) {
    connect();
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 3));
}

TEST_F(USBDaemonKeeperTest, aDaemonThatGoesInTheMiddleOfAConnectRefusesIt) {
    startAndListen();
    daemon_.attach(7);
    daemon_.connectAnswer = std::nullopt;
    connect();
    ASSERT_TRUE(waitUntil([&] { return daemon_.countOfRequests(QStringLiteral("Connect")) == 1; }));
    daemon_.closeConnecting();
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 3));
}

TEST_F(USBDaemonKeeperTest, aConnectThatIsNeverAnsweredIsRefusedInTheEnd) {
    stopTheClock();
    startAndListen();
    daemon_.attach(7);
    daemon_.connectAnswer = std::nullopt;
    connect();
    ASSERT_TRUE(waitUntil([&] { return daemon_.countOfRequests(kConnect) == 1; }));
    EXPECT_TRUE(connectOutcomes_.empty());
    clock_.advance(USBDaemonKeeper::kReplyTimeout);
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], Error(kPTUSBHubErrorDomain, 3));
    EXPECT_TRUE(waitUntil([&] { return daemon_.connectionCount() == 1; }));
}

TEST_F(USBDaemonKeeperTest, onceAnsweredAStreamMayBeSilentForAsLongAsItLikes) {
    stopTheClock();
    startAndListen();
    daemon_.attach(7);
    connect();
    ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; }));
    RawPeer device(daemon_.waitForDeviceConnection());
    EXPECT_EQ(clock_.advance(3 * USBDaemonKeeper::kReplyTimeout), 0);
    EXPECT_EQ(daemon_.listenerCount(), 1);
    stream_->write(DispatchData::copying("still there"), DispatchQueue::mainQueue(), nullptr);
    QByteArray received;
    EXPECT_TRUE(waitUntil([&] {
        received += device.receive();
        return received == "still there";
    }));
    EXPECT_EQ(daemon_.countOfRequests(kListen), 1);
}

TEST_F(USBDaemonKeeperTest, anAnswerThatIsCutOffOrNoPacketIsARefusal) {
    startAndListen();
    daemon_.attach(7);
    daemon_.connectAnswer = std::nullopt;
    const QByteArray reply = FakeUSBDaemon::packet(1, {{QStringLiteral("Number"), 0}});
    for (const QByteArray& answer : {reply.first(3), reply.first(20), QByteArray(4, '\0')}) {
        const auto count = connectOutcomes_.size();
        const int requests = daemon_.countOfRequests(QStringLiteral("Connect"));
        connect();
        ASSERT_TRUE(waitUntil(
            [&] { return daemon_.countOfRequests(QStringLiteral("Connect")) > requests; }));
        daemon_.sendToConnecting(answer);
        ASSERT_TRUE(waitUntil([&] { return daemon_.hasSentAll(); }));
        daemon_.closeConnecting();
        ASSERT_TRUE(waitUntil([&] { return connectOutcomes_.size() > count; }));
        EXPECT_EQ(connectOutcomes_.back(), Error(kPTUSBHubErrorDomain, 3));
    }
}

TEST_F(USBDaemonKeeperTest, whatIsNoAnswerToTheConnectIsPassedOverAndRepliesAreLogged) {
    startAndListen();
    daemon_.attach(7);
    daemon_.connectAnswer = std::nullopt;
    connect();
    ASSERT_TRUE(waitUntil([&] { return daemon_.countOfRequests(QStringLiteral("Connect")) == 1; }));
    daemon_.sendToConnecting(FakeUSBDaemon::detachedPacket(9) +
                             FakeUSBDaemon::packet(77, {{QStringLiteral("Number"), 0}}) +
                             FakeUSBDaemon::packet(1, {{QStringLiteral("Number"), 0}}));
    ASSERT_TRUE(waitUntil([&] { return !connectOutcomes_.empty(); }));
    EXPECT_EQ(connectOutcomes_[0], std::nullopt);
    EXPECT_EQ(log_.messages(), QStringList{ignoredReply("{\"Number\":0}")});
}

TEST_F(USBDaemonKeeperTest, nothingIsLeftOfStreamsThatHaveEnded) {
    startAndListen();
    daemon_.attach(7);
    const int before = openDescriptors();
    for (int round = 0; round < 50; ++round) {
        connect();
        ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; })) << round;
        const RawPeer device(daemon_.waitForDeviceConnection());
        stream_.reset();
        ASSERT_TRUE(waitUntil([&] { return device.hasEnded(); })) << round;
    }
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() == before; })) << openDescriptors();
}

TEST_F(USBDaemonKeeperTest, aStreamKeepsItsKeeper) {
    startAndListen();
    daemon_.attach(7);
    connect();
    ASSERT_TRUE(waitUntil([&] { return stream_ != nullptr; }));
    const RawPeer device(daemon_.waitForDeviceConnection());
    hub_.reset();
    const std::weak_ptr<USBDaemonKeeper> watch = keeper_;
    keeper_.reset();
    device.send("x");
    QByteArray received;
    stream_->read(1, DispatchQueue::mainQueue(),
                  [&](bool, const DispatchData& data, int) { received += data.toByteArray(); });
    EXPECT_TRUE(waitUntil([&] { return received == "x"; }));
    EXPECT_FALSE(watch.expired());
    stream_.reset();
    EXPECT_TRUE(waitUntil([&] { return watch.expired(); }));
}

} // namespace
} // namespace navrel
