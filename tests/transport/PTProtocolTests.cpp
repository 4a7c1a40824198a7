#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/ReadOperation.h"
#include "tests/WaitUntil.h"
#include "tests/transport/RawPeer.h"
#include "transport/frames/PTProtocol.h"
#include "transport/frames/PTReadOutcome.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

/// What a callback was told of one frame.
struct Told {
    std::optional<Error> error;
    quint32 type;
    quint32 tag;
    quint32 payloadSize;
    bool operator==(const Told&) const = default;
};

void PrintTo(const Told& told, std::ostream* out) {
    *out << (told.error ? told.error->description().toStdString() : "no error") << " type "
         << told.type << " tag " << told.tag << " size " << told.payloadSize;
}

const Told kEndOfStream = {std::nullopt, 0, 0, 0};
Told malformed() {
    return {Error(kPTProtocolErrorDomain, 0), 0, 0, 0};
}

/// A protocol on the main queue with a stream channel whose other end is the test's.
class PTProtocolTest : public testing::Test {
protected:
    void SetUp() override {
        std::array<int, 2> ends = {};
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        peer_ = RawPeer(ends[1]);
        io_ = DispatchIO::create(ends[0], DispatchQueue::mainQueue(), [this, end = ends[0]](int) {
            ::close(end);
            isCleanedUp_ = true;
        });
    }

    void TearDown() override {
        io_->close(DispatchIO::Close::stop);
        EXPECT_TRUE(waitUntil([&] { return isCleanedUp_; }));
    }

    PTProtocol::FrameCallback record() {
        return [this](const std::optional<Error>& error, quint32 type, quint32 tag, quint32 size) {
            EXPECT_FALSE(DispatchQueue::mainQueue()->tryPerform([] {})); // one of its jobs runs
            told_.push_back({error, type, tag, size});
        };
    }

    Told readOneFrame() {
        protocol_->readFrameOverChannel(io_, record());
        EXPECT_TRUE(told_.empty()); // never inside the call
        EXPECT_TRUE(waitUntil([&] { return told_.size() == 1; }));
        return told_.front();
    }

    /// Begins the loop; the test calls `resume_`.
    void readFrames() {
        protocol_->readFramesOverChannel(io_, [this](const std::optional<Error>& error,
                                                     quint32 type, quint32 tag, quint32 payloadSize,
                                                     const std::function<void()>& resume) {
            told_.push_back({error, type, tag, payloadSize});
            resume_ = resume;
        });
    }

    bool waitForFrames(size_t count) {
        return waitUntil([&] { return told_.size() == count; });
    }

