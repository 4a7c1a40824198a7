#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/DispatchSource.h"
#include "tests/LogRecorder.h"
#include "tests/transport/ChannelTest.h"

#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace navrel {
namespace {

using PTChannelConnection = ChannelTest;

TEST_F(PTChannelConnection, isMadeBeforeTheCallReturnsAndTellsThePeersAddress) {
    connect();
    EXPECT_EQ(address_->description(), QStringLiteral("127.0.0.1:2345"));
    EXPECT_EQ(channel_->connState(), kConnStateConnected);
    EXPECT_TRUE(channel_->isConnected());
    EXPECT_FALSE(channel_->isListening());
}

TEST_F(PTChannelConnection, endsOnceWithoutAnErrorWhenThePeerClosesIt) {
    connect();
    peer_.close();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].channel, channel_.get());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    EXPECT_FALSE(channel_->isConnected());
}

TEST_F(PTChannelConnection, endsWithoutAnErrorWhenThePeerClosesItWithinAFrame) {
    connect();
    peer_.send(frameBytes(200, 1, "abc").first(17));
    peer_.close();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
    EXPECT_TRUE(delegate_->frames.empty());
}

TEST_F(PTChannelConnection, endsWithoutAnErrorWhenThePeerClosesItWithinASkippedFrame) {
    connect();
    delegate_->refusedTypes = {666};
    peer_.send(frameBytes(666, 1, "abc").first(17));
    peer_.close();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
}

TEST_F(PTChannelConnection, endsWithoutAnErrorAtAFrameOfType0AfterTheAnswersHaveLeft) {
    connect();
    delegate_->onFrame = [](const RecordingDelegate::Frame& frame) {
        const QByteArray answer(8 * 1024 * 1024, 'x');
        frame.channel->sendFrameOfType(500, frame.tag, DispatchData::referencing(answer), nullptr);
    };
    peer_.send(frameBytes(200, 1) + frameBytes(0, 2) + frameBytes(200, 3));
    EXPECT_EQ(peerReceives(8 * 1024 * 1024 + 16).size(), 8 * 1024 * 1024 + 16);
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
    EXPECT_EQ(delegate_->frames.size(), 1U);
    EXPECT_TRUE(waitUntil([&] { return peer_.hasEnded(); }));
}

TEST_F(PTChannelConnection, endsWithTheErrorOfAFailedRead) {
    connect();
    peer_.reset();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, Error::posix(ECONNRESET));
}

TEST_F(PTChannelConnection, whenClosedAbandonsWhatIsPending) {
    connect();
    std::optional<Error> outcome;
    channel_->sendFrameOfType(500, 1, DispatchData::referencing(QByteArray(16 * 1024 * 1024, 'x')),
                              [&](const std::optional<Error>& error) { outcome = error; });
    channel_->close();
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    EXPECT_TRUE(delegate_->ends.empty()); // told later
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(outcome, Error::posix(ECANCELED));
    // The abandoned read is what ended the connection.
    EXPECT_EQ(delegate_->ends[0].error, Error::posix(ECANCELED));
}

TEST_F(PTChannelConnection, endsWithTheErrorOfTheCleanUpBeforeThatOfTheRead) {
    connect();
    ::close(channel_->dispatchChannel()->descriptor()); // what nobody may do
    channel_->sendFrameOfType(500, 1, std::nullopt, {});
    channel_->close(); // the read that is abandoned has an error of its own
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, Error::posix(EBADF));
}

TEST_F(PTChannelConnection, whenCancelledFinishesWhatIsPendingFirst) {
    connect();
    const QByteArray payload(16 * 1024 * 1024, 'x');
    std::optional<std::optional<Error>> outcome;
    channel_->sendFrameOfType(500, 1, DispatchData::referencing(payload),
                              [&](const std::optional<Error>& error) { outcome.emplace(error); });
    channel_->cancel();
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    EXPECT_TRUE(peerReceives(payload.size() + 16) == frameBytes(500, 1, payload));
    EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(*outcome, std::nullopt);
    EXPECT_TRUE(delegate_->ends.empty()); // a header is still being read

    peer_.close();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
}

TEST_F(PTChannelConnection, livesOnUntilItEndsWhenItIsLetGoOf) {
    connect();
    const std::weak_ptr<PTChannel> channel = std::exchange(channel_, nullptr);
    peer_.send(frameBytes(200, 1, "abc"));
    ASSERT_TRUE(waitForFrames(1));
    peer_.close();
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return channel.expired(); }));
}

