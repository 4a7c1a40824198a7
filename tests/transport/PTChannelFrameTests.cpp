#include "support/dispatch/ReadOperation.h"
#include "tests/transport/ChannelTest.h"
#include "transport/frames/PTFrame.h"
#include "transport/frames/PTReadOutcome.h"

#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <cerrno>
#include <malloc.h>
#include <thread>

namespace navrel {
namespace {

using PTChannelFrames = ChannelTest;

DispatchData dataOf(const QByteArray& bytes) {
    return DispatchData::referencing(bytes);
}

/// The delegate answers every frame with one of type 500, the same tag and the payload twice.
void answerEveryFrame(RecordingDelegate& delegate) {
    delegate.onFrame = [](const RecordingDelegate::Frame& frame) {
        const QByteArray payload = frame.payload.value_or(QByteArray());
        frame.channel->sendFrameOfType(500, frame.tag, dataOf(payload + payload), nullptr);
    };
}

TEST_F(PTChannelFrames, areDeliveredWithTheirPayload) {
    connect();
    peer_.send(QByteArray::fromHex("00000001"  // version
                                   "000000C8"  // type 200
                                   "00000007"  // tag
                                   "00000003"  // payload size
                                   "616263")); // payload
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(delegate_->frames[0].channel, channel_.get());
    EXPECT_EQ(delegate_->frames[0].type, 200U);
    EXPECT_EQ(delegate_->frames[0].tag, 7U);
    EXPECT_EQ(delegate_->frames[0].payload, "abc");
}

TEST_F(PTChannelFrames, withoutAPayloadAreDeliveredWithNone) {
    connect();
    peer_.send(frameBytes(200, 7));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(delegate_->frames[0].payload, std::nullopt);
}

TEST_F(PTChannelFrames, thatArriveByteByByteAreReassembled) {
    connect();
    const QByteArray bytes = frameBytes(200, 7, "abc") + frameBytes(201, 8, "de");
    for (const char byte : bytes) {
        peer_.send(QByteArray(1, byte));
        QCoreApplication::processEvents();
    }
    ASSERT_TRUE(waitForFrames(2));
    EXPECT_EQ(delegate_->frames[0].payload, "abc");
    EXPECT_EQ(delegate_->frames[1].payload, "de");
    EXPECT_EQ(delegate_->frames[1].tag, 8U);
}

TEST_F(PTChannelFrames, of1000PipelinedRequestsAreAnsweredInOrderWithTheirTags) {
    constexpr quint32 kRequests = 1000;
    connect();
    answerEveryFrame(*delegate_);
    QByteArray requests;
    QByteArray answers;
    for (quint32 tag = 1; tag <= kRequests; ++tag) {
        const QByteArray payload = tag % 3 == 0 ? QByteArray() : QByteArray::number(tag);
        requests += frameBytes(200, tag, payload);
        answers += frameBytes(500, tag, payload + payload);
    }
    peer_.send(requests);
    EXPECT_TRUE(peerReceives(answers.size()) == answers);
    EXPECT_EQ(delegate_->frames.size(), kRequests);
}

TEST_F(PTChannelFrames, areHandledToTheirEndBeforeTheNextEvenWhileADialogIsOpen) {
    connect();
    std::vector<QByteArray> order;
    delegate_->onFrame = [&](const RecordingDelegate::Frame& frame) {
        order.push_back("begin " + *frame.payload);
        if (frame.tag == 1) {
            QEventLoop dialog;
            QTimer::singleShot(30, &dialog, &QEventLoop::quit);
            dialog.exec();
        }
        order.push_back("end " + *frame.payload);
    };
    peer_.send(frameBytes(200, 1, "one") + frameBytes(200, 2, "two"));
    ASSERT_TRUE(waitForFrames(2));
    EXPECT_EQ(order, (std::vector<QByteArray>{"begin one", "end one", "begin two", "end two"}));
}

TEST_F(PTChannelFrames, ofARefusedTypeAreSkippedAndTheLoopGoesOn) {
    connect();
    delegate_->refusedTypes = {666};
    peer_.send(frameBytes(666, 1, QByteArray(100000, 'x')) + frameBytes(666, 2) +
               frameBytes(200, 3, "abc"));
    ASSERT_TRUE(waitForFrames(1));
    settle();
    ASSERT_EQ(delegate_->frames.size(), 1U);
    EXPECT_EQ(delegate_->frames[0].tag, 3U);
    EXPECT_EQ(delegate_->askedTypes, (std::vector<quint32>{666, 666, 200}));
}

TEST_F(PTChannelFrames, areAllAcceptedByADelegateThatIsNotAsked) {
    delegate_ = std::make_shared<RecordingDelegate>(PTChannelDelegate::kDidEnd);
    delegate_->refusedTypes = {200};
    connect();
    peer_.send(frameBytes(200, 1, "abc"));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_TRUE(delegate_->askedTypes.empty());
}

TEST_F(PTChannelFrames, withoutADelegateAreReadAndForgotten) {
    connect();
    channel_->setDelegate(nullptr);
    peer_.send(frameBytes(200, 1, "abc") + frameBytes(200, 2));
    settle();
    channel_->setDelegate(delegate_);
    peer_.send(frameBytes(200, 3));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(delegate_->frames[0].tag, 3U);
}

TEST_F(PTChannelFrames, onAStreamThatIsNoLongerTheStoredOneAreSkippedWithoutAskingTheDelegate) {
    connect();
    channel_->cancel(); // the header that is being read is still waited for
    EXPECT_EQ(channel_->connState(), kConnStateNone);
    peer_.send(frameBytes(200, 1, "abc"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(delegate_->frames.empty());
    EXPECT_TRUE(delegate_->askedTypes.empty());
}

TEST_F(PTChannelFrames, areNotDeliveredByAChannelThatWasClosedWhenTheDelegateWasAsked) {
    connect();
    delegate_->onQuestion = [](PTChannel& channel) { channel.close(); };
    peer_.send(frameBytes(200, 1, "abc") + frameBytes(200, 2, "def"));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, Error::posix(ECANCELED));
    EXPECT_EQ(delegate_->askedTypes, std::vector<quint32>{200});
    EXPECT_TRUE(delegate_->frames.empty());
}

TEST_F(PTChannelFrames, of1MegabyteAreReceivedWhole) {
    connect();
    QByteArray payload(1024 * 1024, Qt::Uninitialized);
    for (qsizetype index = 0; index < payload.size(); ++index) {
        payload[index] = static_cast<char>(index % 251);
    }
    const QByteArray bytes = frameBytes(200, 1, payload) + frameBytes(200, 2, "abc");
    qsizetype sent = 0;
    EXPECT_TRUE(waitUntil([&] {
        sent += peer_.sendSome(bytes.sliced(sent));
        return delegate_->frames.size() == 2;
    }));
    EXPECT_TRUE(delegate_->frames[0].payload == payload);
    EXPECT_EQ(delegate_->frames[1].payload, "abc");
}

TEST_F(PTChannelFrames, areSentAndTheCallbackRunsOnce) {
    connect();
    int calls = 0;
    channel_->sendFrameOfType(500, 7, dataOf("abc"), [&](const std::optional<Error>& error) {
        ++calls;
        EXPECT_EQ(error, std::nullopt);
    });
    EXPECT_EQ(peerReceives(19), frameBytes(500, 7, "abc"));
    EXPECT_TRUE(waitUntil([&] { return calls > 0; }));
    settle();
    EXPECT_EQ(calls, 1);
}

TEST_F(PTChannelFrames, toAPeerThatDoesNotReadWaitInOrder) {
    connect();
    QByteArray expected;
    int written = 0;
    for (quint32 tag = 1; tag <= 100; ++tag) {
        const QByteArray payload(100000, static_cast<char>('a' + tag % 26));
        expected += frameBytes(500, tag, payload);
        channel_->sendFrameOfType(500, tag, dataOf(payload),
                                  [&](const std::optional<Error>&) { ++written; });
    }
    settle();
    EXPECT_LT(written, 100);
    EXPECT_TRUE(peerReceives(expected.size()) == expected);
    EXPECT_TRUE(waitUntil([&] { return written == 100; }));
}

// Hostile peers.

TEST_F(PTChannelFrames, arriveNoMoreFromAPeerThatReadsNoAnswer) {
    connect();
    delegate_->onFrame = [](const RecordingDelegate::Frame& frame) {
        static const QByteArray answer(1024 * 1024, 'x');
        frame.channel->sendFrameOfType(500, frame.tag, dataOf(answer), nullptr);
    };
    QByteArray requests;
    for (quint32 tag = 1; tag <= 500; ++tag) {
        requests += frameBytes(200, tag);
    }
    peer_.send(requests);
    // What the sockets hold, which may grow for a while, and then as many answers as the limit
    // allows.
    ASSERT_TRUE(waitForFrames(9));
    settle();
    settle();
    EXPECT_LT(delegate_->frames.size(), 30U);

    const auto answersSize = static_cast<qsizetype>(500 * (1024 * 1024 + kPTFrameHeaderSize));
    qsizetype received = 0;
    EXPECT_TRUE(waitUntil([&] {
        received += peer_.receive().size();
        return received == answersSize;
    }));
    EXPECT_EQ(delegate_->frames.size(), 500U);
}

qint64 residentBytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().split(' ').at(0).toLongLong() * 4096;
}

size_t allocatedBytes() {
    const struct mallinfo2 information = ::mallinfo2();
    return information.uordblks + information.hblkhd;
}

TEST_F(PTChannelFrames, thatAnnounceTheMostAndSendLittleTakeLittleMemory) {
    static_assert(PTProtocol::kLargestPayload == 0x04000000);
    connect();
    const size_t before = allocatedBytes();
    peer_.send(QByteArray::fromHex("00000001000000C80000000704000000") + "little");
    settle();
    if (before > 0) { // a sanitizer's allocator does not tell
        EXPECT_LT(allocatedBytes(), before + 2 * ReadOperation::kFirstCapacity);
    }
    EXPECT_TRUE(delegate_->frames.empty());
    peer_.close();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, std::nullopt);
}

TEST_F(PTChannelFrames, thatAnnounceMoreThanTheMostEndTheConnection) {
    connect();
    peer_.send(QByteArray::fromHex("00000001000000C80000000704000001") + "little");
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, Error::posix(ENOMEM));
    EXPECT_TRUE(delegate_->frames.empty());
    EXPECT_TRUE(waitUntil([&] { return peer_.hasEnded(); }));
}

