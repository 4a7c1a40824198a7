#include "desktop/InstanceLock.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>

namespace navrel {
namespace {

class InstanceLockTest : public ::testing::Test {
protected:
    QString file() const { return folder_.filePath(QStringLiteral("nl.kelvane.Navrel.lock")); }

private:
    QTemporaryDir folder_;
};

TEST_F(InstanceLockTest, theFirstTakesItAndTheSecondFindsItTaken) {
    const InstanceLock first(file());
    const InstanceLock second(file());
    EXPECT_FALSE(first.isTaken());
    EXPECT_TRUE(second.isTaken());
}

TEST_F(InstanceLockTest, itIsFreeAgainWhenTheFirstIsGoneThoughTheFileStays) {
    auto first = std::make_unique<InstanceLock>(file());
    first.reset();
    EXPECT_TRUE(QFile::exists(file()));
    EXPECT_FALSE(InstanceLock(file()).isTaken());
}

TEST_F(InstanceLockTest, whereNoFileCanBeMadeThereIsNoLock) {
    EXPECT_FALSE(InstanceLock(QStringLiteral("/nonexistent/folder/lock")).isTaken());
}

TEST_F(InstanceLockTest, aPipeInItsPlaceDoesNotBlock) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    EXPECT_FALSE(InstanceLock(file()).isTaken());
}

} // namespace
} // namespace navrel
