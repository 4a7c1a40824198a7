#include "support/core/NotificationCentre.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace navrel {
namespace {

const QString kName = QStringLiteral("somethingHappened");

class NotificationCentreTest : public ::testing::Test {
protected:
    NotificationCentre::Observer noting(const QString& who) {
        return [this, who](const Notification&) { calls_.append(who); };
    }

    NotificationCentre centre_;
    int sender_ = 0;
    int otherSender_ = 0;
    QStringList calls_;
};

TEST_F(NotificationCentreTest, observersAreCalledInOrderBeforePostReturns) {
    const auto first = centre_.addObserver(kName, &sender_, noting(QStringLiteral("first")));
    const auto second = centre_.addObserver(kName, &sender_, noting(QStringLiteral("second")));
    centre_.post(kName, &sender_, {});
    EXPECT_EQ(calls_, (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
}

TEST_F(NotificationCentreTest, aNotificationCarriesNameSenderAndDictionary) {
    Notification received;
    const auto token = centre_.addObserver(
        kName, &sender_, [&](const Notification& notification) { received = notification; });
    centre_.post(kName, &sender_, {{QStringLiteral("DeviceID"), 7}});
    EXPECT_EQ(received.name, kName);
    EXPECT_EQ(received.sender, &sender_);
    EXPECT_EQ(received.userInfo, (QVariantMap{{QStringLiteral("DeviceID"), 7}}));
}

TEST_F(NotificationCentreTest, anotherNameOrAnotherSenderIsNotTold) {
    const auto token = centre_.addObserver(kName, &sender_, noting(QStringLiteral("observer")));
    centre_.post(QStringLiteral("somethingElse"), &sender_, {});
    centre_.post(kName, &otherSender_, {});
    EXPECT_EQ(calls_, QStringList());
}

TEST_F(NotificationCentreTest, anObserverIsRemovedWithItsToken) {
    auto token = centre_.addObserver(kName, &sender_, noting(QStringLiteral("observer")));
    token.reset();
    centre_.post(kName, &sender_, {});
    EXPECT_EQ(calls_, QStringList());
}

TEST_F(NotificationCentreTest, whatARemovedObserverHoldsIsReleased) {
    const auto held = std::make_shared<int>(0);
    auto token = centre_.addObserver(kName, &sender_, [held](const Notification&) {});
    EXPECT_EQ(held.use_count(), 2);
    token.reset();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(NotificationCentreTest, anObserverThatIsRemovedMeanwhileIsNotCalledAnyMore) {
    NotificationCentre::Token second;
    const auto first =
        centre_.addObserver(kName, &sender_, [&](const Notification&) { second.reset(); });
    second = centre_.addObserver(kName, &sender_, noting(QStringLiteral("second")));
    centre_.post(kName, &sender_, {});
    EXPECT_EQ(calls_, QStringList());
}

TEST_F(NotificationCentreTest, anObserverThatIsAddedMeanwhileIsCalledFromTheNextOneOn) {
    std::vector<NotificationCentre::Token> added;
    const auto adding = centre_.addObserver(kName, &sender_, [&](const Notification&) {
        added.push_back(centre_.addObserver(kName, &sender_, noting(QStringLiteral("added"))));
    });
    centre_.post(kName, &sender_, {});
    EXPECT_EQ(calls_, QStringList());
    centre_.post(kName, &sender_, {});
    EXPECT_EQ(calls_, QStringList{QStringLiteral("added")});
}

TEST_F(NotificationCentreTest, observersRunOnThePostingThread) {
    std::thread::id observedOn;
    const auto token = centre_.addObserver(
        kName, &sender_, [&](const Notification&) { observedOn = std::this_thread::get_id(); });
    std::thread poster([this] { centre_.post(kName, &sender_, {}); });
    const auto posterID = poster.get_id();
    poster.join();
    EXPECT_EQ(observedOn, posterID);
}

} // namespace
} // namespace navrel
