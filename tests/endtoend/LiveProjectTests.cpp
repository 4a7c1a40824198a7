// The real program on a project that changes under it, seen by a device.

#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <QStringList>
#include <QVariantList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

class LiveProjectTest : public ::testing::Test {
protected:
    void SetUp() override {
        project_.writeFile(QStringLiteral("a.h"), "@interface a : Base\n@end\n");
        project_.writeFile(QStringLiteral("b.m"), "- (void)run {\n}\n");
        project_.addEntry("A", "a.h");
        project_.addEntry("B", "b.m");
        navrel_.setLastKnownProject(project_.bundle());
        ASSERT_TRUE(device_.listen());
        startNavrel();
    }

    void startNavrel() {
        ASSERT_TRUE(navrel_.start());
        ASSERT_TRUE(device_.waitForConnection());
        ASSERT_TRUE(device_.waitUntilServed());
        ASSERT_TRUE(waitUntil([this] { return device_.ask(202).has_value(); }));
    }

    /// The names in the main group, as the device shows them.
    QStringList names() {
        QStringList result;
        const auto root = device_.ask(202);
        for (const QVariant& item : root.value_or(QVariantMap()).value(kItems).toList()) {
            result.append(item.toMap().value(QStringLiteral("name")).toString());
        }
        return result;
    }

    bool waitForNames(const QStringList& wanted) {
        return waitUntil([&] { return names() == wanted; });
    }

    /// What a file type is switched to; nothing for an unknown one.
    std::optional<bool> isAllowed(const QString& extension) {
        const auto types = device_.ask(205);
        for (const QVariant& item : types.value_or(QVariantMap()).value(kItems).toList()) {
            if (item.toMap().value(QStringLiteral("extension")).toString() == extension) {
                return item.toMap().value(QStringLiteral("allowed")).toBool();
            }
        }
        return std::nullopt;
    }

    const QString kItems = QStringLiteral("items");
    SmallProject project_;
    NavrelProcess navrel_;
    TestDevice device_;
};

TEST_F(LiveProjectTest, theProjectIsShownInTheLanguagesOrder) {
    EXPECT_EQ(names(), (QStringList{QStringLiteral("a.h"), QStringLiteral("b.m")}));
    const auto project = device_.ask(209);
    ASSERT_TRUE(project.has_value());
    EXPECT_EQ(project->value(QStringLiteral("project")).toString(), project_.folder());
}

TEST_F(LiveProjectTest, aFileAddedToTheProjectAppears) {
    project_.writeFile(QStringLiteral("B2.swift"), "class C {}\n");
    project_.addEntry("C", "B2.swift");
    EXPECT_TRUE(
        waitForNames({QStringLiteral("a.h"), QStringLiteral("b.m"), QStringLiteral("B2.swift")}));
    EXPECT_EQ(isAllowed(QStringLiteral("swift")), true);
}

TEST_F(LiveProjectTest, anEntryWhoseFileComesLaterAppearsWithIt) {
    project_.addEntry("C", "c.h");
    ASSERT_TRUE(waitUntil([&] { return names().size() == 2; }));
    project_.writeFile(QStringLiteral("c.h"), "\n");
    EXPECT_TRUE(
        waitForNames({QStringLiteral("a.h"), QStringLiteral("b.m"), QStringLiteral("c.h")}));
}

TEST_F(LiveProjectTest, aDeletedFileDisappearsAndIsLogged) {
    project_.removeFile(QStringLiteral("a.h"));
    EXPECT_TRUE(waitForNames({QStringLiteral("b.m")}));
    EXPECT_TRUE(navrel_.waitForLog("Deleted a.h\n"));
}

TEST_F(LiveProjectTest, aMovedFileIsFoundUnderItsNewName) {
    project_.moveFile(QStringLiteral("a.h"), QStringLiteral("z.h"));
    project_.renameEntry("A", "z.h");
    EXPECT_TRUE(waitForNames({QStringLiteral("b.m"), QStringLiteral("z.h")}));
}

TEST_F(LiveProjectTest, aRemovedEntryWhoseFileStillExistsStays) {
    project_.removeEntry("A");
    project_.writeFile(QStringLiteral("c.h"), "\n");
    project_.addEntry("C", "c.h");
    EXPECT_TRUE(
        waitForNames({QStringLiteral("a.h"), QStringLiteral("b.m"), QStringLiteral("c.h")}));
}

TEST_F(LiveProjectTest, aProjectFileThatCannotBeReadLeavesNothingToShowUntilItCan) {
    const QString file = QStringLiteral("App.xcodeproj/project.pbxproj");
    project_.writeFile(file, "<<<<<<< HEAD\n{\n");
    EXPECT_TRUE(waitUntil([&] { return !device_.ask(202).has_value(); }));

    project_.addEntry("A", "a.h"); // writes it again
    EXPECT_TRUE(waitForNames({QStringLiteral("a.h"), QStringLiteral("b.m")}));
    EXPECT_FALSE(navrel_.log().contains("Deleted"));
}

TEST_F(LiveProjectTest, aFileTypeSwitchedOffHidesItsFilesAndSurvivesARestart) {
    device_.ask(
        206, {{QStringLiteral("extension"), QStringLiteral("m")}, {QStringLiteral("allowed"), 0}});
    EXPECT_TRUE(waitForNames({QStringLiteral("a.h")}));

    // The next pass saves it: a change of the project, once seen, proves that one has run.
    project_.writeFile(QStringLiteral("c.h"), "\n");
    project_.addEntry("C", "c.h");
    ASSERT_TRUE(waitForNames({QStringLiteral("a.h"), QStringLiteral("c.h")}));
    navrel_.kill();
    device_.disconnect();
    startNavrel();

    EXPECT_EQ(isAllowed(QStringLiteral("m")), false);
    EXPECT_TRUE(waitForNames({QStringLiteral("a.h"), QStringLiteral("c.h")}));
}

} // namespace
} // namespace navrel