    void settle() {
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    std::shared_ptr<PTProtocol> protocol_ = PTProtocol::init();
    std::shared_ptr<DispatchIO> io_;
    RawPeer peer_;
    std::vector<Told> told_;
    std::function<void()> resume_;
    bool isCleanedUp_ = false;
};

// Frames out.

TEST_F(PTProtocolTest, buildsAFrameOfHeaderAndPayload) {
    const DispatchData frame =
        protocol_->createDispatchDataWithFrameOfType(5, 7, DispatchData::copying("abc"));
    EXPECT_EQ(frame.toByteArray().toHex(), "00000001" // version
                                           "00000005" // type
                                           "00000007" // tag
                                           "00000003" // payload size
                                           "616263"); // payload
}

TEST_F(PTProtocolTest, buildsAFrameWithoutAPayloadOrWithAnEmptyOneOf16Bytes) {
    const QByteArray expected = QByteArray::fromHex("00000001000000050000000700000000");
    EXPECT_EQ(protocol_->createDispatchDataWithFrameOfType(5, 7, std::nullopt).toByteArray(),
              expected);
    EXPECT_EQ(protocol_->createDispatchDataWithFrameOfType(5, 7, DispatchData()).toByteArray(),
              expected);
}

TEST_F(PTProtocolTest, refersToThePayloadInsteadOfCopyingIt) {
    const auto payload = DispatchData::copying("abc");
    const auto frame = protocol_->createDispatchDataWithFrameOfType(5, 7, payload);
    ASSERT_EQ(frame.regions().size(), 2U);
    EXPECT_EQ(frame.regions()[1].bytes.get(), payload.bytes());
}

using PTProtocolDeathTest = PTProtocolTest;

TEST_F(PTProtocolDeathTest, stopsTheProgramOnAPayloadThatNoHeaderCanAnnounce) {
    const quint64 size = quint64{std::numeric_limits<quint32>::max()} + 1;
    const auto payload = DispatchData::borrowing("", size, nullptr, [] {}); // no byte is touched
    EXPECT_DEATH(protocol_->createDispatchDataWithFrameOfType(5, 7, payload),
                 "payloadSize <= UINT32_MAX.*createDispatchDataWithFrameOfType");
}

TEST_F(PTProtocolTest, sendsAFrameAndSaysSoOnItsQueue) {
    int calls = 0;
    std::optional<Error> outcome = Error::posix(EIO);
    protocol_->sendFrameOfType(5, 7, DispatchData::copying("abc"), io_,
                               [&](const std::optional<Error>& error) {
                                   ++calls;
                                   outcome = error;
                                   EXPECT_FALSE(DispatchQueue::mainQueue()->tryPerform([] {}));
                               });
    EXPECT_EQ(calls, 0); // never inside the call
    EXPECT_TRUE(waitUntil([&] { return calls > 0; }));
    settle();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(outcome, std::nullopt);
    EXPECT_EQ(peer_.receive(), frameBytes(5, 7, "abc"));
}

TEST_F(PTProtocolTest, sendsAFrameThatNobodyAsksAbout) {
    protocol_->sendFrameOfType(5, 7, std::nullopt, io_, nullptr);
    EXPECT_EQ(peer_.receive(), frameBytes(5, 7));
}

TEST_F(PTProtocolTest, reportsAWriteThatFails) {
    peer_.close();
    std::optional<Error> outcome;
    protocol_->sendFrameOfType(5, 7, std::nullopt, io_,
                               [&](const std::optional<Error>& error) { outcome = error; });
    EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(outcome, Error::posix(EPIPE));
}

// Headers in.

TEST_F(PTProtocolTest, readsAHeader) {
    peer_.send(QByteArray::fromHex("00000001"    // version
                                   "00000005"    // type
                                   "00000007"    // tag
                                   "00000003")); // payload size
    EXPECT_EQ(readOneFrame(), (Told{std::nullopt, 5, 7, 3}));
}

TEST_F(PTProtocolTest, reassemblesAHeaderThatArrivesInPieces) {
    const QByteArray header = frameBytes(5, 7);
    protocol_->readFrameOverChannel(io_, record());
    peer_.send(header.first(10));
    settle();
    EXPECT_TRUE(told_.empty());
    peer_.send(header.sliced(10));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(told_.front(), (Told{std::nullopt, 5, 7, 0}));
}

TEST_F(PTProtocolTest, refusesAnotherVersion) {
    peer_.send(QByteArray::fromHex("00000002000000050000000700000003"));
    EXPECT_EQ(readOneFrame(), malformed());
}

TEST_F(PTProtocolTest, tellsTheEndOfTheStreamBetweenFramesAsType0) {
    peer_.close();
    EXPECT_EQ(readOneFrame(), kEndOfStream);
}

TEST_F(PTProtocolTest, tellsTheEndOfTheStreamWithinAHeaderAsType0) {
    peer_.send(frameBytes(5, 7).first(10));
    peer_.close();
    EXPECT_EQ(readOneFrame(), kEndOfStream);
}

TEST_F(PTProtocolTest, reportsAHeaderThatCannotBeRead) {
    io_->close(DispatchIO::Close::stop);
    EXPECT_EQ(readOneFrame(), (Told{Error::posix(ECANCELED), 0, 0, 0}));
}

// Payloads in.

struct Payload {
    int calls = 0;
    std::optional<Error> error;
    std::optional<DispatchData> data;
    const char* buffer = nullptr;
    size_t size = 0;
};

PTProtocol::PayloadCallback recordInto(Payload& payload) {
    return [&payload](const std::optional<Error>& error, const std::optional<DispatchData>& data,
                      const char* buffer, size_t size) {
        const int calls = payload.calls + 1;
        payload = {calls, error, data, buffer, size};
    };
}

TEST_F(PTProtocolTest, readsAPayloadIntoOnePiece) {
    Payload payload;
    protocol_->readPayloadOfSize(5, io_, recordInto(payload));
    peer_.send("ab");
    settle();
    EXPECT_EQ(payload.calls, 0);
    peer_.send("cdef");
    EXPECT_TRUE(waitUntil([&] { return payload.calls == 1; }));
    EXPECT_EQ(payload.error, std::nullopt);
    ASSERT_TRUE(payload.data);
    EXPECT_EQ(payload.data->bytes(), payload.buffer);
    EXPECT_EQ(QByteArray(payload.buffer, static_cast<qsizetype>(payload.size)), "abcde");
}

TEST_F(PTProtocolTest, tellsTheEndOfTheStreamWithinAPayloadAsNoBytes) {
    Payload payload;
    protocol_->readPayloadOfSize(5, io_, recordInto(payload));
    peer_.send("ab");
    peer_.close();
    EXPECT_TRUE(waitUntil([&] { return payload.calls == 1; }));
    EXPECT_EQ(payload.error, std::nullopt);
    EXPECT_FALSE(payload.data);
    EXPECT_EQ(payload.buffer, nullptr);
    EXPECT_EQ(payload.size, 0U);
}

TEST_F(PTProtocolTest, reportsAPayloadThatCannotBeRead) {
    Payload payload;
    protocol_->readPayloadOfSize(5, io_, recordInto(payload));
    peer_.send("ab");
    settle();
    io_->close(DispatchIO::Close::stop);
    EXPECT_TRUE(waitUntil([&] { return payload.calls == 1; }));
    EXPECT_EQ(payload.error, Error::posix(ECANCELED));
    EXPECT_FALSE(payload.data);
    EXPECT_EQ(payload.size, 0U);
}

TEST_F(PTProtocolTest, gathersNoPayloadBeyondTheLargest) {
    Payload payload;
    protocol_->readPayloadOfSize(PTProtocol::kLargestPayload + 1, io_, recordInto(payload));
    EXPECT_EQ(payload.calls, 0); // never inside the call
    EXPECT_TRUE(waitUntil([&] { return payload.calls == 1; }));
    EXPECT_EQ(payload.error, Error::posix(ENOMEM));
    EXPECT_FALSE(payload.data);
    EXPECT_EQ(payload.size, 0U);
    peer_.send(frameBytes(5, 7));
    EXPECT_EQ(readOneFrame(), (Told{std::nullopt, 5, 7, 0})); // nothing was read
}

TEST_F(PTProtocolTest, gathersTheLargestPayload) {
    constexpr auto kSize = static_cast<qsizetype>(PTProtocol::kLargestPayload);
    Payload payload;
    protocol_->readPayloadOfSize(PTProtocol::kLargestPayload, io_, recordInto(payload));
    const QByteArray part(1024 * 1024, 'x');
    qsizetype sent = 0;
    EXPECT_TRUE(waitUntil([&] {
        sent += peer_.sendSome(part.first(std::min(part.size(), kSize - sent)));
        return payload.calls == 1;
    }));
    EXPECT_EQ(payload.error, std::nullopt);
    EXPECT_EQ(payload.size, PTProtocol::kLargestPayload);
}

TEST_F(PTProtocolTest, discardsAPayload) {
    int calls = 0;
    protocol_->readAndDiscardDataOfSize(5, io_,
                                        [&](const std::optional<Error>& error, bool endOfStream) {
                                            ++calls;
                                            EXPECT_EQ(error, std::nullopt);
                                            EXPECT_FALSE(endOfStream);
                                        });
    peer_.send("abcde" + frameBytes(5, 7));
    EXPECT_TRUE(waitUntil([&] { return calls == 1; }));
    EXPECT_EQ(readOneFrame(), (Told{std::nullopt, 5, 7, 0})); // nothing more is gone
}

TEST_F(PTProtocolTest, tellsTheEndOfTheStreamAndErrorsWhileDiscarding) {
    std::vector<std::pair<std::optional<Error>, bool>> outcomes;
    const auto recordOutcome = [&](const std::optional<Error>& error, bool endOfStream) {
        outcomes.emplace_back(error, endOfStream);
    };
    protocol_->readAndDiscardDataOfSize(5, io_, recordOutcome);
    peer_.send("ab");
    peer_.close();
    EXPECT_TRUE(waitUntil([&] { return outcomes.size() == 1; }));
    io_->close(DispatchIO::Close::stop);
    protocol_->readAndDiscardDataOfSize(5, io_, recordOutcome);
    EXPECT_TRUE(waitUntil([&] { return outcomes.size() == 2; }));

    EXPECT_EQ(outcomes[0].first, std::nullopt);
    EXPECT_TRUE(outcomes[0].second);
    EXPECT_EQ(outcomes[1].first, Error::posix(ECANCELED));
}

TEST_F(PTProtocolTest, discardsWithoutAnybodyAsking) {
    protocol_->readAndDiscardDataOfSize(5, io_, nullptr);
    peer_.send("abcde" + frameBytes(5, 7));
    EXPECT_EQ(readOneFrame(), (Told{std::nullopt, 5, 7, 0}));
}

// The loop.

TEST_F(PTProtocolTest, readsTheNextHeaderOnlyOnceItIsResumed) {
    readFrames();
    peer_.send(frameBytes(5, 1) + frameBytes(6, 2));
    ASSERT_TRUE(waitForFrames(1));
    settle();
    EXPECT_EQ(told_.size(), 1U);

    resume_();
    ASSERT_TRUE(waitForFrames(2));
    EXPECT_EQ(told_.back(), (Told{std::nullopt, 6, 2, 0}));
}

TEST_F(PTProtocolTest, endsTheLoopWithTheStream) {
    readFrames();
    peer_.send(frameBytes(5, 1));
    ASSERT_TRUE(waitForFrames(1));
    peer_.close();
    resume_();
    ASSERT_TRUE(waitForFrames(2));
    EXPECT_EQ(told_.back(), kEndOfStream);

    resume_();
    settle();
    EXPECT_EQ(told_.size(), 2U);
}

TEST_F(PTProtocolTest, endsTheLoopAtAFrameOfType0) {
    readFrames();
    peer_.send(frameBytes(0, 9) + frameBytes(5, 1));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(told_.back(), (Told{std::nullopt, 0, 9, 0}));

    resume_();
    settle();
    EXPECT_EQ(told_.size(), 1U);
}

TEST_F(PTProtocolTest, endsTheLoopAtAnotherVersion) {
    readFrames();
    peer_.send(QByteArray::fromHex("00000002000000050000000700000000") + frameBytes(5, 1));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_EQ(told_.back(), malformed());

    resume_();
    settle();
    EXPECT_EQ(told_.size(), 1U);
}

TEST_F(PTProtocolTest, endsTheLoopSilentlyWhenResumeIsDropped) {
    readFrames();
    peer_.send(frameBytes(5, 1) + frameBytes(6, 2));
    ASSERT_TRUE(waitForFrames(1));
    const std::weak_ptr<PTProtocol> protocol = std::exchange(protocol_, nullptr);
    EXPECT_FALSE(protocol.expired()); // held by resume
    resume_ = nullptr;
    EXPECT_TRUE(protocol.expired());
    settle();
    EXPECT_EQ(told_.size(), 1U);
}

TEST_F(PTProtocolTest, isHeldByAnOperationUntilItHasEnded) {
    protocol_->readFrameOverChannel(io_, record());
    const std::weak_ptr<PTProtocol> protocol = std::exchange(protocol_, nullptr);
    peer_.send(frameBytes(5, 7));
    ASSERT_TRUE(waitForFrames(1));
    EXPECT_TRUE(waitUntil([&] { return protocol.expired(); }));
}

// Tags.

/// A protocol that has given out every tag but the last.
class ProtocolNearItsLastTag : public PTProtocol {
public:
    ProtocolNearItsLastTag() : PTProtocol(nullptr) { nextFrameTag_ = 0xFFFFFFFE; }
};

TEST(PTProtocolTags, beginAt1AndWrapTo0) {
    const auto fresh = PTProtocol::init();
    EXPECT_EQ(fresh->newTag(), 1U);
    EXPECT_EQ(fresh->newTag(), 2U);

    ProtocolNearItsLastTag old;
    EXPECT_EQ(old.newTag(), 4294967295U);
    EXPECT_EQ(old.newTag(), 0U);
    EXPECT_EQ(old.newTag(), 1U);
}

// Queues.

TEST(PTProtocolQueue, isHeldUntilItIsReplaced) {
    auto first = DispatchQueue::serialQueue(QStringLiteral("first"));
    const std::weak_ptr<DispatchQueue> held = first;
    const auto protocol = PTProtocol::initWithDispatchQueue(std::move(first));
    EXPECT_FALSE(held.expired());

    const auto second = DispatchQueue::serialQueue(QStringLiteral("second"));
    protocol->setQueue(second);
    EXPECT_TRUE(held.expired());
    EXPECT_EQ(protocol->queue(), second);
    EXPECT_EQ(second.use_count(), 2);

    protocol->setQueue(nullptr);
    EXPECT_EQ(second.use_count(), 1);
}

TEST(PTProtocolQueue, isTheMainOneUnlessAnotherIsGiven) {
    EXPECT_EQ(PTProtocol::init()->queue(), DispatchQueue::mainQueue());
    EXPECT_EQ(PTProtocol::initWithDispatchQueue(nullptr)->queue(), nullptr);
}

TEST(SharedProtocol, isOneForEachQueue) {
    const auto first = DispatchQueue::serialQueue(QStringLiteral("first"));
    const auto second = DispatchQueue::serialQueue(QStringLiteral("second"));
    const auto shared = PTProtocol::sharedProtocolForQueue(first);
    EXPECT_EQ(PTProtocol::sharedProtocolForQueue(first), shared);
    EXPECT_NE(PTProtocol::sharedProtocolForQueue(second), shared);
    EXPECT_EQ(shared->queue(), first);
}

TEST(SharedProtocol, cannotBeMovedToAnotherQueue) {
    const auto queue = DispatchQueue::serialQueue(QStringLiteral("own"));
    const auto shared = PTProtocol::sharedProtocolForQueue(queue);
    shared->setQueue(DispatchQueue::mainQueue());
    EXPECT_EQ(shared->queue(), queue);
}

TEST(SharedProtocol, goesWithItsQueueAndDoesNotKeepItAlive) {
    auto queue = DispatchQueue::serialQueue(QStringLiteral("own"));
    const auto shared = PTProtocol::sharedProtocolForQueue(queue);
    EXPECT_EQ(queue.use_count(), 1);
    queue.reset();
    EXPECT_EQ(shared->queue(), nullptr);
    EXPECT_EQ(shared.use_count(), 1);
}

} // namespace
} // namespace navrel
