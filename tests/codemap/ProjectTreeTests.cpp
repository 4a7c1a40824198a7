#include "codemap/MapBuilder.h"
#include "tests/codemap/ScratchProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

using testing::HasSubstr;

class ProjectTreeTests : public testing::Test {
protected:
    static CodeMapSnapshotPtr map(const std::string& bundle) {
        return MapBuilder(bundle).build(1).snapshot;
    }
    static std::string treeOf(const std::string& bundle) {
        const CodeMapSnapshotPtr snapshot = map(bundle);
        return snapshot->root() != nullptr ? textOf(*snapshot, *snapshot->root())
                                           : std::string(snapshot->reason());
    }

    ScratchProject scratch_;
};

TEST_F(ProjectTreeTests, groupsAndFilesComeInTheProjectsOrder) {
    scratch_.write("Model/Tide.m");
    EXPECT_EQ(treeOf(scratch_.writeProject(
                  "App.xcodeproj",
                  group("MAIN", "VIEWS, MODEL") + group("VIEWS", "VIEW", "name = Views;") +
                      group("MODEL", "TIDE", "path = Model;") + fileReference("VIEW", "View.m") +
                      fileReference("TIDE", "Tide.m"))),
              "App (project)\n"
              "  Views (group)\n"
              "    View.m missing\n"
              "  Model (group)\n"
              "    Tide.m\n");
}

TEST_F(ProjectTreeTests, sourceTreesSayWhatAPathIsRelativeTo) {
    scratch_.write("Code/a.m");
    scratch_.write("Code/Deep/b.m");
    scratch_.write("c.m");
    const CodeMapSnapshotPtr snapshot = map(scratch_.writeProject(
        "Projects/App.xcodeproj",
        group("MAIN", "GROUP") + group("GROUP", "A, B, C, SDK", "path = Deep;") +
            fileReference("A", "Code/a.m", "SOURCE_ROOT") + fileReference("B", "b.m") +
            fileReference("C", scratch_.path("c.m"), "<absolute>") +
            fileReference("SDK", "Library/UIKit.framework", "SDKROOT"),
        "projectDirPath = \"..\";"));
    const auto pathOf = [&snapshot](std::size_t place) { return snapshot->nodes()[place]->path; };
    EXPECT_EQ(snapshot->nodes()[2]->absolutePath, scratch_.path("Code/a.m"));
    EXPECT_TRUE(snapshot->nodes()[2]->outside);
    EXPECT_EQ(pathOf(2), "Code/a.m");
    EXPECT_EQ(snapshot->nodes()[3]->absolutePath, scratch_.path("Deep/b.m"));
    EXPECT_TRUE(snapshot->nodes()[3]->missing);
    EXPECT_FALSE(snapshot->nodes()[4]->missing);
    EXPECT_EQ(pathOf(5), "Library/UIKit.framework");
    EXPECT_TRUE(snapshot->nodes()[5]->missing);
}

TEST_F(ProjectTreeTests, variantsAndVersionsAreGroupsOfTheirOwn) {
    scratch_.write("en.lproj/L.strings");
    scratch_.write("Model.xcdatamodeld/One.xcdatamodel/contents");
    EXPECT_EQ(
        treeOf(scratch_.writeProject(
            "App.xcodeproj",
            group("MAIN", "V, M") +
                "V = {isa = PBXVariantGroup; name = L.strings; children = (EN, DE);};\n" +
                fileReference("EN", "en.lproj/L.strings", "<group>", "name = en;") +
                fileReference("DE", "de.lproj/L.strings", "<group>", "name = de;") +
                "M = {isa = XCVersionGroup; path = Model.xcdatamodeld; children = (ONE);};\n" +
                fileReference("ONE", "One.xcdatamodel") +
                "T = {isa = PBXNativeTarget; name = App; buildPhases = (P);};\n"
                "P = {isa = PBXResourcesBuildPhase; files = (BV, BM);};\n"
                "BV = {isa = PBXBuildFile; fileRef = V;}; BM = {isa = PBXBuildFile; fileRef = M;};",
            "targets = (T);")),
        "App (project)\n"
        "  L.strings (variant) [App]\n"
        "    en [App]\n"
        "    de [App] missing\n"
        "  Model.xcdatamodeld (variant) [App]\n"
        "    One.xcdatamodel [App]\n");
}

