#include "tests/web/ServedSite.h"

#include <QDir>
#include <QFile>
#include <gmock/gmock.h>

#include <chrono>
#include <poll.h>
#include <vector>

namespace navrel {
namespace {

int openDescriptors() {
    return static_cast<int>(
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size());
}

/// Memory of this process that is in use, in MiB.
long residentMiB() {
    QFile file(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray pages = file.readAll().split(' ').at(1);
    constexpr long kPagesOfMiB = 256;
    return pages.toLong() / kPagesOfMiB;
}

/// More than any leak of a connection's smallest part would leave unseen, and less than the caches
/// of the sanitizers.
constexpr long kFlatMiB = 48;

class LoadTests : public ServedSite {
protected:
    LoadTests() {
        start();
        cookie = pair();
    }

    std::string nothing() const {
        return "GET /nothing HTTP/1.1\r\nHost: " + hostField() + "\r\n\r\n";
    }

    /// The server has closed what has ended: what it holds is what it held.
    void expectFlat(int descriptors, long memory) const {
        EXPECT_TRUE(waitUntil([descriptors] { return openDescriptors() <= descriptors; }))
            << openDescriptors() << " instead of " << descriptors;
        EXPECT_LE(residentMiB() - memory, kFlatMiB);
    }

    std::string cookie;
};

TEST_F(LoadTests, tenThousandConnectionsInARowLeaveNothingBehind) {
    ASSERT_EQ(get("/api/state", cookie).status, 200);
    const int descriptors = openDescriptors();
    const long memory = residentMiB();
    int served = 0;
    for (int count = 0; count < 10'000; ++count) {
        WebClient client(port());
        served += client.ask(nothing()).status == 404 ? 1 : 0;
    }
    // The end of one and the beginning of the next may pass each other: some meet a full house.
    EXPECT_GT(served, 9'000);
    expectFlat(descriptors, memory);
    EXPECT_EQ(get("/api/state", cookie).status, 200);
}

TEST_F(LoadTests, aThousandHalfRequestsHoldUpNobody) {
    WebClient other(port(), WebClient::Kind::plain, "127.0.0.1", "127.0.0.77");
    ASSERT_EQ(other.ask(getBytes("/api/state", cookie)).status, 200);
    const int descriptors = openDescriptors();
    const long memory = residentMiB();
    {
        std::vector<WebClient> halves;
        for (int count = 0; count < 1'000; ++count) {
            halves.emplace_back(port());
            halves.back().send("POST /api/pair HTTP/1.1\r\nHost: " + hostField() + "\r\nX-");
            if (count % 100 == 0) {
                ASSERT_EQ(other.ask(getBytes("/api/tree", cookie)).status, 200) << count;
            }
        }
        // The time of those whose first byte is read late begins late.
        for (WebClient& half : halves) {
            ASSERT_TRUE(waitUntil([&] {
                pollfd end = {half.descriptor(), POLLIN, 0};
                clock.advance(std::chrono::seconds(1));
                return ::poll(&end, 1, 0) == 1;
            }));
            ASSERT_TRUE(half.ends());
        }
        EXPECT_EQ(get("/api/state", cookie).status, 200);
    }
    expectFlat(descriptors, memory);
}

TEST_F(LoadTests, aFloodOfRequestsIsAnsweredAndLeavesNothingBehind) {
    stop();
    world.limits.requestsPerSecond = 20;
    world.limits.requestBurst = 100;
    start();
    const int descriptors = openDescriptors();
    const long memory = residentMiB();
    int allowed = 0;
    int refused = 0;
    {
        WebClient client(port());
        for (int count = 0; count < 20'000; ++count) {
            const int status = client.ask(getBytes("/api/tree", cookie)).status;
            allowed += status == 200 ? 1 : 0;
            refused += status == 429 ? 1 : 0;
        }
    }
    EXPECT_LE(allowed, 100);
    EXPECT_EQ(allowed + refused, 20'000);
    WebClient other(port(), WebClient::Kind::plain, "127.0.0.1", "127.0.0.77");
    EXPECT_EQ(other.ask(getBytes("/api/state", cookie)).status, 200);
    expectFlat(descriptors + 2, memory);
}

TEST_F(LoadTests, streamsThatComeAndGoLeaveNothingBehind) {
    ASSERT_EQ(get("/api/state", cookie).status, 200);
    const int descriptors = openDescriptors();
    const long memory = residentMiB();
    for (int count = 0; count < 1'000; ++count) {
        WebClient stream = events(cookie);
        service_->publishActive(path("Notes.txt"), static_cast<std::uint32_t>(count + 1));
    }
    EXPECT_TRUE(waitUntil([this] { return !service_->devices().at(0).connected; }));
    expectFlat(descriptors, memory);
}

TEST_F(LoadTests, fiftyStreamsAreToldWhatHappens) {
    std::vector<WebClient> streams;
    for (int count = 0; count < 50; ++count) {
        const std::string from = "127.0.0." + std::to_string(2 + count / 16);
        streams.emplace_back(port(), WebClient::Kind::plain, "127.0.0.1", from);
        streams.back().send(getBytes("/api/events", pair("phone " + std::to_string(count))));
        ASSERT_THAT(streams.back().readUntil("\n\n"), ::testing::HasSubstr("text/event-stream"))
            << count;
    }
    service_->publishActive(path("Notes.txt"), 2);
    for (WebClient& stream : streams) {
        EXPECT_THAT(stream.readUntil("event: active\n"), ::testing::HasSubstr("event: active"));
    }
    EXPECT_EQ(get("/api/state", cookie).status, 200);
}

} // namespace
} // namespace navrel
