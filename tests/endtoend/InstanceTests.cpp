// Starting the real program: once a session, without arguments, with files where people look for
// them.

#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace navrel {
namespace {

class InstanceTest : public ::testing::Test {
protected:
    QByteArray defaults() const {
        QFile file(navrel_.defaultsFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    SmallProject project_;
    NavrelProcess navrel_;
    TestDevice device_;
};

TEST_F(InstanceTest, aSecondStartInTheSessionEndsWithAMessage) {
    navrel_.setLastKnownProject(project_.bundle());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([&] { return QFileInfo::exists(navrel_.storeFile()); }));

    const auto second = navrel_.runSecondInstance();
    EXPECT_EQ(second.exitStatus, 1);
    EXPECT_EQ(second.standardError, "Navrel is already running\n");
    EXPECT_TRUE(navrel_.isRunning());
}

TEST_F(InstanceTest, aKilledInstanceLeavesNoLock) {
    navrel_.setLastKnownProject(project_.bundle());
    ASSERT_TRUE(device_.listen());
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(navrel_.start());
        ASSERT_TRUE(device_.waitForConnection());
        navrel_.kill();
    }
}

TEST_F(InstanceTest, unknownArgumentsAreRefused) {
    const auto outcome = navrel_.runSecondInstance({QStringLiteral("Tide.xcodeproj")});
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_EQ(outcome.standardError,
              "navrel: unknown argument: Tide.xcodeproj\nTry \"navrel --help\".\n");
}

TEST_F(InstanceTest, helpIsPrintedBesideARunningInstance) {
    ASSERT_TRUE(navrel_.start());
    const auto outcome = navrel_.runSecondInstance({QStringLiteral("--help")});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.standardError, "");
}

TEST_F(InstanceTest, theStoreIsOneFileInTheDataFolder) {
    project_.writeFile(QStringLiteral("a.h"), "\n");
    project_.addEntry("A", "a.h");
    navrel_.setLastKnownProject(project_.bundle());
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());
    ASSERT_TRUE(waitUntil([&] { return device_.ask(202).has_value(); }));

    const QFileInfo store(navrel_.storeFile());
    EXPECT_TRUE(waitUntil([&] {
        return store.dir().entryList(QDir::Files) ==
               QStringList{QStringLiteral("OSXCoreDataObjC.storedata")};
    }));
}

TEST_F(InstanceTest, onTheFirstStartWithoutADisplayNoProjectIsPickedAndNoneIsRemembered) {
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());

    EXPECT_EQ(device_.ask(202), std::nullopt);
    EXPECT_EQ(device_.ask(209), std::nullopt);
    EXPECT_EQ(defaults(), "");
}

TEST_F(InstanceTest, aStoreFolderThatIsAFileIsReportedAndNothingIsShown) {
    const QString folder = QFileInfo(navrel_.storeFile()).path();
    QDir().mkpath(QFileInfo(folder).path());
    QFile file(folder);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    navrel_.setLastKnownProject(project_.bundle());
    ASSERT_TRUE(device_.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device_.waitForConnection());
    ASSERT_TRUE(device_.waitUntilServed());

    EXPECT_TRUE(navrel_.waitForLog("Failed to initialize the application's saved data"));
    EXPECT_TRUE(navrel_.waitForLog("Expected a folder to store application data, found a file (" +
                                   folder.toUtf8() + ")."));
    EXPECT_EQ(device_.ask(202), std::nullopt);
    EXPECT_TRUE(device_.ask(205).has_value());
}

} // namespace
} // namespace navrel
