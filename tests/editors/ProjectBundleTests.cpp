#include "editors/ProjectBundle.h"
#include "tests/editors/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

class ProjectBundle : public ::testing::Test {
protected:
    void makeBundle(const char* name) {
        std::filesystem::create_directories(environment.bytesOf(name).toStdString());
    }
    QByteArray bundleOf(const char* file) const { return bundleOfPath(environment.bytesOf(file)); }
    static QByteArray bundleOfPath(const QByteArray& path) {
        return nearestProjectBundle(path, QDeadlineTimer(QDeadlineTimer::Forever)).value_or("none");
    }
    QByteArray pathOf(const char* name) const { return environment.bytesOf(name); }

    ScratchEnvironment environment;
};

TEST_F(ProjectBundle, theBundleBesideTheFileIsTheProject) {
    makeBundle("work/App.xcodeproj");
    EXPECT_EQ(bundleOf("work/a.m"), pathOf("work/App.xcodeproj"));
}

TEST_F(ProjectBundle, theNearestFolderAboveCounts) {
    makeBundle("work/App.xcodeproj");
    makeBundle("work/lib/Lib.xcodeproj");
    makeBundle("work/lib/src/deep");
    EXPECT_EQ(bundleOf("work/lib/src/deep/a.m"), pathOf("work/lib/Lib.xcodeproj"));
    EXPECT_EQ(bundleOf("work/a.m"), pathOf("work/App.xcodeproj"));
}

TEST_F(ProjectBundle, aFolderWithTwoBundlesIsPassedOver) {
    makeBundle("work/App.xcodeproj");
    makeBundle("work/lib/One.xcodeproj");
    makeBundle("work/lib/Two.xcodeproj");
    EXPECT_EQ(bundleOf("work/lib/a.m"), pathOf("work/App.xcodeproj"));
}

TEST_F(ProjectBundle, withoutABundleThereIsNoProject) {
    makeBundle("work/src");
    EXPECT_EQ(bundleOf("work/src/a.m"), "");
    EXPECT_EQ(bundleOfPath("/nonexistent/folder/a.m"), "");
    EXPECT_EQ(bundleOfPath("/"), "");
}

TEST_F(ProjectBundle, aFileWithTheNameOfABundleIsNone) {
    ScratchEnvironment::write(pathOf("work/App.xcodeproj"), "");
    makeBundle("work/.xcodeproj");
    EXPECT_EQ(bundleOf("work/a.m"), "");
}

TEST_F(ProjectBundle, aFileWithinABundleBelongsToIt) {
    makeBundle("work/App.xcodeproj");
    EXPECT_EQ(bundleOf("work/App.xcodeproj/project.pbxproj"), pathOf("work/App.xcodeproj"));
}

TEST_F(ProjectBundle, namesMayBeAnyBytes) {
    makeBundle("w\n\xFF k/A \"p.xcodeproj");
    EXPECT_EQ(bundleOf("w\n\xFF k/a.m"), pathOf("w\n\xFF k/A \"p.xcodeproj"));
}

TEST_F(ProjectBundle, whereTimeIsShortNothingIsKnown) {
    makeBundle("work/App.xcodeproj");
    EXPECT_EQ(nearestProjectBundle(pathOf("work/a.m"), QDeadlineTimer(0)), std::nullopt);
}

TEST_F(ProjectBundle, whatIsNoPathHasNoProject) {
    EXPECT_EQ(bundleOfPath(""), "");
    EXPECT_EQ(bundleOfPath("a.m"), "");
    EXPECT_EQ(bundleOfPath("oil:///p/a.m"), "");
    makeBundle("work/App.xcodeproj");
    const QByteArray detour = QByteArray("/../work").repeated(1000);
    EXPECT_EQ(bundleOfPath(pathOf("work") + detour + "/a.m"), "") << "longer than a path";
}

} // namespace
} // namespace navrel
