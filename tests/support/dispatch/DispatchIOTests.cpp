#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/ReadOperation.h"
#include "tests/WaitUntil.h"

#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <future>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

struct Delivery {
    bool done;
    QByteArray data;
    int errnoValue;
    bool operator==(const Delivery&) const = default;
};
using Deliveries = std::vector<Delivery>;

void PrintTo(const Delivery& delivery, std::ostream* out) {
    *out << (delivery.done ? "done " : "more ") << delivery.data.toStdString() << " errno "
         << delivery.errnoValue;
}

/// A channel on one end of a connected pair; the test plays the peer on the other.
class DispatchIOTest : public testing::Test {
protected:
    void SetUp() override {
        std::array<int, 2> ends = {};
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        open(ends[0], ends[1]);
    }

    void TearDown() override {
        if (io_) {
            io_->close(DispatchIO::Close::stop);
            io_.reset();
        }
        EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
        EXPECT_EQ(cleanups_.size(), 1U);
        closePeer();
    }

    void open(int descriptor, int peer) {
        peer_ = peer;
        io_ = DispatchIO::create(descriptor, queue_, [this, descriptor](int errnoValue) {
            cleanups_.push_back(errnoValue);
            events_.append("cleanup ");
            ::close(descriptor);
        });
        ASSERT_NE(io_, nullptr);
    }

    /// Begins a read whose deliveries are recorded.
    std::shared_ptr<Deliveries> read(quint64 length,
                                     size_t largestPiece = DispatchIO::kWholeLength) {
        const auto deliveries = std::make_shared<Deliveries>();
        io_->read(
            length, queue_,
            [this, deliveries](bool done, const DispatchData& data, int errnoValue) {
                deliveries->push_back({done, data.toByteArray(), errnoValue});
                events_.append(done ? "read " : "piece ");
            },
            largestPiece);
        return deliveries;
    }

    /// Begins a write whose outcome is recorded: nothing until it has ended.
    std::shared_ptr<std::vector<int>> write(const QByteArray& bytes) {
        const auto outcomes = std::make_shared<std::vector<int>>();
        io_->write(DispatchData::referencing(bytes), queue_, [this, outcomes](int errnoValue) {
            outcomes->push_back(errnoValue);
            events_.append("write ");
        });
        return outcomes;
    }

    void peerSends(const QByteArray& bytes) {
        ASSERT_EQ(::send(peer_, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL),
                  bytes.size());
    }

    /// Everything that has arrived at the peer since the last call.
    QByteArray peerReceives() {
        QByteArray received;
        std::array<char, 65536> buffer;
        for (;;) {
            const ssize_t count = ::recv(peer_, buffer.data(), buffer.size(), MSG_DONTWAIT);
            if (count <= 0) {
                return received;
            }
            received.append(buffer.data(), count);
        }
    }

    void closePeer() {
        if (peer_ >= 0) {
            ::close(std::exchange(peer_, -1));
        }
    }

    static bool hasEnded(const std::shared_ptr<Deliveries>& deliveries) {
        return !deliveries->empty() && deliveries->back().done;
    }

