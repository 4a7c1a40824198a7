#include "companion/CompanionLink.h"
#include "protocol/CompanionProtocol.h"
#include "tests/WaitUntil.h"
#include "transport/PTPayload.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace navrel {
namespace {

constexpr quint32 kLoopback = 0x7F000001;

/// A Navrel that connects to the companion and answers by a function.
class FakeNavrel final : public PTChannelDelegate {
public:
    std::function<std::optional<QVariantMap>(quint32 type)> answer;

    static std::shared_ptr<PTChannel> connect(const std::shared_ptr<PTChannelDelegate>& navrel) {
        const auto channel = PTChannel::channelWithDelegate(navrel);
        channel->connectToPort(
            kCompanionPort, kLoopback,
            [](const std::optional<Error>& error, const auto&) { ASSERT_EQ(error, std::nullopt); });
        return channel;
    }

    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                             quint32 type, quint32 tag,
                                             const std::shared_ptr<const PTData>&) override {
        if (const auto reply = answer(type)) {
            channel->sendFrameOfType(kFrameReply, tag, createReferencingDispatchData(*reply), {});
        }
    }
};

/// A Navrel that notices when it is turned away.
class EndRecorder final : public PTChannelDelegate {
public:
    bool hasEnded = false;

    quint8 optionalOperations() const override { return kDidEnd; }
    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>&, quint32, quint32,
                                             const std::shared_ptr<const PTData>&) override {}
    void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>&,
                                       const std::optional<Error>&) override {
        hasEnded = true;
    }
};

class CompanionLinkTest : public ::testing::Test {
protected:
    void SetUp() override {
        // The listener of the test before closes its socket when the event loop gets there.
        ASSERT_TRUE(waitUntil([this] { return !link_->listen(kCompanionPort); }));
        navrel_->answer = [](quint32 type) -> std::optional<QVariantMap> {
            if (type == kFrameShortcuts) {
                return std::nullopt;
            }
            return QVariantMap{{QStringLiteral("type"), type}};
        };
    }

    void TearDown() override {
        link_->stop();
        const std::weak_ptr<CompanionLink> link = std::exchange(link_, nullptr);
        // A channel keeps itself, and its delegate, until it has ended.
        EXPECT_TRUE(waitUntil([&] { return link.expired() && navrel_.use_count() == 1; }));
    }

    LoopbackPeer peer_ = {::geteuid(), false};
    std::shared_ptr<CompanionLink> link_ = CompanionLink::create([this](int) { return peer_; });
    std::shared_ptr<FakeNavrel> navrel_ = std::make_shared<FakeNavrel>();
};

TEST_F(CompanionLinkTest, withoutANavrelNothingIsServedOrAnswered) {
    EXPECT_FALSE(link_->waitUntilServed(std::chrono::milliseconds(50)));
    EXPECT_EQ(link_->ask(kFrameProject), std::nullopt);
}

TEST_F(CompanionLinkTest, anAnswerIsMatchedToItsQuestion) {
    const auto channel = FakeNavrel::connect(navrel_);
    ASSERT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));

    const auto reply = link_->ask(kFrameProject);
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->value(QStringLiteral("type")).toUInt(), kFrameProject);
}

TEST_F(CompanionLinkTest, silenceIsNoticedAtOnce) {
    const auto channel = FakeNavrel::connect(navrel_);
    ASSERT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));

    EXPECT_EQ(link_->ask(kFrameShortcuts), std::nullopt);
}

TEST_F(CompanionLinkTest, aNavrelThatDropsItsFirstRequestsIsAskedAgain) {
    int requests = 0;
    navrel_->answer = [&requests](quint32) {
        ++requests;
        return requests < 3 ? std::nullopt : std::optional(QVariantMap{{QStringLiteral("a"), 1}});
    };
    const auto channel = FakeNavrel::connect(navrel_);

    EXPECT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));
    EXPECT_GE(requests, 3);
}

TEST_F(CompanionLinkTest, aNavrelThatGoesIsNoticedAndAnotherIsTakenInItsPlace) {
    auto channel = FakeNavrel::connect(navrel_);
    ASSERT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));
    channel->close();
    EXPECT_TRUE(waitUntil([&] { return !link_->isConnected(); }));

    channel = FakeNavrel::connect(navrel_);
    EXPECT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));
    EXPECT_TRUE(link_->ask(kFrameProject).has_value());
}

TEST_F(CompanionLinkTest, aNavrelOfAnotherUserIsTurnedAwayWithOneSentenceForEachUser) {
    QStringList sentences;
    link_->didRefuse = [&](const QString& sentence) { sentences.append(sentence); };
    for (const LoopbackPeer& peer :
         {LoopbackPeer{::geteuid() + 1, false}, LoopbackPeer{::geteuid() + 1, false},
          LoopbackPeer{std::nullopt, true}, LoopbackPeer{std::nullopt, false}}) {
        peer_ = peer;
        const auto ended = std::make_shared<EndRecorder>();
        const auto channel = FakeNavrel::connect(ended);
        ASSERT_TRUE(waitUntil([&] { return ended->hasEnded; }));
        EXPECT_FALSE(link_->isConnected());
    }
    EXPECT_EQ(
        sentences,
        (QStringList{QStringLiteral("refused a Navrel of another user (%1)").arg(::geteuid() + 1),
                     QStringLiteral("refused a Navrel of another user (unknown)")}));
    peer_ = {::geteuid(), false};
    const auto channel = FakeNavrel::connect(navrel_);
    EXPECT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));
}

TEST_F(CompanionLinkTest, whoeverConnectsIsLookedUpInTheKernelsTables) {
    link_->stop();
    link_ = CompanionLink::create();
    ASSERT_TRUE(waitUntil([this] { return !link_->listen(kCompanionPort); }));
    const auto channel = FakeNavrel::connect(navrel_);
    EXPECT_TRUE(link_->waitUntilServed(std::chrono::seconds(20)));
}

TEST_F(CompanionLinkTest, aSecondCompanionCannotListen) {
    const auto second = CompanionLink::create();
    const auto error = second->listen(kCompanionPort);
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->isPOSIX(EADDRINUSE));
    second->stop();
}

} // namespace
} // namespace navrel