TEST_F(PTChannelFrames, thatAreRefusedTakeNoMemoryHoweverLargeTheyAre) {
    constexpr qsizetype kSize = 256 * 1024 * 1024;
    connect();
    delegate_->refusedTypes = {666};
    const qint64 before = residentBytes();
    QByteArray header = frameBytes(666, 1);
    header.replace(12, 4, QByteArray::fromHex("10000000"));
    peer_.send(header);
    const QByteArray part(1024 * 1024, 'x');
    qsizetype sent = 0;
    EXPECT_TRUE(waitUntil([&] {
        sent += peer_.sendSome(part.first(std::min(part.size(), kSize - sent)));
        return sent == kSize;
    }));
    EXPECT_LT(residentBytes(), before + 32 * 1024 * 1024);
    EXPECT_TRUE(waitUntil([&] { return peer_.sendSome(frameBytes(200, 2)) == 16; }));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(delegate_->frames[0].tag, 2U);
}

class PTChannelGarbage : public ChannelTest, public testing::WithParamInterface<const char*> {};

TEST_P(PTChannelGarbage, endsTheConnectionAsMalformed) {
    connect();
    peer_.send(QByteArray::fromHex(GetParam()));
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(delegate_->ends[0].error, Error(kPTProtocolErrorDomain, 0));
    EXPECT_TRUE(delegate_->frames.empty());
    EXPECT_TRUE(waitUntil([&] { return peer_.hasEnded(); }));
}

INSTANTIATE_TEST_SUITE_P(Frames, PTChannelGarbage,
                         testing::Values("00000002000000C80000000700000000",  // version 2
                                         "00000000000000000000000000000000",  // zeroes
                                         "01000000C80000000700000003000000",  // little endian
                                         "474554202F20485454502F312E310D0A",  // another protocol
                                         "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF" // ones
                                         ));

} // namespace
} // namespace navrel
