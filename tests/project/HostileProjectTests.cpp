#include "project/FileSurvey.h"
#include "project/ProjectWalk.h"
#include "scanning/SourceFileScanner.h"
#include "support/files/FileDates.h"
#include "support/propertylist/PropertyListIndex.h"
#include "tests/project/DataManagerFixture.h"
#include "tests/project/OpenStore.h"

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Project files whose group trees are none: they end, in bounded time and memory.
class HostileProject : public DataManagerTest {};

QByteArray numbered(const char* prefix, int number) {
    return prefix + QByteArray::number(number);
}

TEST_F(HostileProject, aGroupThatListsItselfHasOneRecord) {
    load(ProjectText().group("MAIN", {"MAIN", "MAIN"}));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

TEST_F(HostileProject, groupsThatListEachOtherEndTheWalk) {
    load(ProjectText().group("MAIN", {"A"}).group("A", {"B"}).group("B", {"A", "MAIN", "B"}));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A", "B"));
}

TEST_F(HostileProject, aCycleThroughPathsThatExistEndsTheWalk) {
    writeFolder("a");
    load(ProjectText().group("MAIN", {"A"}).group("A", {"B"}, "a").group("B", {"A"}, ".."));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A", "B"));
}

TEST_F(HostileProject, aCycleOfRecordsWhoseFilesAreGoneEndsTheWalk) {
    writeFolder("a/b");
    const auto text =
        ProjectText().group("MAIN", {"A"}).group("A", {"B"}, "a").group("B", {"A"}, "b");
    load(text);
    // Their paths are resolved again now, longer at every turn.
    ASSERT_TRUE(QDir(pathOf("a")).removeRecursively());
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

TEST_F(HostileProject, tenThousandLevelsAreWalked) {
    constexpr int kLevels = 10'000;
    ProjectText text;
    text.group("MAIN", {"G0"});
    for (int level = 0; level < kLevels; ++level) {
        text.group(numbered("G", level).constData(), {numbered("G", level + 1)});
    }
    writeFile("a.m");
    text.file(numbered("G", kLevels).constData(), "a.m");
    load(text);
    EXPECT_EQ(context().objects().size(), kLevels + 2U);
    EXPECT_EQ(object(numbered("G", kLevels).constData())->name(), "a.m");
    pass();
    pass();
    EXPECT_EQ(context().objects().size(), kLevels + 2U);
}

TEST_F(HostileProject, groupsThatShareTheirChildrenOnEveryLevelAreWalkedOnce) {
    // 2 to the power of 200 ways lead down.
    constexpr int kLevels = 200;
    ProjectText text;
    text.group("MAIN", {"L0", "R0"});
    for (int level = 0; level < kLevels; ++level) {
        const QByteArrayList children{numbered("L", level + 1), numbered("R", level + 1)};
        text.group(numbered("L", level).constData(), children);
        text.group(numbered("R", level).constData(), children);
    }
    load(text);
    pass();
    EXPECT_EQ(context().objects().size(), 2U * kLevels + 3U);
}

TEST_F(HostileProject, sharedGroupsWhoseFilesAreGoneTakeOnlyAFewPathsEach) {
    constexpr int kLevels = 200;
    const auto withPaths = [](const char* left, const char* right) {
        ProjectText text;
        text.group("MAIN", {"L0", "R0"});
        for (int level = 0; level < kLevels; ++level) {
            const QByteArrayList children{numbered("L", level + 1), numbered("R", level + 1)};
            text.group(numbered("L", level).constData(), children, left);
            text.group(numbered("R", level).constData(), children, right);
        }
        return text;
    };
    load(withPaths("", ""));
    // Every record is rebuilt, under another path for every way that leads to it.
    writeProject(withPaths("missing", "gone"));
    touch(".", 1'600'000'000);
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

TEST_F(HostileProject, pathsBeyondTheSystemsLengthNameNothing) {
    const QByteArray longName(100'000, 'x');
    load(ProjectText()
             .group("MAIN", {"A", "B"})
             .file("A", longName)
             .entry("B", "isa = PBXFileReference; path = \"a\\000b\";"));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

/// How many paths a walk over a project asks the file system about.
std::size_t pathsAskedAbout(ManagedObjectContext& context, const QByteArray& folder,
                            const ProjectText& text) {
    PropertyListDocument document;
    EXPECT_TRUE(document.read(text.text()));
    PropertyListIndex objects;
    objects.build(document.root()["objects"]);
    SourceFileScanner scanner;
    FileSurvey survey;
    ScanAllowance allowance;
    ProjectWalk(context, &objects, scanner, survey, nullptr, allowance)
        .generateObjectForID("MAIN", folder, std::nullopt, 0);
    return survey.size();
}

TEST_F(HostileProject, megabytesOfPathCostNothingForEachGroupThatListsThem) {
    constexpr int kGroups = 100;
    QByteArrayList groups;
    ProjectText text;
    text.file("LONG", QByteArray(2'000'000, 'x'));
    for (int group = 0; group < kGroups; ++group) {
        const QByteArray identifier = numbered("G", group);
        writeFolder(identifier.constData());
        text.group(identifier.constData(), {"LONG"}, identifier);
        groups.append(identifier);
    }
    text.group("MAIN", groups);
    EXPECT_EQ(pathsAskedAbout(context(), folder().toUtf8(), text), kGroups + 1U);
    EXPECT_EQ(identifiers().size(), kGroups + 1U);
}

TEST_F(HostileProject, megabytesOfPathCostNothingEachTimeAGroupListsThem) {
    writeFolder(".");
    QByteArrayList children;
    for (int time = 0; time < 2'000; ++time) {
        children.append("LONG");
    }
    const auto text =
        ProjectText().group("MAIN", children).file("LONG", QByteArray(2'000'000, 'x'));
    EXPECT_EQ(pathsAskedAbout(context(), folder().toUtf8(), text), 1U);
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

TEST_F(HostileProject, aPathBelowOneThatIsTooLongNamesNothing) {
    const QByteArray folder(kMaximumPathLength + 1, '/');
    EXPECT_EQ(pathsAskedAbout(context(), folder, ProjectText().group("MAIN", {})), 0U);
    EXPECT_THAT(identifiers(), IsEmpty());
}

TEST_F(HostileProject, aRecordWhoseNewPathIsTooLongKeepsItsOldOneUntilItsFileIsGone) {
    writeFile("G/a.m");
    load(ProjectText().group("MAIN", {"G"}).group("G", {"A"}, "G").file("A", "a.m"));
    writeProject(ProjectText()
                     .group("MAIN", {"G"})
                     .group("G", {"A"}, QByteArray(100'000, 'x'))
                     .file("A", "a.m"));
    touch("G", 1'600'000'000);
    pass();
    EXPECT_EQ(object("G")->path(), pathOf("G").toUtf8());

    ASSERT_TRUE(QDir(pathOf("G")).removeRecursively());
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

TEST_F(HostileProject, aHundredThousandFilesAreLoaded) {
    constexpr int kFiles = 100'000;
    writeFile("a.txt");
    ProjectText text;
    QByteArrayList children;
    for (int file = 0; file < kFiles; ++file) {
        children.append(numbered("F", file));
        text.file(children.back().constData(), "a.txt");
    }
    load(text.group("MAIN", children));
    EXPECT_EQ(context().objects().size(), kFiles + 1U);
    EXPECT_EQ(object("F99999")->index(), 99'999);
}

TEST_F(HostileProject, moreFilesThanAStoreHoldsAreLeftOutAndTheStoreOpensAgain) {
    for (const char* name : {"a.m", "b.m", "c.m"}) {
        writeFile(name);
    }
    load(ProjectText().group("MAIN", {}));
    const std::optional<QByteArray> existing = folder().toUtf8();
    for (std::size_t size = context().objects().size() + 1; size < kMaximumObjects; ++size) {
        context().insertObject().setPath(existing);
    }
    writeProject(ProjectText()
                     .group("MAIN", {"A", "B", "C"})
                     .file("A", "a.m")
                     .file("B", "b.m")
                     .file("C", "c.m"));
    touch(".", 1'600'000'000);
    takeLog();
    pass();
    EXPECT_NE(object("A"), nullptr);
    EXPECT_EQ(object("B"), nullptr);
    EXPECT_EQ(context().objects().size(), kMaximumObjects);
    EXPECT_THAT(takeLog(), ElementsAre("The project is too large: not all of it is shown"));

    endManager();
    const OpenStore stored(storePath());
    EXPECT_EQ(stored->objects().size(), kMaximumObjects);
}

TEST_F(HostileProject, fileTypesHaveALimit) {
    writeFile("a.txt");
    load(ProjectText().group("MAIN", {}));
    while (context().hasRoomForFiletype()) {
        context().insertFiletype();
    }
    writeProject(ProjectText().group("MAIN", {"A"}).file("A", "a.txt"));
    pass();
    EXPECT_NE(object("A"), nullptr);
    EXPECT_EQ(context().filetypes().size(), kMaximumFiletypes);
}

} // namespace
} // namespace navrel
