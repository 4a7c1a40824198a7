#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/DispatchSource.h"
#include "tests/WaitUntil.h"

#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include <array>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

class DispatchSourceTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(::pipe(ends_.data()), 0);
        source_ = DispatchSource::create(
            ends_[0], queue_,
            [this](quint64 pendingCount) {
                counts_.push_back(pendingCount);
                drain();
            },
            [this] { ++cancels_; });
    }

    void TearDown() override {
        source_.reset();
        EXPECT_TRUE(waitUntil([&] { return cancels_ > 0; }));
        EXPECT_EQ(cancels_, 1);
        ::close(ends_[0]);
        ::close(ends_[1]);
    }

    void drain() {
        std::array<char, 64> buffer;
        ASSERT_GT(::read(ends_[0], buffer.data(), buffer.size()), 0);
    }

    void send(const char* text) {
        const auto size = std::char_traits<char>::length(text);
        ASSERT_EQ(::write(ends_[1], text, size), static_cast<ssize_t>(size));
    }

    void settle() {
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    std::shared_ptr<DispatchQueue> queue_ = DispatchQueue::mainQueue();
    std::array<int, 2> ends_ = {};
    std::shared_ptr<DispatchSource> source_;
    std::vector<quint64> counts_;
    int cancels_ = 0;
};

using Counts = std::vector<quint64>;

TEST_F(DispatchSourceTest, tellsNothingBeforeItIsStarted) {
    send("abc");
    settle();
    EXPECT_TRUE(counts_.empty());
}

TEST_F(DispatchSourceTest, tellsHowManyBytesWait) {
    source_->start();
    send("abc");
    EXPECT_TRUE(waitUntil([&] { return !counts_.empty(); }));
    send("de");
    EXPECT_TRUE(waitUntil([&] { return counts_.size() == 2; }));
    EXPECT_EQ(counts_, (Counts{3, 2}));
}

TEST_F(DispatchSourceTest, tellsNothingAfterItWasCancelledAndRunsTheHandlerOnce) {
    source_->start();
    source_->cancel();
    source_->cancel();
    EXPECT_EQ(cancels_, 0); // a later job
    send("abc");
    EXPECT_TRUE(waitUntil([&] { return cancels_ == 1; }));
    settle();
    EXPECT_TRUE(counts_.empty());
    EXPECT_TRUE(source_->isCancelled());
}

TEST_F(DispatchSourceTest, isCancelledWhenItIsDropped) {
    source_->start();
    source_.reset();
    EXPECT_TRUE(waitUntil([&] { return cancels_ == 1; }));
}

TEST_F(DispatchSourceTest, waitsForAJobThatSpinsAnEventLoop) {
    source_->start();
    bool wasQuiet = false;
    queue_->async([&] {
        send("abc");
        QEventLoop dialog;
        QTimer::singleShot(30, &dialog, &QEventLoop::quit);
        dialog.exec();
        wasQuiet = counts_.empty();
    });
    EXPECT_TRUE(waitUntil([&] { return !counts_.empty(); }));
    EXPECT_TRUE(wasQuiet);
    send("de");
    EXPECT_TRUE(waitUntil([&] { return counts_.size() == 2; }));
}

TEST_F(DispatchSourceTest, cancelledWhileItsEventWaitsTellsNothing) {
    source_->start();
    queue_->suspend();
    send("abc");
    settle();
    source_->cancel();
    queue_->resume();
    EXPECT_TRUE(waitUntil([&] { return cancels_ == 1; }));
    EXPECT_TRUE(counts_.empty());
}

#ifdef __linux__
TEST(ListeningSource, tellsHowManyConnectionsWait) {
    const int server = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* socketAddress = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(::bind(server, socketAddress, length), 0);
    ASSERT_EQ(::listen(server, 5), 0);
    ASSERT_EQ(::getsockname(server, socketAddress, &length), 0);
    std::array<int, 3> clients = {};
    for (int& client : clients) {
        client = ::socket(AF_INET, SOCK_STREAM, 0);
        ASSERT_EQ(::connect(client, socketAddress, length), 0);
    }

    quint64 told = 0;
    bool isCancelled = false;
    const auto source = DispatchSource::create(
        server, DispatchQueue::mainQueue(), [&](quint64 pendingCount) { told = pendingCount; },
        [&] { isCancelled = true; });
    source->start();
    EXPECT_TRUE(waitUntil([&] { return told > 0; }));
    EXPECT_EQ(told, 3U);
    source->cancel();
    EXPECT_TRUE(waitUntil([&] { return isCancelled; }));
    for (const int client : clients) {
        ::close(client);
    }
    ::close(server);
}
#endif

} // namespace
} // namespace navrel
