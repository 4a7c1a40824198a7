#include "tests/web/ServedSite.h"

#include <gmock/gmock.h>

#include <sys/socket.h>
#include <vector>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class BoundTests : public ServedSite {
protected:
    /// Whether a client is answered: it came in.
    bool isServed(WebClient& client) const {
        return client.ask("GET /nothing HTTP/1.1\r\nHost: " + hostField() + "\r\n\r\n").status ==
               404;
    }

    int flood(WebClient& quick) const;

    /// Has the server answer another client first: by then it has read what this one sent.
    bool hasEndedByNow(WebClient& client) const {
        WebClient probe(port());
        probe.send("GET /nothing HTTP/1.1\r\nHost: " + hostField() + "\r\n\r\n");
        probe.answer();
        char byte = 0;
        return ::recv(client.descriptor(), &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
    }
};

TEST_F(BoundTests, aHeadTakesTenSecondsFromItsFirstByte) {
    start();
    WebClient client(port());
    client.send("G");
    ASSERT_FALSE(hasEndedByNow(client)); // the byte was read
    clock.advance(seconds(9));
    client.send("ET / HTTP/1.1\r\n"); // a trickle does not move the end
    ASSERT_FALSE(hasEndedByNow(client));
    clock.advance(seconds(1));
    EXPECT_TRUE(client.ends());
}

TEST_F(BoundTests, aBodyTakesTenSeconds) {
    start();
    WebClient client(port());
    client.send("POST /api/pair HTTP/1.1\r\nHost: " + hostField() + "\r\n" + ownPage() +
                "Content-Type: application/json\r\nContent-Length: 100\r\n\r\n{");
    ASSERT_FALSE(hasEndedByNow(client));
    clock.advance(seconds(9));
    client.send(" ");
    ASSERT_FALSE(hasEndedByNow(client));
    clock.advance(seconds(1));
    EXPECT_TRUE(client.ends());
}

TEST_F(BoundTests, aSilentConnectionEndsAfterThirtySeconds) {
    start();
    WebClient silent(port());
    WebClient once(port());
    ASSERT_TRUE(isServed(once));
    ASSERT_FALSE(hasEndedByNow(once)); // it waits for the next request
    clock.advance(seconds(29));
    ASSERT_FALSE(hasEndedByNow(silent));
    ASSERT_FALSE(hasEndedByNow(once));
    clock.advance(seconds(1));
    EXPECT_TRUE(silent.ends());
    EXPECT_TRUE(once.ends());
}

TEST_F(BoundTests, anAddressHasSixteenConnections) {
    start();
    std::vector<WebClient> clients;
    for (int count = 0; count < 16; ++count) {
        clients.emplace_back(port());
        ASSERT_TRUE(isServed(clients.back())) << count;
    }
    WebClient tooMany(port());
    EXPECT_TRUE(tooMany.ends());
    WebClient other(port(), WebClient::Kind::plain, "127.0.0.1", "127.0.0.2");
    EXPECT_TRUE(isServed(other));
    EXPECT_EQ(asOwner("GET", "/api/state").status, 200);
    clients.pop_back();
    EXPECT_TRUE(waitUntil([this] {
        WebClient again(port());
        return isServed(again);
    }));
}

TEST_F(BoundTests, thereAreSixtyFourConnectionsInAll) {
    start();
    std::vector<WebClient> clients;
    for (int count = 0; count < 64; ++count) {
        const std::string from = "127.0.0." + std::to_string(2 + count / 16);
        clients.emplace_back(port(), WebClient::Kind::plain, "127.0.0.1", from);
        ASSERT_TRUE(isServed(clients.back())) << count;
    }
    WebClient tooMany(port(), WebClient::Kind::plain, "127.0.0.1", "127.0.0.9");
    EXPECT_TRUE(tooMany.ends());
    EXPECT_EQ(asOwner("GET", "/api/state").status, 200);
}