TEST_F(ProjectTreeTests, synchronizedFoldersShowWhatIsOnDisk) {
    for (const char* file : {"App/b.swift", "App/A.swift", "App/.hidden.swift", "App/Info.plist",
                             "App/Pictures.xcassets/x.json", "App/Sub/Shared.swift"}) {
        scratch_.write(file);
    }
    EXPECT_EQ(treeOf(scratch_.writeProject(
                  "App.xcodeproj",
                  group("MAIN", "S") + synchronizedGroup("S", "App", "exceptions = (E1, E2);") +
                      "E1 = {isa = PBXFileSystemSynchronizedBuildFileExceptionSet; target = T1; "
                      "membershipExceptions = (Info.plist);};\n"
                      "E2 = {isa = PBXFileSystemSynchronizedBuildFileExceptionSet; target = T2; "
                      "membershipExceptions = (Sub/Shared.swift);};\n"
                      "T1 = {isa = PBXNativeTarget; name = App; "
                      "fileSystemSynchronizedGroups = (S);};\n"
                      "T2 = {isa = PBXNativeTarget; name = Tests;};\n",
                  "targets = (T1, T2);")),
              "App (project)\n"
              "  App (folder)\n"
              "    A.swift [App]\n"
              "    b.swift [App]\n"
              "    Info.plist\n"
              "    Pictures.xcassets [App]\n"
              "    Sub (folder)\n"
              "      Shared.swift [App] [Tests]\n");
}

TEST_F(ProjectTreeTests, aTargetBuildsFilesOfAnotherOnesFolderInAPhase) {
    for (const char* file : {"App/A.swift", "App/Left.txt", "App/run.js"}) {
        scratch_.write(file);
    }
    const std::string phaseSet =
        " = {isa = PBXFileSystemSynchronizedGroupBuildPhaseMembershipExceptionSet; ";
    EXPECT_EQ(
        treeOf(scratch_.writeProject(
            "App.xcodeproj",
            group("MAIN", "S") + synchronizedGroup("S", "App", "exceptions = (E1, E2, E3, E4);") +
                "E1" + phaseSet + "buildPhase = COPY1; membershipExceptions = (run.js);};\n" +
                "E2" + phaseSet + "buildPhase = COPY2; membershipExceptions = (A.swift);};\n" +
                "E3" + phaseSet + "buildPhase = NONE; membershipExceptions = (Left.txt);};\n" +
                "E4 = {isa = PBXFileSystemSynchronizedBuildFileExceptionSet; target = T1; "
                "membershipExceptions = (run.js, Left.txt);};\n"
                "COPY1 = {isa = PBXCopyFilesBuildPhase;};\n"
                "COPY2 = {isa = PBXCopyFilesBuildPhase;};\n"
                "T1 = {isa = PBXNativeTarget; name = App; buildPhases = (COPY1); "
                "fileSystemSynchronizedGroups = (S);};\n"
                "T2 = {isa = PBXNativeTarget; name = Tool; buildPhases = (COPY2);};\n",
            "targets = (T1, T2);")),
        "App (project)\n"
        "  App (folder)\n"
        "    A.swift [App] [Tool]\n"
        "    Left.txt\n"
        "    run.js [App]\n");
}

TEST_F(ProjectTreeTests, referencedFoldersShowWhatIsInThem) {
    scratch_.write("Data/Inner/a.json");
    EXPECT_EQ(
        treeOf(scratch_.writeProject(
            "App.xcodeproj", group("MAIN", "D") + fileReference("D", "Data", "<group>",
                                                                "lastKnownFileType = folder;"))),
        "App (project)\n"
        "  Data (folder)\n"
        "    Inner (folder)\n"
        "      a.json\n");
}

