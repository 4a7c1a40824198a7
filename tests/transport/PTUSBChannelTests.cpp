#include "support/dispatch/DispatchQueue.h"
#include "support/propertylist/PropertyList.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/transport/PairedUSBDaemon.h"
#include "transport/usb/PTUSBChannel.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <cerrno>
#include <sys/socket.h>

namespace navrel {
namespace {

using Message = PTUSBChannel::Message;

struct Reply {
    std::optional<Error> error;
    Message message;
};

class PTUSBChannelTest : public testing::Test {
protected:
    void TearDown() override {
        channel_->stop();
        channel_ = nullptr;
        for (const RawPeer& peer : daemon_->peers) {
            EXPECT_TRUE(waitUntil([&] { return peer.descriptor() < 0 || peer.hasEnded(); }));
        }
    }

    void open() {
        ASSERT_EQ(channel_->openOnQueue(DispatchQueue::mainQueue(),
                                        [this](const auto& error) { ends_.push_back(error); }),
                  std::nullopt);
    }
    /// The channel, in a program whose log is on standard error again.
    PTUSBChannel& unlogged() {
        setLogReceiver(nullptr);
        return *channel_;
    }
    /// Also for a descriptor that another process holds.
    void endOfStream() { ::shutdown(peer().descriptor(), SHUT_WR); }
    RawPeer& peer() { return daemon_->peers.front(); }

    /// Everything that the daemon receives, until it has a whole packet.
    QByteArray receivedPacket() {
        QByteArray received;
        EXPECT_TRUE(waitUntil([&] {
            received += peer().receive();
            return received.size() >= 16 &&
                   received.size() >= qFromLittleEndian<qint32>(received.constData());
        }));
        return received;
    }

    void request() {
        channel_->sendRequest(PTUSBChannel::packetDictionaryWithPacketType(kConnect, std::nullopt),
                              [this](const auto& error, const Message& reply) {
                                  replies_.push_back({error, reply});
                              });
    }

    void listen() {
        channel_->listenWithBroadcastHandler(
            [this](const Message& packet) { broadcasts_.push_back(packet); },
            [this](const auto& error) { listenOutcomes_.push_back(error); });
        ASSERT_FALSE(receivedPacket().isEmpty());
    }

    /// Sends a broadcast and waits for it: whatever was sent before has been dealt with.
    void settle() {
        const size_t count = broadcasts_.size();
        peer().send(packetBytes(0, "{ MessageType = Settled; }"));
        ASSERT_TRUE(waitUntil([&] { return broadcasts_.size() > count; }));
    }

