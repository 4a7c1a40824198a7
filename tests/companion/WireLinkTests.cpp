#include "companion/link/WireLink.h"
#include "protocol/CompanionProtocol.h"
#include "support/propertylist/PropertyList.h"
#include "tests/WaitUntil.h"

#include <QStringList>
#include <QtEndian>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kLongEnough{20};

/// A Navrel that connects to the companion and answers by a function, on a thread of its own.
class FakeNavrel {
public:
    using Answer = std::function<std::optional<QVariantMap>(quint32 type)>;

    explicit FakeNavrel(Answer answer)
        : socket_(::socket(AF_INET, SOCK_STREAM, 0)), answer_(std::move(answer)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(kCompanionPort);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        thread_ = std::thread([this] { serve(); });
    }
    ~FakeNavrel() {
        close();
        thread_.join();
        ::close(socket_);
    }
    FakeNavrel(const FakeNavrel&) = delete;
    FakeNavrel& operator=(const FakeNavrel&) = delete;

    void close() const { ::shutdown(socket_, SHUT_RDWR); }
    bool hasEnded() const { return hasEnded_; }

    void send(const QByteArray& bytes) const { EXPECT_TRUE(write(bytes)); }

    static QByteArray frame(quint32 type, quint32 tag, const QByteArray& payload,
                            quint32 version = 1) {
        QByteArray bytes;
        for (const quint32 word : {version, type, tag, static_cast<quint32>(payload.size())}) {
            const quint32 sent = qToBigEndian(word);
            bytes.append(reinterpret_cast<const char*>(&sent), sizeof sent);
        }
        return bytes + payload;
    }

private:
    bool read(char* bytes, size_t length) const {
        return length == 0 || ::recv(socket_, bytes, length, MSG_WAITALL) == ssize_t(length);
    }

    bool write(const QByteArray& bytes) const {
        return ::send(socket_, bytes.constData(), static_cast<size_t>(bytes.size()),
                      MSG_NOSIGNAL) == bytes.size();
    }

    // An answer may come too late: after the companion or the test has ended the connection.
    void serve() {
        std::array<char, 16> header;
        while (read(header.data(), header.size())) {
            const auto type = qFromBigEndian<quint32>(header.data() + 4);
            const auto tag = qFromBigEndian<quint32>(header.data() + 8);
            QByteArray payload(qFromBigEndian<quint32>(header.data() + 12), '\0');
            if (!read(payload.data(), static_cast<size_t>(payload.size()))) {
                break;
            }
            const auto reply = answer_(type);
            if (reply && !write(frame(kFrameReply, tag, *binaryDataWithPropertyList(*reply)))) {
                break;
            }
        }
        hasEnded_ = true;
    }

    const int socket_;
    const Answer answer_;
    std::atomic<bool> hasEnded_ = false;
    std::thread thread_;
};

std::optional<QVariantMap> allButShortcuts(quint32 type) {
    return type == kFrameShortcuts ? std::nullopt
                                   : std::optional(QVariantMap{{QStringLiteral("type"), type}});
}

class WireLinkTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(link_.listen(kCompanionPort), std::nullopt); }

    /// Turns until a condition holds.
    bool turnUntil(const std::function<bool()>& condition) {
        return waitUntil([&] {
            link_.turn(milliseconds(1));
            return condition();
        });
    }

    LoopbackPeer peer_ = {::geteuid(), false};
    WireLink link_{[this](int) { return peer_; }};
};

TEST_F(WireLinkTest, withoutANavrelNothingIsServedOrAnswered) {
    EXPECT_FALSE(link_.waitUntilServed(milliseconds(50)));
    EXPECT_EQ(link_.ask(kFrameProject), std::nullopt);
}

TEST_F(WireLinkTest, anAnswerIsMatchedToItsQuestionAndSilenceIsNoticedAtOnce) {
    const FakeNavrel navrel(&allButShortcuts);
    ASSERT_TRUE(link_.waitUntilServed(kLongEnough));
    const auto reply = link_.ask(kFrameProject, {{QStringLiteral("a"), 1}});
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(QStringLiteral("type")).toUInt(), kFrameProject);
    EXPECT_EQ(link_.ask(kFrameShortcuts), std::nullopt);
}

TEST_F(WireLinkTest, manyRequestsMayBeUnderWay) {
    const FakeNavrel navrel(&allButShortcuts);
    ASSERT_TRUE(link_.waitUntilServed(kLongEnough));
    std::vector<quint32> types;
    for (const quint32 type : {kFrameProject, kFrameShortcuts, kFrameFileTypes}) {
        link_.request(type, {}, [&types](const std::optional<QVariantMap>& reply) {
            types.push_back(reply ? reply->value(QStringLiteral("type")).toUInt() : 0);
        });
    }
    EXPECT_TRUE(turnUntil([&] { return types.size() == 3; }));
    EXPECT_EQ(types, (std::vector<quint32>{kFrameProject, 0, kFrameFileTypes}));
}