TEST_F(ProjectTreeTests, localPackagesShowTheirSourcesAndTests) {
    scratch_.write("Kit/Package.swift", "let p = Package(targets: [.target(path: \"Own\")])");
    for (const char* file : {"Kit/Own/a.swift", "Kit/Sources/b.swift", "Kit/Tests/t.swift",
                             "Kit/Docs/x.md", "Kit/.build/y.swift"}) {
        scratch_.write(file);
    }
    EXPECT_EQ(
        treeOf(scratch_.writeProject(
            "App.xcodeproj",
            group("MAIN", "") + "R = {isa = XCLocalSwiftPackageReference; relativePath = Kit;};\n",
            "packageReferences = (R);")),
        "App (project)\n"
        "  Kit (package)\n"
        "    Package.swift\n"
        "    Own (folder)\n"
        "      a.swift\n"
        "    Sources (folder)\n"
        "      b.swift\n"
        "    Tests (folder)\n"
        "      t.swift\n");
}

TEST_F(ProjectTreeTests, subprojectsThatNameEachOtherAreShownOnce) {
    scratch_.writeProject("Lib/Lib.xcodeproj", group("MAIN", "APP, A") +
                                                   fileReference("APP", "../App.xcodeproj") +
                                                   fileReference("A", "a.m"));
    EXPECT_EQ(
        treeOf(scratch_.writeProject(
            "App.xcodeproj", group("MAIN", "LIB") + fileReference("LIB", "Lib/Lib.xcodeproj"))),
        "App (project)\n"
        "  Lib (project)\n"
        "    App (project)\n"
        "    a.m missing\n");
}

TEST_F(ProjectTreeTests, objectsThatNameThemselvesAreShownOnce) {
    EXPECT_EQ(
        treeOf(scratch_.writeProject("App.xcodeproj", group("MAIN", "A, A, NOTHING, MAIN") +
                                                          group("A", "A, MAIN, F", "name = A;") +
                                                          fileReference("F", "f.c"))),
        "App (project)\n"
        "  A (group)\n"
        "    f.c missing\n");
}

TEST_F(ProjectTreeTests, deepGroupsEndAtTheLimit) {
    std::string objects = group("MAIN", "G0");
    for (int depth = 0; depth < 10'000; ++depth) {
        objects += group("G" + std::to_string(depth), "G" + std::to_string(depth + 1));
    }
    const CodeMapSnapshotPtr snapshot = map(scratch_.writeProject("App.xcodeproj", objects));
    EXPECT_EQ(snapshot->nodes().size(), kMaximumTreeDepth);
}

TEST_F(ProjectTreeTests, symbolicLinksThatLeadBackEnd) {
    scratch_.write("App/Sub/a.swift");
    ASSERT_EQ(::symlink("..", scratch_.path("App/Sub/Up").c_str()), 0);
    ASSERT_EQ(::symlink("a.swift", scratch_.path("App/Sub/b.swift").c_str()), 0);
    EXPECT_EQ(treeOf(scratch_.writeProject("App.xcodeproj",
                                           group("MAIN", "S") + synchronizedGroup("S", "App"))),
              "App (project)\n"
              "  App (folder)\n"
              "    Sub (folder)\n"
              "      a.swift\n"
              "      b.swift\n");
}

TEST_F(ProjectTreeTests, specialFilesAreNeverOpened) {
    ASSERT_EQ(::mkfifo(scratch_.path("pipe.swift").c_str(), 0600), 0);
    scratch_.write("App/a.swift");
    ASSERT_EQ(::mkfifo(scratch_.path("App/pipe.swift").c_str(), 0600), 0);
    const CodeMapSnapshotPtr snapshot = map(scratch_.writeProject(
        "App.xcodeproj",
        group("MAIN", "F, S") + fileReference("F", "pipe.swift") + synchronizedGroup("S", "App")));
    EXPECT_EQ(textOf(*snapshot, *snapshot->root()), "App (project)\n"
                                                    "  pipe.swift\n"
                                                    "  App (folder)\n"
                                                    "    a.swift\n");
    EXPECT_EQ(snapshot->nodes()[1]->outline, nullptr);
}