    std::shared_ptr<PairedUSBDaemon> daemon_ = std::make_shared<PairedUSBDaemon>();
    std::shared_ptr<PTUSBChannel> channel_ = PTUSBChannel::create(daemon_);
    std::vector<std::optional<Error>> ends_;
    std::vector<std::optional<Error>> listenOutcomes_;
    std::vector<Message> broadcasts_;
    std::vector<Reply> replies_;
    LogRecorder log_;
};

// Messages.

TEST(PTUSBMessage, holdsTypeNameAndVersionAndNothingElse) {
    EXPECT_EQ(PTUSBChannel::packetDictionaryWithPacketType(
                  kListen, std::nullopt, {QStringLiteral("Navrel"), QStringLiteral("1.4.2")}),
              (QVariantMap{{QStringLiteral("MessageType"), kListen},
                           {QStringLiteral("ProgName"), QStringLiteral("Navrel")},
                           {QStringLiteral("ClientVersionString"), QStringLiteral("1.4.2")}}));
}

TEST(PTUSBMessage, withoutABundleNameIsAlwaysListenAlone) {
    EXPECT_EQ(PTUSBChannel::packetDictionaryWithPacketType(kConnect, std::nullopt,
                                                           {std::nullopt, QStringLiteral("1")}),
              (QVariantMap{{QStringLiteral("MessageType"), kListen}}));
    EXPECT_EQ(
        PTUSBChannel::packetDictionaryWithPacketType(kConnect,
                                                     QVariantMap{{QStringLiteral("DeviceID"), 7}},
                                                     {std::nullopt, QStringLiteral("1")}),
        (QVariantMap{{QStringLiteral("MessageType"), kListen}, {QStringLiteral("DeviceID"), 7}}));
}

TEST(PTUSBMessage, itsOwnEntriesWinOverThoseOfThePayload) {
    const QVariantMap payload = {{QStringLiteral("DeviceID"), 7},
                                 {QStringLiteral("MessageType"), QStringLiteral("Other")},
                                 {QStringLiteral("ProgName"), QStringLiteral("Other")}};
    EXPECT_EQ(PTUSBChannel::packetDictionaryWithPacketType(
                  kConnect, payload, {QStringLiteral("Navrel"), QStringLiteral("1")}),
              (QVariantMap{{QStringLiteral("DeviceID"), 7},
                           {QStringLiteral("MessageType"), kConnect},
                           {QStringLiteral("ProgName"), QStringLiteral("Navrel")},
                           {QStringLiteral("ClientVersionString"), QStringLiteral("1")}}));
}

TEST(PTUSBMessage, theProgramIsNavrelInTheVersionOfItsBuild) {
    const auto message = PTUSBChannel::packetDictionaryWithPacketType(kListen, std::nullopt);
    EXPECT_EQ(message.value(QStringLiteral("ProgName")), QStringLiteral("Navrel"));
    EXPECT_EQ(message.value(QStringLiteral("ClientVersionString")),
              BundleInformation::mainBundle().version);
    EXPECT_FALSE(BundleInformation::mainBundle().version.isEmpty());
}

// Replies.

Reply outcome(const Message& reply, std::optional<Error> error = std::nullopt) {
    PTUSBChannel::errorFromPlistResponse(reply, error);
    return {error, reply};
}

Message numbered(qlonglong number) {
    return QVariantMap{{QStringLiteral("Number"), number}};
}

TEST(PTUSBReply, numberZeroIsSuccess) {
    std::optional<Error> error;
    EXPECT_TRUE(PTUSBChannel::errorFromPlistResponse(numbered(0), error));
    EXPECT_EQ(error, std::nullopt);
}

TEST(PTUSBReply, aNumberIsAnErrorWithItsText) {
    const auto refused = outcome(numbered(3));
    EXPECT_EQ(refused.error, Error(kPTUSBHubErrorDomain, 3));
    EXPECT_EQ(refused.error->localizedDescription(), QStringLiteral("connection refused"));
    EXPECT_EQ(outcome(numbered(4)).error->localizedDescription(),
              QStringLiteral("Unspecified error"));
    std::optional<Error> error;
    EXPECT_FALSE(PTUSBChannel::errorFromPlistResponse(numbered(3), error));
}

TEST(PTUSBReply, ofANumberTheLow32BitsCount) {
    EXPECT_EQ(outcome(numbered(qlonglong{1} << 32)).error, std::nullopt);
    EXPECT_EQ(outcome(numbered((qlonglong{1} << 32) + 2)).error, Error(kPTUSBHubErrorDomain, 2));
}

TEST(PTUSBReply, withoutANumberIsErrorZeroWithoutText) {
    for (const Message& reply : {Message(), Message(QVariantMap())}) {
        std::optional<Error> error;
        EXPECT_FALSE(PTUSBChannel::errorFromPlistResponse(reply, error));
        EXPECT_EQ(error, Error(kPTUSBHubErrorDomain, 0));
        EXPECT_EQ(error->localizedDescription(), std::nullopt);
    }
}

TEST(PTUSBReply, anErrorThatIsThereAlreadyStaysAndAnswersTrue) {
    std::optional<Error> error = Error::posix(EPIPE);
    EXPECT_TRUE(PTUSBChannel::errorFromPlistResponse(numbered(3), error));
    EXPECT_EQ(error, Error::posix(EPIPE));
}

// Opening.

TEST_F(PTUSBChannelTest, isInvalidUntilItIsOpened) {
    EXPECT_FALSE(channel_->valid());
    EXPECT_EQ(channel_->dispatchChannel(), nullptr);
    EXPECT_EQ(channel_->fileDescriptor(), -1);
    open();
    EXPECT_TRUE(channel_->valid());
    EXPECT_GE(channel_->fileDescriptor(), 0);
}

TEST_F(PTUSBChannelTest, aFailureToConnectIsThePOSIXErrorAndLeavesItClosed) {
    daemon_->errnoValue = ECONNREFUSED;
    EXPECT_EQ(channel_->openOnQueue(DispatchQueue::mainQueue(), nullptr),
              Error::posix(ECONNREFUSED));
    EXPECT_FALSE(channel_->valid());
}

TEST_F(PTUSBChannelTest, openingOnNoQueueOrTwiceStopsTheProgram) {
    EXPECT_DEATH(static_cast<void>(unlogged().openOnQueue(nullptr, nullptr)), "queue != nil");
    open();
    EXPECT_DEATH(static_cast<void>(unlogged().openOnQueue(DispatchQueue::mainQueue(), nullptr)),
                 "channel_ == nil");
}

TEST_F(PTUSBChannelTest, closingWhatWasNeverOpenedDoesNothing) {
    channel_->cancel();
    channel_->stop();
    EXPECT_FALSE(channel_->valid());
}

TEST_F(PTUSBChannelTest, stopEndsItOnceAndClosesTheStream) {
    open();
    listen();
    channel_->stop();
    channel_->stop();
    ASSERT_TRUE(waitUntil([&] { return peer().hasEnded(); }));
    EXPECT_EQ(ends_, (std::vector<std::optional<Error>>{std::nullopt}));
}

TEST_F(PTUSBChannelTest, cancelWaitsForThePendingRead) {
    open();
    request();
    ASSERT_FALSE(receivedPacket().isEmpty());
    channel_->cancel();
    EXPECT_TRUE(ends_.empty());
    peer().send(packetBytes(1, ""));
    EXPECT_TRUE(waitUntil([&] { return peer().hasEnded(); }));
    EXPECT_EQ(ends_.size(), 1U);
}

TEST_F(PTUSBChannelTest, droppedItLetsGoOfTheStream) {
    open();
    channel_ = PTUSBChannel::create(daemon_);
    EXPECT_TRUE(waitUntil([&] { return peer().hasEnded(); }));
    EXPECT_EQ(ends_.size(), 1U);
}

// Requests.

TEST_F(PTUSBChannelTest, theFirstRequestHasTag1AndTheNextTag2) {
    open();
    request();
    EXPECT_EQ(receivedPacket().sliced(12, 4), QByteArray("\1\0\0\0", 4));
    request();
    EXPECT_EQ(receivedPacket().sliced(12, 4), QByteArray("\2\0\0\0", 4));
}

TEST_F(PTUSBChannelTest, aRequestIsAnXMLPropertyListBehindItsHeader) {
    open();
    request();
    const QByteArray packet = receivedPacket();
    EXPECT_EQ(qFromLittleEndian<qint32>(packet.constData()), packet.size());
    EXPECT_EQ(packet.sliced(4, 8), QByteArray("\1\0\0\0\10\0\0\0", 8));
    EXPECT_TRUE(packet.sliced(16).startsWith("<?xml version=\"1.0\""));
    EXPECT_EQ(propertyListWithData(packet.sliced(16)),
              QVariant(PTUSBChannel::packetDictionaryWithPacketType(kConnect, std::nullopt)));
}

TEST_F(PTUSBChannelTest, aReplyReachesTheRequestOfItsTagOnce) {
    open();
    listen();
    request();
    ASSERT_FALSE(receivedPacket().isEmpty());
    peer().send(packetBytes(2, "{ Number = 0; }"));
    ASSERT_TRUE(waitUntil([&] { return !replies_.empty(); }));
    EXPECT_EQ(replies_[0].error, std::nullopt);
    EXPECT_TRUE(replies_[0].message.has_value());
    peer().send(packetBytes(2, "{ Number = 0; }"));
    settle();
    EXPECT_EQ(replies_.size(), 1U);
}

TEST_F(PTUSBChannelTest, aReplyInSingleBytesIsPutTogether) {
    open();
    request();
    ASSERT_FALSE(receivedPacket().isEmpty());
    for (const char byte : packetBytes(1, "{ Number = 0; }")) {
        peer().send(QByteArray(1, byte));
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(waitUntil([&] { return !replies_.empty(); }));
}

TEST_F(PTUSBChannelTest, aReplyWithoutAPayloadIsNoDictionary) {
    open();
    request();
    ASSERT_FALSE(receivedPacket().isEmpty());
    peer().send(packetBytes(1, ""));
    ASSERT_TRUE(waitUntil([&] { return !replies_.empty(); }));
    EXPECT_EQ(replies_[0].error, std::nullopt);
    EXPECT_EQ(replies_[0].message, std::nullopt);
}

TEST_F(PTUSBChannelTest, aReplyThatCannotBeReadIsAnErrorOfItsRequest) {
    open();
    request();
    ASSERT_FALSE(receivedPacket().isEmpty());
    peer().send(packetBytes(1, "{}", 2));
    ASSERT_TRUE(waitUntil([&] { return !replies_.empty(); }));
    EXPECT_EQ(replies_[0].error->localizedDescription(),
              QStringLiteral("Unexpected package protocol"));
}

TEST_F(PTUSBChannelTest, aReplyThatNobodyWaitsForIsLoggedAndDropped) {
    open();
    listen();
    peer().send(packetBytes(9, "{ Number = 3; }"));
    settle();
    EXPECT_EQ(log_.messages(),
              QStringList{QStringLiteral("Warning: Ignoring reply packet for which there is no "
                                         "registered callback. Packet => {\"Number\":\"3\"}")});
}

TEST_F(PTUSBChannelTest, beforeTheFirstRequestAReplyIsDroppedSilently) {
    open();
    channel_->scheduleReadPacketWithBroadcastHandler(nullptr);
    EXPECT_GT(channel_.use_count(), 1);
    peer().send(packetBytes(9, "{ Number = 3; }"));
    ASSERT_TRUE(waitUntil([&] { return channel_.use_count() == 1; })); // the reading has ended
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(PTUSBChannelTest, aRequestThatCannotBeWrittenGetsThePOSIXError) {
    open();
    channel_->stop();
    request();
    ASSERT_TRUE(waitUntil([&] { return !replies_.empty(); }));
    EXPECT_EQ(replies_[0].error, Error::posix(ECANCELED));
    EXPECT_EQ(replies_[0].message, std::nullopt);
}

TEST_F(PTUSBChannelTest, aMessageThatXMLCannotHoldGetsTheWritersError) {
    open();
    std::optional<Error> error;
    channel_->sendPacket({{QStringLiteral("a"), QString(QChar(1))}}, 1,
                         [&](const auto& failure) { error = failure; });
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->domain(), kPropertyListErrorDomain);
}

TEST_F(PTUSBChannelTest, plainBytesAreWrittenAsTheyAre) {
    open();
    int written = 0;
    channel_->sendData("plain", [&](const auto& error) { written += error ? 0 : 1; });
    ASSERT_TRUE(waitUntil([&] { return written == 1; }));
    EXPECT_EQ(peer().receive(), "plain");
}

TEST_F(PTUSBChannelTest, theDeviceStreamIsNotReadAfterTheReply) {
    open();
    request();
    ASSERT_FALSE(receivedPacket().isEmpty());
    peer().send(packetBytes(1, "{ Number = 0; }") + "device");
    ASSERT_TRUE(waitUntil([&] { return !replies_.empty(); }));
    QByteArray bytes;
    channel_->readFromOffset(
        0, 6, [&](const auto&, const DispatchData& data) { bytes = data.toByteArray(); });
    ASSERT_TRUE(waitUntil([&] { return !bytes.isEmpty(); }));
    EXPECT_EQ(bytes, "device");
}

// Broadcasts.

TEST_F(PTUSBChannelTest, listeningReportsTheReply) {
    open();
    listen();
    peer().send(packetBytes(1, "<plist version=\"1.0\"><dict><key>Number</key>"
                               "<integer>6</integer></dict></plist>"));
    ASSERT_TRUE(waitUntil([&] { return !listenOutcomes_.empty(); }));
    EXPECT_EQ(listenOutcomes_[0], Error(kPTUSBHubErrorDomain, 6));
    EXPECT_EQ(listenOutcomes_[0]->localizedDescription(), QStringLiteral("invalid version"));
}

TEST_F(PTUSBChannelTest, broadcastsGoToTheHandlerOneAfterTheOther) {
    open();
    listen();
    peer().send(packetBytes(0, "{ a = 1; }") + packetBytes(0, "{ a = 2; }"));
    ASSERT_TRUE(waitUntil([&] { return broadcasts_.size() == 2; }));
    EXPECT_EQ(broadcasts_[1], (QVariantMap{{QStringLiteral("a"), QStringLiteral("2")}}));
}

TEST_F(PTUSBChannelTest, aBroadcastThatCannotBeReadIsNothingAndTheNextOneIsRead) {
    open();
    listen();
    peer().send(packetBytes(0, "<plist") + packetBytes(0, "{}", 1, 7) + packetBytes(0, ""));
    ASSERT_TRUE(waitUntil([&] { return broadcasts_.size() == 3; }));
    for (const Message& broadcast : broadcasts_) {
        EXPECT_EQ(broadcast, std::nullopt);
    }
    settle();
}

TEST_F(PTUSBChannelTest, readingWhileAPacketIsBeingReadStopsTheProgram) {
    open();
    listen();
    EXPECT_DEATH(unlogged().scheduleReadPacketWithBroadcastHandler(nullptr),
                 "isReadingPackets_ == NO");
}

TEST_F(PTUSBChannelTest, aStreamThatEndsBetweenPacketsStopsTheProgram) {
    open();
    listen();
    EXPECT_DEATH(
        {
            unlogged();
            endOfStream();
            waitUntil([] { return false; }, std::chrono::seconds(5));
        },
        "buffer_size == sizeof\\(ref_upacket.size\\)");
}

TEST_F(PTUSBChannelTest, aStreamThatEndsWithinAPacketStopsTheProgram) {
    open();
    listen();
    EXPECT_DEATH(
        {
            unlogged();
            peer().send(packetBytes(0, "{ a = 1; }").first(20));
            endOfStream();
            waitUntil([] { return false; }, std::chrono::seconds(5));
        },
        "buffer_size == upacket->size - offset");
}

TEST_F(PTUSBChannelTest, aSizeThatNoPacketHasEndsTheStreamAsAReadError) {
    for (const char* size : {"00000000", "0f000000", "ffffffff", "01001000"}) {
        channel_ = PTUSBChannel::create(daemon_);
        daemon_->peers.clear();
        open();
        std::optional<Error> failure;
        channel_->scheduleReadPacketWithCallback(
            [&](const auto& error, const Message&, quint32) { failure = error; });
        peer().send(QByteArray::fromHex(size));
        ASSERT_TRUE(waitUntil([&] { return failure.has_value(); })) << size;
        EXPECT_EQ(failure, Error::posix(EBADMSG)) << size;
        EXPECT_TRUE(waitUntil([&] { return peer().hasEnded(); })) << size;
    }
}

TEST_F(PTUSBChannelTest, aFailedReadReachesTheBroadcastHandlerAloneAndOnce) {
    open();
    listen();
    peer().send(QByteArray(4, '\0'));
    ASSERT_TRUE(waitUntil([&] { return peer().hasEnded(); }));
    EXPECT_EQ(broadcasts_, std::vector<Message>{std::nullopt});
    EXPECT_TRUE(listenOutcomes_.empty());
}

} // namespace
} // namespace navrel