    /// What is under way has had every chance to happen.
    void settle() {
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    std::shared_ptr<DispatchQueue> queue_ = DispatchQueue::mainQueue();
    std::shared_ptr<DispatchIO> io_;
    int peer_ = -1;
    std::vector<int> cleanups_;
    QByteArray events_;
};

TEST_F(DispatchIOTest, readsExactlyTheLengthAskedFor) {
    const auto first = read(3);
    const auto second = read(4);
    peerSends("abcdefghij");
    EXPECT_TRUE(waitUntil([&] { return hasEnded(second); }));
    EXPECT_EQ(*first, (Deliveries{{true, "abc", 0}}));
    EXPECT_EQ(*second, (Deliveries{{true, "defg", 0}}));
}

TEST_F(DispatchIOTest, keepsWhatWasReadAheadForTheNextRead) {
    peerSends("abcdef");
    const auto first = read(2);
    EXPECT_TRUE(waitUntil([&] { return hasEnded(first); }));
    EXPECT_EQ(::recv(io_->descriptor(), nullptr, 0, MSG_DONTWAIT | MSG_PEEK),
              -1); // all of it taken

    const auto second = read(4);
    EXPECT_TRUE(second->empty()); // never inside the call
    EXPECT_TRUE(waitUntil([&] { return hasEnded(second); }));
    EXPECT_EQ(*second, (Deliveries{{true, "cdef", 0}}));
}

TEST_F(DispatchIOTest, letsAHandlerTakeWhatWasReadAheadAtOnce) {
    std::optional<DispatchData> taken;
    std::optional<DispatchData> tooMuch;
    io_->read(2, queue_, [&](bool, const DispatchData&, int) {
        tooMuch = io_->takeReadAhead(5);
        taken = io_->takeReadAhead(3);
    });
    peerSends("abcdef");
    EXPECT_TRUE(waitUntil([&] { return taken.has_value(); }));
    EXPECT_EQ(taken->toByteArray(), "cde");
    EXPECT_EQ(taken->regions().size(), 1U);
    EXPECT_FALSE(tooMuch.has_value());

    const auto rest = read(1);
    EXPECT_TRUE(waitUntil([&] { return hasEnded(rest); }));
    EXPECT_EQ(*rest, (Deliveries{{true, "f", 0}}));
}

TEST_F(DispatchIOTest, givesWhatWasReadAheadToTheReadThatWaitsForIt) {
    peerSends("abcdef");
    const auto first = read(2);
    EXPECT_TRUE(waitUntil([&] { return hasEnded(first); }));
    const auto second = read(2);
    EXPECT_FALSE(io_->takeReadAhead(2).has_value());
    EXPECT_TRUE(waitUntil([&] { return hasEnded(second); }));
    EXPECT_EQ(*second, (Deliveries{{true, "cd", 0}}));

    std::thread([&] { EXPECT_FALSE(io_->takeReadAhead(2).has_value()); }).join(); // not its queue
    io_->close(DispatchIO::Close::afterPending);
    EXPECT_FALSE(io_->takeReadAhead(2).has_value());
}

TEST_F(DispatchIOTest, gathersALengthThatArrivesByteByByte) {
    const auto whole = read(5);
    for (const char byte : QByteArray("abcde")) {
        EXPECT_TRUE(whole->empty());
        peerSends(QByteArray(1, byte));
        settle();
    }
    EXPECT_TRUE(waitUntil([&] { return hasEnded(whole); }));
    EXPECT_EQ(*whole, (Deliveries{{true, "abcde", 0}}));
}

TEST_F(DispatchIOTest, deliversPiecesOfTheSizeAskedFor) {
    const auto pieces = read(5, 2);
    peerSends("abcdef");
    EXPECT_TRUE(waitUntil([&] { return hasEnded(pieces); }));
    EXPECT_EQ(*pieces, (Deliveries{{false, "ab", 0}, {false, "cd", 0}, {true, "e", 0}}));
}

TEST_F(DispatchIOTest, readsNothingAtOnceForALengthOfZeroButNotInsideTheCall) {
    const auto nothing = read(0);
    EXPECT_TRUE(nothing->empty());
    EXPECT_TRUE(waitUntil([&] { return hasEnded(nothing); }));
    EXPECT_EQ(*nothing, (Deliveries{{true, "", 0}}));
}

TEST_F(DispatchIOTest, deliversAnEmptyLastPieceAtTheEndOfTheStream) {
    const auto cutOff = read(5);
    const auto next = read(5);
    peerSends("abc");
    closePeer();
    EXPECT_TRUE(waitUntil([&] { return hasEnded(next); }));
    EXPECT_EQ(*cutOff, (Deliveries{{false, "abc", 0}, {true, "", 0}}));
    EXPECT_EQ(*next, (Deliveries{{true, "", 0}}));
}

TEST_F(DispatchIOTest, reportsAReadError) {
    // A peer that closes with unread bytes resets the connection.
    write("never read");
    const auto failed = read(5);
    closePeer();
    EXPECT_TRUE(waitUntil([&] { return hasEnded(failed); }));
    EXPECT_EQ(*failed, (Deliveries{{true, "", ECONNRESET}}));
}

TEST_F(DispatchIOTest, readsAPayloadLargerThanItsBufferInOnePiece) {
    QByteArray sent(3 * 1024 * 1024 + 7, Qt::Uninitialized);
    for (qsizetype index = 0; index < sent.size(); ++index) {
        sent[index] = static_cast<char>(index * 31 + index / 4096);
    }
    int regions = 0;
    QByteArray received;
    io_->read(static_cast<quint64>(sent.size()), queue_,
              [&](bool done, const DispatchData& data, int errnoValue) {
                  EXPECT_TRUE(done);
                  EXPECT_EQ(errnoValue, 0);
                  regions = static_cast<int>(data.regions().size());
                  received = data.toByteArray();
              });
    const auto behind = read(3);
    std::thread peer([&] {
        const QByteArray all = sent + "end";
        for (qsizetype at = 0; at < all.size();) {
            at += ::send(peer_, all.constData() + at, static_cast<size_t>(all.size() - at), 0);
        }
    });
    EXPECT_TRUE(waitUntil([&] { return hasEnded(behind); }));
    peer.join();
    EXPECT_EQ(regions, 1);
    EXPECT_TRUE(received == sent);
    EXPECT_EQ(*behind, (Deliveries{{true, "end", 0}}));
}

TEST_F(DispatchIOTest, servesReadsThatHandlersBegin) {
    QByteArray received;
    std::function<void()> readOne = [&] {
        io_->read(1, queue_, [&](bool, const DispatchData& data, int) {
            received += data.toByteArray();
            if (!data.isEmpty()) {
                readOne();
            }
        });
    };
    readOne();
    peerSends(QByteArray(1000, 'x'));
    EXPECT_TRUE(waitUntil([&] { return received.size() == 1000; }));
}

TEST_F(DispatchIOTest, leavesTheEventLoopItsTurnWhileItServesManyReads) {
    int served = 0;
    int servedWhenTimerFired = -1;
    std::function<void()> readOne = [&] {
        io_->read(1, queue_, [&](bool, const DispatchData& data, int) {
            if (!data.isEmpty() && ++served < 10000) {
                readOne();
            }
        });
    };
    peerSends(QByteArray(10000, 'x'));
    readOne();
    QTimer::singleShot(0, QCoreApplication::instance(), [&] { servedWhenTimerFired = served; });
    EXPECT_TRUE(waitUntil([&] { return served == 10000; }));
    EXPECT_GE(servedWhenTimerFired, 0);
    EXPECT_LT(servedWhenTimerFired, 1000);
}

TEST_F(DispatchIOTest, runsNoHandlerWhileAJobOfItsQueueSpinsAnEventLoop) {
    const auto waiting = read(3);
    bool wasQuiet = false;
    queue_->async([&] {
        peerSends("abc");
        QEventLoop dialog;
        QTimer::singleShot(30, &dialog, &QEventLoop::quit);
        dialog.exec();
        wasQuiet = waiting->empty();
    });
    EXPECT_TRUE(waitUntil([&] { return hasEnded(waiting); }));
    EXPECT_TRUE(wasQuiet);
}

TEST_F(DispatchIOTest, runsNoHandlerWhileItsQueueIsSuspended) {
    const auto waiting = read(3);
    queue_->suspend();
    peerSends("abc");
    settle();
    EXPECT_TRUE(waiting->empty());
    queue_->resume();
    EXPECT_TRUE(waitUntil([&] { return hasEnded(waiting); }));
}

TEST_F(DispatchIOTest, writesAtOnceAndReportsItLater) {
    const auto outcome = write("abc");
    EXPECT_EQ(peerReceives(), "abc");
    EXPECT_TRUE(outcome->empty());
    EXPECT_TRUE(waitUntil([&] { return !outcome->empty(); }));
    EXPECT_EQ(*outcome, std::vector<int>{0});
}

TEST_F(DispatchIOTest, writesDataOfManyRegionsInOrder) {
    DispatchData data;
    QByteArray expected;
    for (int number = 0; number < 300; ++number) {
        const QByteArray part = QByteArray::number(number);
        data.append(DispatchData::referencing(part));
        expected += part;
    }
    int outcome = -1;
    io_->write(data, queue_, [&](int errnoValue) { outcome = errnoValue; });
    EXPECT_TRUE(waitUntil([&] { return outcome == 0; }));
    EXPECT_EQ(peerReceives(), expected);
}

TEST_F(DispatchIOTest, endsAWriteOfNothing) {
    const auto outcome = write("");
    EXPECT_TRUE(waitUntil([&] { return !outcome->empty(); }));
    EXPECT_EQ(*outcome, std::vector<int>{0});
}

TEST_F(DispatchIOTest, keepsWritesInOrderWhileThePeerDoesNotRead) {
    QByteArray expected;
    std::vector<std::shared_ptr<std::vector<int>>> outcomes;
    for (int number = 0; number < 200; ++number) {
        const QByteArray bytes = QByteArray::number(number) + QByteArray(20000, 'x');
        expected += bytes;
        outcomes.push_back(write(bytes));
    }
    settle();
    EXPECT_TRUE(outcomes.back()->empty());

    QByteArray received;
    EXPECT_TRUE(waitUntil([&] {
        received += peerReceives();
        return !outcomes.back()->empty();
    }));
    received += peerReceives();
    EXPECT_TRUE(received == expected);
    for (const auto& outcome : outcomes) {
        EXPECT_EQ(*outcome, std::vector<int>{0});
    }
}

TEST_F(DispatchIOTest, readsNoFurtherFromAPeerThatDoesNotReadItself) {
    write(QByteArray(DispatchIO::kMostUnwrittenBytes + 4 * 1024 * 1024, 'x'));
    const auto waiting = read(3);
    peerSends("abc");
    settle();
    EXPECT_TRUE(waiting->empty());

    EXPECT_TRUE(waitUntil([&] {
        peerReceives();
        return hasEnded(waiting);
    }));
    EXPECT_EQ(*waiting, (Deliveries{{true, "abc", 0}}));
}

TEST_F(DispatchIOTest, readsNoFurtherWhileTooManySmallWritesWait) {
    write(QByteArray(1024 * 1024, 'x')); // more than the socket holds
    for (size_t count = 0; count < DispatchIO::kMostUnwrittenWrites; ++count) {
        write("x");
    }
    const auto waiting = read(3);
    peerSends("abc");
    settle();
    EXPECT_TRUE(waiting->empty());

    EXPECT_TRUE(waitUntil([&] {
        peerReceives();
        return hasEnded(waiting);
    }));
}

TEST_F(DispatchIOTest, reportsWritesToAPeerThatIsGoneAndRaisesNoSignal) {
    static int signals = 0;
    const auto previous = std::signal(SIGPIPE, [](int) { ++signals; });
    closePeer();
    const auto first = write("abc");
    const auto second = write("def");
    EXPECT_TRUE(waitUntil([&] { return !second->empty(); }));
    EXPECT_EQ(*first, std::vector<int>{EPIPE});
    EXPECT_EQ(*second, std::vector<int>{EPIPE});
    EXPECT_EQ(signals, 0);
    std::signal(SIGPIPE, previous);
}

TEST_F(DispatchIOTest, whenStoppedEndsEveryOperationAsCancelledAndThenCleansUp) {
    const auto cutOff = read(5);
    const auto notBegun = read(5);
    const auto outcome = write(QByteArray(1024 * 1024, 'x')); // more than the socket holds
    peerSends("ab");
    settle();

    io_->close(DispatchIO::Close::stop);
    EXPECT_TRUE(cutOff->empty()); // never inside the call
    EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
    EXPECT_EQ(*cutOff, (Deliveries{{true, "ab", ECANCELED}}));
    EXPECT_EQ(*notBegun, (Deliveries{{true, "", ECANCELED}}));
    EXPECT_EQ(*outcome, std::vector<int>{ECANCELED});
    EXPECT_EQ(events_, "read read write cleanup ");
    EXPECT_EQ(cleanups_, std::vector<int>{0});
    EXPECT_EQ(io_->descriptor(), -1);
}

TEST_F(DispatchIOTest, whenClosedLetsPendingOperationsFinishFirst) {
    const auto reading = read(3);
    const auto outcome = write(QByteArray(1024 * 1024, 'x'));
    io_->close(DispatchIO::Close::afterPending);
    settle();
    EXPECT_TRUE(cleanups_.empty());

    peerSends("abc");
    EXPECT_TRUE(waitUntil([&] {
        peerReceives();
        return !cleanups_.empty();
    }));
    EXPECT_EQ(*reading, (Deliveries{{true, "abc", 0}}));
    EXPECT_EQ(*outcome, std::vector<int>{0});
    EXPECT_EQ(cleanups_, std::vector<int>{0});
}

TEST_F(DispatchIOTest, onceClosedCancelsNewOperations) {
    io_->close(DispatchIO::Close::afterPending);
    const auto reading = read(3);
    const auto outcome = write("abc");
    EXPECT_TRUE(reading->empty());
    EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
    EXPECT_EQ(*reading, (Deliveries{{true, "", ECANCELED}}));
    EXPECT_EQ(*outcome, std::vector<int>{ECANCELED});
    EXPECT_EQ(peerReceives(), "");
}

TEST_F(DispatchIOTest, mayBeStoppedWhileAFirstCloseWaits) {
    const auto reading = read(3);
    io_->close(DispatchIO::Close::afterPending);
    io_->close(DispatchIO::Close::stop);
    io_->close(DispatchIO::Close::stop);
    EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
    EXPECT_EQ(*reading, (Deliveries{{true, "", ECANCELED}}));
}

TEST_F(DispatchIOTest, mayBeStoppedByAHandlerInTheMiddleOfServing) {
    std::vector<int> ends;
    for (int number = 0; number < 3; ++number) {
        io_->read(1, queue_, [&](bool, const DispatchData&, int errnoValue) {
            ends.push_back(errnoValue);
            io_->close(DispatchIO::Close::stop);
        });
    }
    peerSends("abc");
    EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
    EXPECT_EQ(ends, (std::vector<int>{0, ECANCELED, ECANCELED}));
}

TEST_F(DispatchIOTest, cleansUpWhenItIsDroppedUnclosed) {
    io_.reset();
    EXPECT_TRUE(cleanups_.empty());
    EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
    EXPECT_EQ(cleanups_, std::vector<int>{0});
}

TEST_F(DispatchIOTest, outlivesItsLastHolderWhileAnOperationIsPending) {
    const auto reading = read(3);
    io_.reset();
    settle();
    EXPECT_TRUE(cleanups_.empty());
    peerSends("abc");
    EXPECT_TRUE(waitUntil([&] { return !cleanups_.empty(); }));
    EXPECT_EQ(*reading, (Deliveries{{true, "abc", 0}}));
}

TEST_F(DispatchIOTest, runsHandlersOnTheQueueThatTheOperationNames) {
    const auto other = DispatchQueue::serialQueue(QStringLiteral("other"));
    std::promise<bool> readOnOther;
    std::promise<bool> writeOnOther;
    io_->read(3, other, [&](bool, const DispatchData& data, int) {
        EXPECT_EQ(data.toByteArray(), "abc");
        readOnOther.set_value(other->isCurrentThread());
    });
    io_->write(DispatchData::copying("def"), other,
               [&](int) { writeOnOther.set_value(other->isCurrentThread()); });
    peerSends("abc");
    auto read = readOnOther.get_future();
    const auto isReady = [](auto& future) {
        return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    EXPECT_TRUE(waitUntil([&] { return isReady(read); }));
    EXPECT_TRUE(read.get());
    EXPECT_TRUE(writeOnOther.get_future().get());
}

TEST_F(DispatchIOTest, worksOnASerialQueueAndTakesOperationsFromAnyThread) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    const auto worker = DispatchQueue::serialQueue(QStringLiteral("worker"));
    std::promise<int> cleanup;
    const auto io =
        DispatchIO::create(ends[0], worker, [&](int errnoValue) { cleanup.set_value(errnoValue); });
    std::promise<QByteArray> received;
    io->read(3, worker,
             [&](bool, const DispatchData& data, int) { received.set_value(data.toByteArray()); });
    io->write(DispatchData::copying("def"), worker, nullptr);
    ASSERT_EQ(::send(ends[1], "abc", 3, 0), 3);
    EXPECT_EQ(received.get_future().get(), "abc");
    io->close(DispatchIO::Close::stop);
    EXPECT_EQ(cleanup.get_future().get(), 0);

    std::array<char, 8> buffer = {};
    EXPECT_EQ(::recv(ends[1], buffer.data(), buffer.size(), 0), 3);
    ::close(ends[0]);
    ::close(ends[1]);
}

/// The same on pipes, which know no flags against SIGPIPE and one direction only.
class DispatchIOPipeTest : public DispatchIOTest {
protected:
    void SetUp() override {}
    void openPipe(bool forReading) {
        std::array<int, 2> ends = {};
        ASSERT_EQ(::pipe(ends.data()), 0);
        open(forReading ? ends[0] : ends[1], forReading ? ends[1] : ends[0]);
    }
};

TEST_F(DispatchIOPipeTest, readsToTheEnd) {
    openPipe(true);
    const auto reading = read(5);
    ASSERT_EQ(::write(peer_, "abc", 3), 3);
    closePeer();
    EXPECT_TRUE(waitUntil([&] { return hasEnded(reading); }));
    EXPECT_EQ(*reading, (Deliveries{{false, "abc", 0}, {true, "", 0}}));
}

TEST_F(DispatchIOPipeTest, writesMoreThanItHolds) {
    openPipe(false);
    const QByteArray sent(1024 * 1024, 'x');
    const auto outcome = write(sent);
    ASSERT_EQ(::fcntl(peer_, F_SETFL, O_NONBLOCK), 0);
    QByteArray received;
    EXPECT_TRUE(waitUntil([&] {
        std::array<char, 65536> buffer;
        const ssize_t count = ::read(peer_, buffer.data(), buffer.size());
        if (count > 0) {
            received.append(buffer.data(), count);
        }
        return received.size() == sent.size();
    }));
    EXPECT_TRUE(waitUntil([&] { return !outcome->empty(); }));
    EXPECT_EQ(*outcome, std::vector<int>{0});
}

TEST_F(DispatchIOPipeTest, failsAWaitingWriteWhenTheReaderGoes) {
    openPipe(false);
    const auto outcome = write(QByteArray(1024 * 1024, 'x'));
    settle();
    closePeer();
    EXPECT_TRUE(waitUntil([&] { return !outcome->empty(); }));
    EXPECT_EQ(*outcome, std::vector<int>{EPIPE});
}

TEST(DispatchIOCreation, isRefusedWithoutADescriptorOrAQueue) {
    bool cleanedUp = false;
    const auto cleanup = [&](int) { cleanedUp = true; };
    EXPECT_EQ(DispatchIO::create(-1, DispatchQueue::mainQueue(), cleanup), nullptr);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(DispatchIO::create(0, nullptr, cleanup), nullptr);
    EXPECT_EQ(errno, EINVAL);
    QCoreApplication::processEvents();
    EXPECT_FALSE(cleanedUp);
}

TEST(DispatchIOCleanup, tellsOfADescriptorThatWasNone) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    int cleanup = -1;
    int outcome = -1;
    const auto io = DispatchIO::create(ends[0], DispatchQueue::mainQueue(),
                                       [&](int errnoValue) { cleanup = errnoValue; });
    ::close(ends[0]); // what nobody may do
    io->write(DispatchData::copying("abc"), DispatchQueue::mainQueue(),
              [&](int errnoValue) { outcome = errnoValue; });
    io->close(DispatchIO::Close::stop);
    EXPECT_TRUE(waitUntil([&] { return cleanup >= 0; }));
    EXPECT_EQ(outcome, EBADF);
    EXPECT_EQ(cleanup, EBADF);
    ::close(ends[1]);
}

} // namespace
} // namespace navrel