TEST_F(ProjectTreeTests, otherProjectsOfAWorkspaceComeOnDemand) {
    const std::string bundle = scratch_.writeProject("One/One.xcodeproj", group("MAIN", ""));
    const std::string other =
        scratch_.writeProject("Two/Two.xcodeproj", group("MAIN", "F") + fileReference("F", "f.c"));
    scratch_.write("All.xcworkspace/contents.xcworkspacedata",
                   "<Workspace><FileRef location='group:One/One.xcodeproj'/>"
                   "<Group name='More'><FileRef location='container:Two/Two.xcodeproj'/></Group>"
                   "</Workspace>");
    MapBuilder builder(bundle);
    const CodeMapSnapshotPtr before = builder.build(1).snapshot;
    EXPECT_EQ(textOf(*before, *before->root()), "One (project)\n"
                                                "  All (workspace)\n"
                                                "    More (group)\n"
                                                "      Two (project)\n");
    const CodeMapSnapshotPtr after = builder.include(other, 2)->snapshot;
    EXPECT_THAT(textOf(*after, *after->root()), HasSubstr("      Two (project)\n"
                                                          "        f.c missing\n"));
    EXPECT_EQ(treeOf(scratch_.path("All.xcworkspace")), "All (workspace)\n"
                                                        "  One (project)\n"
                                                        "  More (group)\n"
                                                        "    Two (project)\n"
                                                        "      f.c missing\n");
}

TEST_F(ProjectTreeTests, anUnreadableProjectSaysWhereItEnds) {
    scratch_.write("App.xcodeproj/project.pbxproj", "{\n objects = {\n<<<<<<< HEAD\n};}\n");
    const CodeMapSnapshotPtr snapshot = map(scratch_.path("App.xcodeproj"));
    EXPECT_EQ(snapshot->state(), MapState::unreadable);
    EXPECT_EQ(snapshot->reasonLine(), 3U);
    EXPECT_THAT(std::string(snapshot->reason()), HasSubstr("line 3"));
    EXPECT_EQ(snapshot->root(), nullptr);
    EXPECT_EQ(treeOf(scratch_.path("None.xcodeproj")), "The project has no project file.");
}

TEST_F(ProjectTreeTests, identifiersAreThoseOfTheTreeWhereverItLies) {
    const ScratchProject elsewhere;
    const std::string objects = group("MAIN", "G, A") + group("G", "B, S", "path = Sub;") +
                                fileReference("A", "a.c") + fileReference("B", "../a.c") +
                                synchronizedGroup("S", "Sync");
    std::vector<std::vector<NodeID>> identifiers;
    for (const ScratchProject* place :
         std::initializer_list<const ScratchProject*>{&scratch_, &elsewhere}) {
        place->write("Sub/Sync/x.swift");
        const auto snapshot = map(place->writeProject("App.xcodeproj", objects));
        std::vector<NodeID>& own = identifiers.emplace_back();
        for (const MapNodePtr& node : snapshot->nodes()) {
            own.push_back(node->id);
        }
    }
    EXPECT_EQ(identifiers[0], identifiers[1]);
    EXPECT_EQ(std::set(identifiers[0].begin(), identifiers[0].end()).size(), 6U);
}

TEST_F(ProjectTreeTests, namesThatAreNotUTF8AreShownAsText) {
    scratch_.write("App/a.swift");
    scratch_.rename("App/a.swift", "App/\xFF.swift");
    const CodeMapSnapshotPtr snapshot = map(
        scratch_.writeProject("App.xcodeproj", group("MAIN", "S") + synchronizedGroup("S", "App")));
    EXPECT_EQ(snapshot->nodes()[2]->name, "\xEF\xBF\xBD.swift");
    EXPECT_NE(snapshot->nodes()[2]->outline, nullptr);
    scratch_.rename("App/\xFF.swift", "App/a.swift"); // Qt could not remove it
}

} // namespace
} // namespace navrel
