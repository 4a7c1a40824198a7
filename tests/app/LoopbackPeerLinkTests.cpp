// Who may be the companion: only what runs as this user or as root.

#include "tests/ForeignListener.h"
#include "tests/app/ServedProject.h"

#include <unistd.h>

namespace navrel {
namespace {

/// Peers of whomever the test says.
class LoopbackPeerOwnerTest : public ServedProject {
protected:
    LoopbackPeerOwnerTest() {
        loopbackPeer_ = [this](int) { return peer_; };
    }

    bool isServed() const { return delegate_->connectedChannel() != nullptr; }

    /// Waits for an attempt of the program at such a peer, which is turned away.
    [[nodiscard]] bool isTurnedAway(const LoopbackPeer& peer) {
        peer_ = peer;
        return waitForReconnection(device_) && device_.waitForEnd() && !isServed();
    }

    LoopbackPeer peer_;
};

const LoopbackPeer kForeignPeer = {::geteuid() + 1, false};
const LoopbackPeer kUnknownPeer = {std::nullopt, false};
const LoopbackPeer kGonePeer = {std::nullopt, true};

QString refusalOf(const QString& user) {
    return QStringLiteral("Refused to serve 127.0.0.1:2345: it belongs to another user (%1)")
        .arg(user);
}

QString refusalOf(const LoopbackPeer& peer) {
    return refusalOf(QString::number(*peer.owner));
}

TEST_F(LoopbackPeerOwnerTest, isServedAsThisUserAndAsRoot) {
    for (const uid_t user : {::geteuid(), uid_t{0}}) {
        peer_ = {user, false};
        if (!delegate_) {
            launch();
            delegate_->activate();
        } else {
            device_.disconnect();
            ASSERT_TRUE(waitForReconnection(device_));
        }
        ASSERT_TRUE(device_.ask(211).has_value()) << user;
    }
}

TEST_F(LoopbackPeerOwnerTest, isTurnedAwayAsAnotherUserWhichIsLoggedOnceAndTriedAgain) {
    peer_ = kForeignPeer;
    launch();
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(isTurnedAway(kForeignPeer));
    EXPECT_EQ(log_.messages(), QStringList{refusalOf(kForeignPeer)});
}

TEST_F(LoopbackPeerOwnerTest, isLoggedOnceForEachUser) {
    const LoopbackPeer other = {::geteuid() + 2, false};
    peer_ = kForeignPeer;
    launch();
    ASSERT_TRUE(device_.waitForEnd());
    for (const LoopbackPeer& peer : {other, kForeignPeer, kUnknownPeer, other, kUnknownPeer}) {
        ASSERT_TRUE(isTurnedAway(peer));
    }
    EXPECT_EQ(log_.messages(), (QStringList{refusalOf(kForeignPeer), refusalOf(other),
                                            refusalOf(QStringLiteral("unknown"))}));
}

TEST_F(LoopbackPeerOwnerTest, isTurnedAwayWhenNobodyKnowsWhoItIs) {
    peer_ = kUnknownPeer;
    launch();
    ASSERT_TRUE(device_.waitForEnd());
    ASSERT_TRUE(isTurnedAway(kUnknownPeer));
    EXPECT_EQ(log_.messages(), QStringList{refusalOf(QStringLiteral("unknown"))});
}

TEST_F(LoopbackPeerOwnerTest, isAConnectionThatEndsUnservedWhenItHadGoneBeforeItsOwnerWasKnown) {
    peer_ = kGonePeer;
    launch();
    ASSERT_TRUE(device_.waitForEnd());
    delegate_->activate();
    ASSERT_TRUE(waitUntil([&] { return log_.messages().size() >= 2; }));
    EXPECT_EQ(log_.messages().first(2),
              (QStringList{QStringLiteral("Connected to 127.0.0.1:2345"),
                           QStringLiteral("Disconnected from 127.0.0.1:2345")}));
    ASSERT_TRUE(waitForReconnection(device_));                       // it is made again
    static_cast<void>(device_.sendBytes(TestDevice::frame(211, 1))); // unless it is closed already
    EXPECT_FALSE(device_.nextFrame().has_value());
    EXPECT_TRUE(waitUntil([&] { return !isServed(); }));
}

TEST_F(LoopbackPeerOwnerTest, saysNothingAboutTheNextOneWhenItHadGoneBeforeItsOwnerWasKnown) {
    peer_ = kForeignPeer;
    launch();
    ASSERT_TRUE(device_.waitForEnd());
    for (const LoopbackPeer& peer : {kGonePeer, kForeignPeer}) {
        peer_ = peer;
        ASSERT_TRUE(waitForReconnection(device_));
        ASSERT_TRUE(device_.waitForEnd());
    }
    EXPECT_EQ(log_.messages().count(refusalOf(kForeignPeer)), 1);
}

TEST_F(LoopbackPeerOwnerTest, isLoggedAgainOnceAnotherWasServed) {
    peer_ = kForeignPeer;
    launch();
    ASSERT_TRUE(device_.waitForEnd());
    peer_ = {::geteuid(), false};
    ASSERT_TRUE(waitForReconnection(device_));
    ASSERT_TRUE(waitUntil([&] { return isServed(); }));
    device_.disconnect();
    ASSERT_TRUE(isTurnedAway(kForeignPeer));
    EXPECT_EQ(
        log_.messages(),
        (QStringList{refusalOf(kForeignPeer), QStringLiteral("Connected to 127.0.0.1:2345"),
                     QStringLiteral("Disconnected from 127.0.0.1:2345"), refusalOf(kForeignPeer)}));
}

class LoopbackPeerLinkTest : public ServedProject {
protected:
    void SetUp() override {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root can become another user";
        }
    }
};

TEST_F(LoopbackPeerLinkTest, aPeerOfAnotherUserIsNotServedWhichIsLoggedOnce) {
    const ForeignListener listener;
    ASSERT_TRUE(listener.isReady());
    launchUnconnected();
    ASSERT_TRUE(waitUntil([&] { return !log_.messages().isEmpty(); }));
    EXPECT_EQ(
        log_.messages()[0],
        QStringLiteral("Refused to serve 127.0.0.1:2345: it belongs to another user (65534)"));
    passTime(std::chrono::milliseconds(2500));
    EXPECT_EQ(delegate_->connectedChannel(), nullptr);
    EXPECT_EQ(log_.messages().size(), 1);
}

TEST_F(LoopbackPeerLinkTest, afterAForeignPeerAnOwnOneIsFoundAndServed) {
    {
        const ForeignListener listener;
        ASSERT_TRUE(listener.isReady());
        launchUnconnected();
        ASSERT_TRUE(waitUntil([&] { return !log_.messages().isEmpty(); }));
    }
    delegate_->activate();
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(waitForReconnection(device_));
    EXPECT_TRUE(device_.ask(211).has_value());
}

} // namespace
} // namespace navrel
