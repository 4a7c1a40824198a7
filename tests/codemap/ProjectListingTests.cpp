#include "codemap/tree/ProjectListing.h"
#include "tests/codemap/ScratchProject.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

class ProjectListingTests : public testing::Test {
protected:
    std::optional<std::string> projectOf(const std::string& file) {
        return listing_.projectListingFile(scratch_.path(file));
    }

    ScratchProject scratch_;
    ProjectListing listing_;
};

TEST_F(ProjectListingTests, findsAProjectAboveTheFile) {
    const std::string bundle = scratch_.writeProject(
        "App.xcodeproj", group("MAIN", "A") + fileReference("A", "Deep/er/a.m"));
    EXPECT_EQ(projectOf("Deep/er/a.m"), bundle);
    EXPECT_EQ(projectOf("Deep/er/b.m"), std::nullopt);
}

TEST_F(ProjectListingTests, findsAProjectInAFolderBeside) {
    const std::string bundle = scratch_.writeProject(
        "Projects/App.xcodeproj", group("MAIN", "A") + fileReference("A", "../Sources/a.m"));
    EXPECT_EQ(projectOf("Sources/a.m"), bundle);
}

TEST_F(ProjectListingTests, ofSeveralTheOneThatListsTheFileIsIt) {
    scratch_.writeProject("One.xcodeproj", group("MAIN", "A") + fileReference("A", "one.m"));
    const std::string two =
        scratch_.writeProject("Two.xcodeproj", group("MAIN", "A") + fileReference("A", "two.m"));
    EXPECT_EQ(projectOf("two.m"), two);
}

TEST_F(ProjectListingTests, followsWhatProjectsAndFoldersBecome) {
    const std::string bundle =
        scratch_.writeProject("App.xcodeproj", group("MAIN", "S") + synchronizedGroup("S", "App"));
    scratch_.write("App/a.swift");
    EXPECT_EQ(projectOf("App/a.swift"), bundle);
    EXPECT_EQ(projectOf("App/new.swift"), std::nullopt);
    scratch_.write("App/Sub/new.swift");
    EXPECT_EQ(projectOf("App/Sub/new.swift"), bundle);
    scratch_.remove("App.xcodeproj");
    EXPECT_EQ(projectOf("App/a.swift"), std::nullopt);
}

TEST_F(ProjectListingTests, hundredsOfBundlesAreNotAllLookedAt) {
    for (int bundle = 0; bundle < 220; ++bundle) {
        scratch_.writeProject("P" + std::to_string(1000 + bundle) + ".xcodeproj",
                              group("MAIN", ""));
    }
    const std::string last =
        scratch_.writeProject("Z.xcodeproj", group("MAIN", "A") + fileReference("A", "a.m"));
    EXPECT_EQ(projectOf("a.m"), std::nullopt);
}

} // namespace
} // namespace navrel
