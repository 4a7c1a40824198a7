#include "desktop/InstanceLock.h"

#include <QDir>
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
    QString store() const { return folder_.filePath(QStringLiteral("data/store")); }
    QString otherStore() const { return folder_.filePath(QStringLiteral("data/other")); }

private:
    QTemporaryDir folder_;
};

TEST_F(InstanceLockTest, theFirstTakesItAndTheSecondFindsItTaken) {
    const InstanceLock first(file(), store());
    const InstanceLock second(file(), store());
    EXPECT_FALSE(first.isTaken());
    EXPECT_TRUE(second.isTaken());
}

TEST_F(InstanceLockTest, oneInstanceASessionWhateverTheStore) {
    const InstanceLock first(file(), store());
    EXPECT_TRUE(InstanceLock(file(), otherStore()).isTaken());
}

TEST_F(InstanceLockTest, itIsFreeAgainWhenTheFirstIsGoneThoughTheFileStays) {
    auto first = std::make_unique<InstanceLock>(file(), store());
    first.reset();
    EXPECT_TRUE(QFile::exists(file()));
    EXPECT_FALSE(InstanceLock(file(), store()).isTaken());
}

TEST_F(InstanceLockTest, withoutARuntimeFolderTheStoresFolderIsLocked) {
    const InstanceLock first(std::nullopt, store());
    EXPECT_FALSE(first.isTaken());
    EXPECT_TRUE(InstanceLock(std::nullopt, store()).isTaken());
    EXPECT_TRUE(InstanceLock(file(), store()).isTaken());
    EXPECT_FALSE(InstanceLock(std::nullopt, otherStore()).isTaken());
}

TEST_F(InstanceLockTest, whatIsNoFileOfOurOwnMakesTheStoresFolderTheLock) {
    const QString nowhere = QStringLiteral("/nonexistent/folder/lock");
    const InstanceLock first(nowhere, store());
    EXPECT_FALSE(first.isTaken());
    EXPECT_TRUE(InstanceLock(nowhere, store()).isTaken());

    ASSERT_EQ(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    EXPECT_TRUE(InstanceLock(file(), store()).isTaken());
    ASSERT_TRUE(QFile::remove(file()));
    ASSERT_TRUE(QFile::link(store(), file()));
    EXPECT_TRUE(InstanceLock(file(), store()).isTaken());
    ASSERT_TRUE(QFile::remove(file()));
    ASSERT_TRUE(QDir().mkdir(file()));
    EXPECT_TRUE(InstanceLock(file(), store()).isTaken());
}

TEST_F(InstanceLockTest, aStoreFolderThatIsAFileIsNoObstacle) {
    ASSERT_TRUE(QDir().mkpath(QFileInfo(store()).path()));
    QFile obstacle(store());
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    EXPECT_FALSE(InstanceLock(file(), store()).isTaken());
}

TEST_F(InstanceLockTest, theStoresFolderIsMadeForTheUserAlone) {
    const InstanceLock lock(file(), store());
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(store()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

} // namespace
} // namespace navrel