TEST_F(WireLinkTest, aNavrelThatDropsItsFirstRequestsIsAskedAgain) {
    std::atomic<int> requests = 0;
    const FakeNavrel navrel([&requests](quint32) {
        return ++requests < 5 ? std::nullopt : std::optional(QVariantMap{{QStringLiteral("a"), 1}});
    });
    EXPECT_TRUE(link_.waitUntilServed(kLongEnough));
    EXPECT_GE(requests, 5);
}

TEST_F(WireLinkTest, aNavrelThatGoesIsNoticedAndAnotherIsTakenInItsPlace) {
    {
        const FakeNavrel navrel(&allButShortcuts);
        ASSERT_TRUE(link_.waitUntilServed(kLongEnough));
    }
    EXPECT_TRUE(turnUntil([this] { return !link_.isConnected(); }));
    const FakeNavrel navrel(&allButShortcuts);
    EXPECT_TRUE(link_.waitUntilServed(kLongEnough));
    EXPECT_TRUE(link_.ask(kFrameProject).has_value());
}

TEST_F(WireLinkTest, requestsUnderWayAreDoneWhenNavrelGoes) {
    std::atomic<bool> isSilent = false;
    const FakeNavrel navrel([&isSilent](quint32 type) {
        return type == kFrameVersion && !isSilent
                   ? std::optional(QVariantMap{{QStringLiteral("a"), 1}})
                   : std::nullopt;
    });
    ASSERT_TRUE(link_.waitUntilServed(kLongEnough));
    isSilent = true;
    int done = 0;
    link_.request(kFrameProject, {}, [&done](const auto& reply) {
        EXPECT_FALSE(reply.has_value());
        ++done;
    });
    navrel.close();
    EXPECT_TRUE(turnUntil([&] { return done == 1; }));
}

TEST_F(WireLinkTest, aNavrelOfAnotherUserIsTurnedAwayWithOneSentenceForEachUser) {
    QStringList sentences;
    link_.didRefuse = [&](const QString& sentence) { sentences.append(sentence); };
    for (const LoopbackPeer& peer :
         {LoopbackPeer{::geteuid() + 1, false}, LoopbackPeer{::geteuid() + 1, false},
          LoopbackPeer{std::nullopt, true}, LoopbackPeer{std::nullopt, false}}) {
        peer_ = peer;
        const FakeNavrel navrel(&allButShortcuts);
        ASSERT_TRUE(turnUntil([&] { return navrel.hasEnded(); }));
        EXPECT_FALSE(link_.isConnected());
    }
    EXPECT_EQ(
        sentences,
        (QStringList{QStringLiteral("refused a Navrel of another user (%1)").arg(::geteuid() + 1),
                     QStringLiteral("refused a Navrel of another user (unknown)")}));
    peer_ = {::geteuid(), false};
    const FakeNavrel navrel(&allButShortcuts);
    EXPECT_TRUE(link_.waitUntilServed(kLongEnough));
}

TEST_F(WireLinkTest, whatIsNoFrameEndsTheConnection) {
    for (const QByteArray& bytes :
         {FakeNavrel::frame(kFrameReply, 1, {}, 2), FakeNavrel::frame(0, 1, {}),
          FakeNavrel::frame(kFrameReply, 1, {}).first(12) + QByteArray("\x04\x00\x00\x01", 4)}) {
        const FakeNavrel navrel(&allButShortcuts);
        ASSERT_TRUE(link_.waitUntilServed(kLongEnough));
        navrel.send(bytes);
        EXPECT_TRUE(turnUntil([this] { return !link_.isConnected(); }));
    }
}

TEST_F(WireLinkTest, framesOfOtherTypesAndUnknownTagsArePassedOver) {
    const FakeNavrel navrel(&allButShortcuts);
    ASSERT_TRUE(link_.waitUntilServed(kLongEnough));
    navrel.send(FakeNavrel::frame(7, 1, "abc") + FakeNavrel::frame(kFrameReply, 9'999, "abc"));
    EXPECT_TRUE(link_.ask(kFrameProject).has_value());
}

TEST_F(WireLinkTest, whoeverConnectsIsLookedUpInTheKernelsTables) {
    link_.stop();
    WireLink link;
    ASSERT_EQ(link.listen(kCompanionPort), std::nullopt);
    const FakeNavrel navrel(&allButShortcuts);
    EXPECT_TRUE(link.waitUntilServed(kLongEnough));
}

TEST_F(WireLinkTest, aSecondCompanionCannotListen) {
    WireLink second;
    const auto error = second.listen(kCompanionPort);
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->isPOSIX(EADDRINUSE));
}

TEST_F(WireLinkTest, anotherDescriptorEndsATurn) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(::pipe(ends.data()), 0);
    EXPECT_FALSE(link_.turn(milliseconds(1), ends[0]));
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    EXPECT_TRUE(link_.turn(std::chrono::hours(1), ends[0]));
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace
} // namespace navrel