TEST_F(PTChannelConnection, mayBeClosedAndLetGoOfByItsDelegate) {
    connect();
    delegate_->onFrame = [this](const RecordingDelegate::Frame& frame) {
        frame.channel->close();
        frame.channel->setDelegate(nullptr);
        frame.channel->setDelegate(delegate_);
    };
    peer_.send(frameBytes(200, 1, "abc") + frameBytes(200, 2, "def"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->frames.size(), 1U);
}

TEST_F(PTChannelConnection, canBeMadeAgainOnceTheFirstHasEnded) {
    connect();
    peer_.close();
    ASSERT_TRUE(waitForEnd());
    delegate_->ends.clear();

    const RawListener listener(kPort);
    std::optional<std::optional<Error>> outcome;
    channel_->connectToPort(
        kPort, kLoopback,
        [&](const std::optional<Error>& error, const std::shared_ptr<const PTAddress>&) {
            outcome.emplace(error);
        });
    EXPECT_EQ(*outcome, std::nullopt);
    EXPECT_TRUE(channel_->isConnected());
}

TEST_F(PTChannelConnection, replacedByAnotherStreamIsClosed) {
    connect();
    std::array<int, 2> ends = {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    RawPeer second(ends[1]);
    bool isSecondClosed = false;
    const auto stream = DispatchIO::create(ends[0], DispatchQueue::mainQueue(), [&](int) {
        ::close(ends[0]);
        isSecondClosed = true;
    });
    EXPECT_EQ(channel_->startReadingFromConnectedChannel(stream), std::nullopt);
    EXPECT_EQ(channel_->dispatchChannel(), stream);
    EXPECT_TRUE(channel_->isConnected());
    // Deliberate: the read that was abandoned ends whatever stream is stored by then.
    EXPECT_TRUE(waitUntil([&] { return isSecondClosed; }));
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    EXPECT_TRUE(waitUntil([&] { return peer_.hasEnded(); }));
}

// Listening and accepting.

class PTChannelListening : public testing::Test {
protected:
    void SetUp() override {
        listener_ = PTChannel::channelWithDelegate(delegate_);
        std::optional<std::optional<Error>> outcome;
        listener_->listenOnPort(kPort, kLoopback,
                                [&](const std::optional<Error>& error) { outcome.emplace(error); });
        ASSERT_TRUE(outcome); // before the call returned
        ASSERT_EQ(*outcome, std::nullopt);
    }

    void TearDown() override {
        const auto isTold = [this](const std::shared_ptr<PTChannel>& channel) {
            return std::any_of(delegate_->ends.begin(), delegate_->ends.end(),
                               [&](const auto& end) { return end.channel == channel.get(); });
        };
        for (const auto& channel : delegate_->accepted) {
            channel->close();
            EXPECT_TRUE(waitUntil([&] { return isTold(channel); }));
        }
        delegate_->accepted.clear();
        if (listener_) {
            listener_->close();
            EXPECT_TRUE(waitUntil([&] { return listener_->dispatchSource() == nullptr; }));
        }
    }

    bool waitForConnections(size_t count) {
        return waitUntil([&] { return delegate_->accepted.size() == count; });
    }

    std::shared_ptr<RecordingDelegate> delegate_ = std::make_shared<RecordingDelegate>();
    std::shared_ptr<PTChannel> listener_;
};

TEST_F(PTChannelListening, isAStateOfItsOwn) {
    EXPECT_EQ(listener_->connState(), kConnStateListening);
    EXPECT_TRUE(listener_->isListening());
    EXPECT_FALSE(listener_->isConnected());
}

TEST_F(PTChannelListening, acceptsConnectionsOnNewChannelsThatRead) {
    const RawPeer peer = RawPeer::connectedTo(kPort);
    EXPECT_TRUE(waitForConnections(1));
    const auto channel = delegate_->accepted[0];
    EXPECT_NE(channel, listener_);
    EXPECT_TRUE(channel->isConnected());
    EXPECT_EQ(channel->protocol(), listener_->protocol());
    EXPECT_EQ(channel->delegate(), delegate_);
    EXPECT_TRUE(delegate_->acceptedAddresses[0].startsWith(QStringLiteral("127.0.0.1:")));

    peer.send(frameBytes(200, 7, "abc"));
    EXPECT_TRUE(waitUntil([&] { return delegate_->frames.size() == 1; }));
    EXPECT_EQ(delegate_->frames[0].channel, channel.get());
}

TEST_F(PTChannelListening, acceptsSeveralConnectionsThatWait) {
    std::vector<RawPeer> peers;
    for (int count = 0; count < 20; ++count) {
        peers.push_back(RawPeer::connectedTo(kPort));
    }
    EXPECT_TRUE(waitForConnections(20));
}

TEST_F(PTChannelListening, carriesFramesBetweenTwoChannelsOfOneProcess) {
    const auto clientDelegate = std::make_shared<RecordingDelegate>();
    const auto client = PTChannel::channelWithDelegate(clientDelegate);
    client->connectToPort(kPort, kLoopback, nullptr);
    delegate_->onFrame = [](const RecordingDelegate::Frame& frame) {
        frame.channel->sendFrameOfType(500, frame.tag, DispatchData::copying("answer"), nullptr);
    };
    for (quint32 tag = 1; tag <= 100; ++tag) {
        client->sendFrameOfType(200, tag, DispatchData::copying("question"), nullptr);
    }
    EXPECT_TRUE(waitUntil([&] { return clientDelegate->frames.size() == 100; }));
    EXPECT_EQ(delegate_->frames.back().payload, "question");
    EXPECT_EQ(clientDelegate->frames.back().tag, 100U);
    EXPECT_EQ(clientDelegate->frames.back().payload, "answer");

    client->close();
    EXPECT_TRUE(
        waitUntil([&] { return !delegate_->ends.empty() && !clientDelegate->ends.empty(); }));
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
}

TEST_F(PTChannelListening, endsOnceWhenClosedAndStaysInItsState) {
    listener_->close();
    EXPECT_TRUE(delegate_->ends.empty()); // told later
    EXPECT_TRUE(waitUntil([&] { return !delegate_->ends.empty(); }));
    EXPECT_EQ(delegate_->ends[0].channel, listener_.get());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
    EXPECT_EQ(listener_->dispatchSource(), nullptr);
    EXPECT_EQ(listener_->connState(), kConnStateListening);

    listener_->close();
    listener_->cancel();
    QCoreApplication::processEvents();
    EXPECT_EQ(delegate_->ends.size(), 1U);
    const RawListener portIsFree(kPort);
}

TEST_F(PTChannelListening, endsWhenCancelledJustAsWhenClosed) {
    listener_->cancel();
    EXPECT_TRUE(waitUntil([&] { return !delegate_->ends.empty(); }));
    EXPECT_EQ(listener_->dispatchSource(), nullptr);
    EXPECT_EQ(listener_->connState(), kConnStateListening);
}

TEST_F(PTChannelListening, outlivesTheConnectionsThatItAccepted) {
    RawPeer peer = RawPeer::connectedTo(kPort);
    EXPECT_TRUE(waitForConnections(1));
    listener_->close();
    EXPECT_TRUE(waitUntil([&] { return !delegate_->ends.empty(); }));
    delegate_->ends.clear();
    delegate_->accepted.clear();
    const std::weak_ptr<PTChannel> listener = std::exchange(listener_, nullptr);
    EXPECT_FALSE(listener.expired());

    peer.close();
    EXPECT_TRUE(waitUntil([&] { return !delegate_->ends.empty(); }));
    EXPECT_TRUE(waitUntil([&] { return listener.expired(); }));
}

TEST_F(PTChannelListening, logsAConnectionThatItsDelegateKeptFromBeingRead) {
    const LogRecorder log;
    delegate_->onConnection = [](PTChannel& channel) { channel.setConnState(kConnStateListening); };
    const RawPeer peer = RawPeer::connectedTo(kPort);
    EXPECT_TRUE(waitForConnections(1));
    EXPECT_EQ(log.messages(),
              QStringList(QStringLiteral("startReadingFromConnectedChannel failed in accept: ") +
                          Error::posix(EPERM).description()));
    delegate_->accepted[0]->setConnState(kConnStateConnected); // so that it can be closed
}

TEST_F(PTChannelListening, canBeginAgainRightAfterAConnectionWasClosedByThisSide) {
    RawPeer peer = RawPeer::connectedTo(kPort);
    EXPECT_TRUE(waitForConnections(1));
    delegate_->accepted[0]->close();
    EXPECT_TRUE(waitUntil([&] { return peer.hasEnded(); }));
    peer.close();
    listener_->close();
    EXPECT_TRUE(waitUntil([&] { return listener_->dispatchSource() == nullptr; }));

    listener_ = PTChannel::channelWithDelegate(delegate_);
    listener_->listenOnPort(kPort, kLoopback, [](const std::optional<Error>& error) {
        EXPECT_EQ(error, std::nullopt);
    });
    EXPECT_TRUE(listener_->isListening());
}

TEST(PTChannelConnectionWhoseDelegateHasNoEndOperation, endsWithoutTellingIt) {
    const auto delegate = std::make_shared<RecordingDelegate>(quint8{0});
    const RawListener listener(kPort);
    auto channel = PTChannel::channelWithDelegate(delegate);
    channel->connectToPort(kPort, kLoopback, nullptr);
    ASSERT_TRUE(channel->isConnected());
    listener.accept().close();
    const std::weak_ptr<PTChannel> watched = std::exchange(channel, nullptr);
    EXPECT_TRUE(waitUntil([&] { return watched.expired(); })); // all handlers have run
    EXPECT_TRUE(delegate->ends.empty());
}

TEST(PTChannelListeningWithoutAnAcceptingDelegate, closesEveryConnectionAtOnce) {
    const auto delegate = std::make_shared<RecordingDelegate>(PTChannelDelegate::kDidEnd);
    const auto listener = PTChannel::channelWithDelegate(delegate);
    listener->listenOnPort(kPort, kLoopback, nullptr);
    for (int count = 0; count < 3; ++count) {
        const RawPeer peer = RawPeer::connectedTo(kPort);
        EXPECT_TRUE(waitUntil([&] { return peer.hasEnded(); }));
    }
    EXPECT_TRUE(delegate->accepted.empty());
    listener->close();
    EXPECT_TRUE(waitUntil([&] { return !delegate->ends.empty(); }));
    EXPECT_EQ(delegate->ends.size(), 1U);
}

} // namespace
} // namespace navrel