TEST_F(BoundTests, anAddressHasABurstAndThenTwentyRequestsASecond) {
    world.limits = {};
    start();
    WebClient client(port());
    const std::string bytes = "GET /nothing HTTP/1.1\r\nHost: " + hostField() + "\r\n\r\n";
    for (int count = 0; count < 100; ++count) {
        ASSERT_EQ(client.ask(bytes).status, 404) << count;
    }
    const WebAnswer refused = client.ask(bytes);
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.fields.at("retry-after"), "1");
    WebClient other(port(), WebClient::Kind::plain, "127.0.0.1", "127.0.0.2");
    EXPECT_EQ(other.ask(bytes).status, 404);
    clock.advance(seconds(1));
    for (int count = 0; count < 20; ++count) {
        ASSERT_EQ(client.ask(bytes).status, 404) << count;
    }
    EXPECT_EQ(client.ask(bytes).status, 429);
}

TEST_F(BoundTests, aDeviceHasTwoStreams) {
    start();
    const std::string cookie = pair();
    WebClient first = events(cookie);
    WebClient second = events(cookie);
    WebClient third = events(cookie);
    EXPECT_TRUE(first.ends()); // of three, the oldest one: its page sleeps, most likely
    service_->publishActive(path("Notes.txt"), 2);
    EXPECT_THAT(second.readUntil("\n\n"), ::testing::StartsWith("event: active\n"));
    EXPECT_THAT(third.readUntil("\n\n"), ::testing::StartsWith("event: active\n"));
}

TEST_F(BoundTests, aQuietStreamHasAHeartbeatEveryFifteenSeconds) {
    start();
    WebClient stream = events(pair());
    clock.advance(seconds(15));
    EXPECT_EQ(stream.readUntil("\n\n"), ":\n\n");
    clock.advance(seconds(15));
    EXPECT_EQ(stream.readUntil("\n\n"), ":\n\n");
}

TEST_F(BoundTests, aStreamThatSendsSomethingEnds) {
    start();
    WebClient stream = events(pair());
    stream.send("x");
    EXPECT_TRUE(stream.ends());
    EXPECT_TRUE(waitUntil([this] { return !service_->devices().at(0).connected; }));
}

/// Publishes ten megabytes of events, which `quick` reads: far more than the system keeps for a
/// reader that does not read. How many there were.
int BoundTests::flood(WebClient& quick) const {
    constexpr int kEvents = 2000;
    const std::string filler(5000, 'x');
    for (int count = 0; count < kEvents; ++count) {
        const std::string text = filler + std::to_string(count);
        ProgramState state;
        state.messages = {{ProgramState::Message::Level::info, text, ""}};
        service_->publishState(state);
        if (quick.readUntil(text + "\"").empty()) {
            return count;
        }
        quick.readUntil("\n\n");
    }
    return kEvents;
}

TEST_F(BoundTests, aSlowReaderGetsOneResyncInPlaceOfABacklog) {
    start();
    const std::string cookie = pair();
    WebClient slow = events(cookie);
    WebClient quick = events(cookie);
    const int published = flood(quick);
    int received = 0;
    std::string event;
    while (!(event = slow.readUntil("\n\n")).starts_with("event: resync")) {
        ASSERT_THAT(event, ::testing::StartsWith("event: state"));
        ++received;
    }
    EXPECT_LT(received, published);
    service_->publishState({});
    EXPECT_THAT(slow.readUntil("\n\n"), ::testing::HasSubstr("\"messages\":[]"));
}

TEST_F(BoundTests, aReaderThatNeverReadsIsClosedAfterAMinute) {
    start();
    WebClient stuck = events(pair());
    WebClient quick = events(pair("phone"));
    flood(quick);
    EXPECT_TRUE(service_->devices().at(0).connected);
    clock.advance(seconds(60));
    EXPECT_TRUE(waitUntil([this] { return !service_->devices().at(0).connected; }));
    EXPECT_TRUE(service_->devices().at(1).connected);
}

} // namespace
} // namespace navrel
