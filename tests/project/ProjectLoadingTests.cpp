#include "project/store/SQLiteDatabase.h"
#include "support/propertylist/PropertyListIndex.h"
#include "tests/FakeMenuItem.h"
#include "tests/project/DataManagerFixture.h"

#include <array>
#include <functional>
#include <memory>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class ProjectLoading : public DataManagerTest {};

TEST_F(ProjectLoading, withoutAProjectAPassDoesNothing) {
    FakeMenuItem item;
    manager().setCurrentProjectItem(&item);
    pass();
    EXPECT_EQ(manager().projectPath(), std::nullopt);
    EXPECT_EQ(item.title, std::nullopt);
    EXPECT_FALSE(QFile::exists(storePath()));
}

TEST_F(ProjectLoading, theMenuEntryShowsTheBundlesName) {
    FakeMenuItem item;
    manager().setCurrentProjectItem(&item);
    load(ProjectText().group("MAIN", {}));
    EXPECT_EQ(item.title, QStringLiteral("Current project: App.xcodeproj"));
}

TEST_F(ProjectLoading, aPassKeepsWhatItReadOfTheProject) {
    load(ProjectText().group("MAIN", {"A"}));
    EXPECT_EQ(manager().projectPath(), folder());
    EXPECT_EQ(manager().rootID(), QStringLiteral("MAIN"));
    ASSERT_NE(manager().pbxObjects(), nullptr);
    EXPECT_TRUE(manager().pbxObjects()->find("PROJECT").isDictionary());
}

TEST_F(ProjectLoading, aMainGroupWithoutAPathLiesWhereTheBundleLies) {
    load(ProjectText().group("MAIN", {}));
    ASSERT_NE(object("MAIN"), nullptr);
    EXPECT_EQ(object("MAIN")->path(), folder().toUtf8());
    EXPECT_EQ(object("MAIN")->parentID(), std::nullopt);
    EXPECT_EQ(object("MAIN")->index(), 0);
    EXPECT_EQ(object("MAIN")->name(), "work");
    EXPECT_EQ(object("MAIN")->isGroup(), true);
    EXPECT_EQ(object("MAIN")->extension(), std::nullopt);
    EXPECT_EQ(object("MAIN")->type(), std::nullopt);
    EXPECT_EQ(object("MAIN")->subclassOf(), std::nullopt);
}

TEST_F(ProjectLoading, aGroupWithANameButNoPathStandsForItsParentsFolder) {
    writeFile("Sources/a.m");
    load(ProjectText()
             .group("MAIN", {"SRC"})
             .group("SRC", {"LABEL"}, "Sources")
             .group("LABEL", {"A"}, "", "Only a label")
             .file("A", "a.m"));
    EXPECT_EQ(object("LABEL")->path(), pathOf("Sources").toUtf8());
    EXPECT_EQ(object("LABEL")->name(), "Only a label");
    EXPECT_EQ(object("A")->path(), pathOf("Sources/a.m").toUtf8());
}

TEST_F(ProjectLoading, aFileReferenceGivesARecordWithAllItsAttributes) {
    writeFile("b.m");
    writeFile("Sources/a.m");
    touch("Sources/a.m", 1'600'000'000);
    load(ProjectText()
             .group("MAIN", {"B", "SRC"})
             .file("B", "b.m")
             .group("SRC", {"X", "A"}, "Sources")
             .file("A", "a.m", "sourcecode.c.objc"));
    const CDObject& a = *object("A");
    EXPECT_EQ(a.extension(), "m");
    EXPECT_EQ(a.identifier(), "A");
    EXPECT_EQ(a.index(), 1);
    EXPECT_EQ(a.isGroup(), false);
    EXPECT_EQ(a.modified(), 1'600'000'000'000'000'001);
    EXPECT_EQ(a.name(), "a.m");
    EXPECT_EQ(a.parentID(), "SRC");
    EXPECT_EQ(a.path(), pathOf("Sources/a.m").toUtf8());
    EXPECT_EQ(a.subclassOf(), std::nullopt);
    EXPECT_EQ(a.type(), "sourcecode.c.objc");
    EXPECT_EQ(object("B")->type(), "unknown");
}

TEST_F(ProjectLoading, anEntrysNameWinsOverThatOfItsPath) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m", "", "Shown"));
    EXPECT_EQ(object("A")->name(), "Shown");
}

TEST_F(ProjectLoading, theSourceTreeOfAnEntryIsIgnoredOnPurpose) {
    writeFile("Sources/a.m");
    load(ProjectText()
             .group("MAIN", {"SRC"})
             .group("SRC", {"A"}, "Sources")
             .entry("A", "isa = PBXFileReference; path = \"a.m\"; sourceTree = SOURCE_ROOT;"));
    EXPECT_EQ(object("A")->path(), pathOf("Sources/a.m").toUtf8());
}

TEST_F(ProjectLoading, theWalkIsDepthFirstParentsFirstInProjectOrder) {
    writeFolder("G");
    writeFile("G/b");
    writeFile("G/a");
    writeFile("c");
    load(ProjectText()
             .group("MAIN", {"G1", "C"})
             .group("G1", {"B", "G2", "A"}, "G")
             .group("G2", {"D"})
             .file("B", "b")
             .file("A", "a")
             .file("D", "a")
             .file("C", "c"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "G1", "B", "G2", "D", "A", "C"));
    EXPECT_EQ(object("C")->index(), 1);
    EXPECT_EQ(object("A")->index(), 2);
}

TEST_F(ProjectLoading, otherKindsAreGroupsOnlyWhereTheirPathEndsInXib) {
    writeFile("Main.xib");
    writeFile("Other.strings");
    load(ProjectText()
             .group("MAIN", {"XIB", "STRINGS", "NOPATH"})
             .entry("XIB", "isa = PBXVariantGroup; path = \"Main.xib\"; lastKnownFileType = x;")
             .entry("STRINGS", "isa = PBXVariantGroup; path = \"Other.strings\";")
             .entry("NOPATH", "isa = PBXVariantGroup; name = \"Main.xib\";"));
    EXPECT_EQ(object("XIB")->isGroup(), true);
    EXPECT_EQ(object("STRINGS")->isGroup(), false);
    EXPECT_EQ(object("NOPATH")->isGroup(), false);
    EXPECT_EQ(object("XIB")->extension(), std::nullopt);
    EXPECT_EQ(object("XIB")->type(), std::nullopt);
    EXPECT_THAT(context().filetypes(), IsEmpty());
    EXPECT_THAT(takeScans(), IsEmpty());
}

TEST_F(ProjectLoading, aGroupNamedLikeAnInterfaceFileIsAGroupWithoutExtension) {
    writeFolder("a.xib");
    load(ProjectText().group("MAIN", {"G"}).group("G", {}, "a.xib"));
    EXPECT_EQ(object("G")->isGroup(), true);
    EXPECT_EQ(object("G")->extension(), std::nullopt);
}

TEST_F(ProjectLoading, filesThatAreMissingWhenFirstSeenLeaveNoTrace) {
    writeFile("b.m");
    load(ProjectText()
             .group("MAIN", {"A", "G", "B"})
             .file("A", "missing.m")
             .group("G", {"B2"}, "missing")
             .file("B2", "../b.m")
             .file("B", "b.m"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "B"));
    EXPECT_EQ(object("B")->index(), 2);
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(ProjectLoading, aFileThatAppearsGetsItsRecordInTheNextPass) {
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
    writeFile("a.m");
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A"));
}

TEST_F(ProjectLoading, anIdentifierThatNamesNoObjectStandsForItsParentsFolder) {
    load(ProjectText().group("MAIN", {"NOWHERE"}));
    ASSERT_NE(object("NOWHERE"), nullptr);
    EXPECT_EQ(object("NOWHERE")->path(), folder().toUtf8());
    EXPECT_EQ(object("NOWHERE")->name(), "work");
    EXPECT_EQ(object("NOWHERE")->isGroup(), false);
}

TEST_F(ProjectLoading, identifiersAreOpaqueTexts) {
    writeFile("a.m");
    load(ProjectText()
             .group("MAIN", {"OBJ_18", "Foo::Bar", "a/b c", "🙂"})
             .file("OBJ_18", "a.m")
             .file("Foo::Bar", "a.m")
             .file("a/b c", "a.m")
             .file("🙂", "a.m"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "OBJ_18", "Foo::Bar", "a/b c", "🙂"));
}

TEST_F(ProjectLoading, namesOfEveryKindArriveAsTheyStand) {
    const char* name = "Ünï+$& 中文 🙂\x01\t.m";
    writeFile(name);
    load(ProjectText().group("MAIN", {"A"}).file("A", name));
    ASSERT_NE(object("A"), nullptr);
    EXPECT_EQ(object("A")->name(), name);
    EXPECT_EQ(object("A")->path(), pathOf(name).toUtf8());
}

TEST_F(ProjectLoading, slashesAtTheEndAreDroppedAndDotsAreKept) {
    writeFolder("G/Assets.xcassets");
    writeFile("b.m");
    load(ProjectText()
             .group("MAIN", {"G"})
             .group("G", {"A", "B"}, "G/")
             .file("A", "Assets.xcassets/")
             .file("B", "../b.m"));
    EXPECT_EQ(object("A")->path(), pathOf("G/Assets.xcassets").toUtf8());
    EXPECT_EQ(object("A")->name(), "Assets.xcassets");
    EXPECT_EQ(object("A")->extension(), "xcassets");
    EXPECT_EQ(object("B")->path(), pathOf("G/../b.m").toUtf8());
    EXPECT_EQ(object("B")->name(), "b.m");
}

TEST_F(ProjectLoading, symbolicLinksAreFollowed) {
    writeFile("real.m");
    touch("real.m", 1'600'000'000);
    ASSERT_EQ(::symlink("real.m", pathText("link.m").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", pathText("dangling.m").c_str()), 0);
    load(ProjectText().group("MAIN", {"A", "B"}).file("A", "link.m").file("B", "dangling.m"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A"));
    EXPECT_EQ(object("A")->modified(), 1'600'000'000'000'000'001);

    pass();
    takeScans();
    touch("real.m", 1'600'000'001);
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("link.m"));
}

TEST_F(ProjectLoading, twoReferencesToOneFileAreTwoRecordsEachScanned) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A", "B"}).file("A", "a.m").file("B", "a.m"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A", "B"));
    EXPECT_THAT(takeScans(), ElementsAre("a.m", "a.m"));
}

TEST_F(ProjectLoading, aChildListedTwiceHasOneRecord) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A", "A", "G"}).group("G", {"A"}).file("A", "a.m"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A", "G"));
    EXPECT_EQ(object("A")->index(), 0);
    EXPECT_EQ(object("A")->parentID(), "MAIN");
    EXPECT_THAT(takeScans(), ElementsAre("a.m"));
}

// File types.

TEST_F(ProjectLoading, everyExtensionGivesOneAllowedFileType) {
    for (const char* name : {"a.m", "b.m", "c.M", "noextension", ".hidden"}) {
        writeFile(name);
    }
    load(ProjectText()
             .group("MAIN", {"A", "B", "C", "D", "E"})
             .file("A", "a.m")
             .file("B", "b.m")
             .file("C", "c.M")
             .file("D", "noextension")
             .file("E", ".hidden"));
    std::vector<std::string> extensions;
    for (const CDFiletype* filetype : context().filetypes()) {
        extensions.push_back(filetype->extension()->toStdString());
        EXPECT_EQ(filetype->allowed(), true);
    }
    EXPECT_THAT(extensions, ElementsAre("m", "M", ""));
    EXPECT_EQ(object("D")->extension(), "");
}

TEST_F(ProjectLoading, aFileTypeThatWasSwitchedOffStaysOff) {
    writeFile("a.m");
    CDFiletype& filetype = context().insertFiletype();
    filetype.setExtension(QByteArray("m"));
    filetype.setAllowed(false);
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    ASSERT_EQ(context().filetypes().size(), 1U);
    EXPECT_EQ(filetype.allowed(), false);
}

// Scanning.

TEST_F(ProjectLoading, aHeaderIsScannedForSuperclassShortcutsAndElements) {
    writeFile("a.h", "@interface a : NSObject\n- (void)run; // navrel: Run\n");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.h"));
    EXPECT_EQ(object("A")->subclassOf(), "NSObject");
    ASSERT_EQ(context().shortcutsWithIdentifier("A").size(), 1U);
    EXPECT_EQ(context().shortcutsWithIdentifier("A").front()->shortcut(), "Run");
    ASSERT_EQ(context().elementsWithIdentifier("A").size(), 2U);
    EXPECT_EQ(context().elementsWithIdentifier("A").front()->name(), "-run");
}

TEST_F(ProjectLoading, aHeaderThatNamesNoSuperclassAnyMoreKeepsTheFormerOne) {
    writeFile("a.h", "@interface a : NSObject\n");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.h"));
    writeFile("a.h", kSource);
    touch("a.h", 1'600'000'000);
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("a.h"));
    EXPECT_EQ(object("A")->subclassOf(), "NSObject");
}

TEST_F(ProjectLoading, aRecordIsScannedForOneThingAtATimeToo) {
    writeFile("a.h", "@interface a : NSObject\n- (void)run;\n// navrel: Run\n");
    CDObject& record = context().insertObject();
    record.setIdentifier("A");
    record.setPath(pathOf("a.h").toUtf8());
    manager().setSuperclassForManagedObject(record);
    EXPECT_EQ(record.subclassOf(), "NSObject");
    EXPECT_THAT(context().shortcuts(), IsEmpty());
    manager().generateShortcutsForManagedObject(record);
    EXPECT_EQ(context().shortcutsWithIdentifier("A").size(), 1U);
    EXPECT_THAT(context().elements(), IsEmpty());
    manager().generateElementsForManagedObject(record);
    EXPECT_EQ(context().elementsWithIdentifier("A").size(), 2U);
}

TEST_F(ProjectLoading, onlyHeadersAreScannedForASuperclass) {
    writeFile("a.m", "@interface a : NSObject\n");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    EXPECT_EQ(object("A")->subclassOf(), std::nullopt);
}

TEST_F(ProjectLoading, aSourceThatCannotBeReadAnyMoreHoldsNothing) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    ASSERT_TRUE(QFile::remove(pathOf("a.m")));
    ASSERT_TRUE(QDir().mkpath(pathOf("a.m")));
    touch("a.m", 1'600'000'000);
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A"));
    EXPECT_THAT(context().shortcutsWithIdentifier("A"), IsEmpty());
    EXPECT_THAT(context().elementsWithIdentifier("A"), IsEmpty());
}

TEST_F(ProjectLoading, otherSourcesAreScannedForShortcutsAndElements) {
    ProjectText text;
    text.group("MAIN", {"m", "swift", "c", "mm", "cpp"});
    for (const char* extension : {"m", "swift", "c", "mm", "cpp"}) {
        const QByteArray name = QByteArray("a.") + extension;
        writeFile(name.constData());
        text.file(extension, name);
    }
    load(text);
    EXPECT_THAT(takeScans(), ElementsAre("a.m", "a.swift", "a.c", "a.mm", "a.cpp"));
    EXPECT_EQ(context().elements().size(), 5U);
}

TEST_F(ProjectLoading, nothingElseIsScanned) {
    ProjectText text;
    QByteArrayList identifiers;
    for (const char* name : {"a.H", "a.M", "a.Swift", "a.hpp", "a.cc", "a.plist", "h", "m.txt"}) {
        writeFile(name);
        identifiers.append(name);
        text.file(name, name);
    }
    text.group("MAIN", identifiers);
    load(text);
    EXPECT_EQ(context().objects().size(), 9U);
    EXPECT_THAT(takeScans(), IsEmpty());
}

TEST_F(ProjectLoading, anUnchangedProjectIsNotScannedAgain) {
    writeFile("a.m");
    writeFile("b.h");
    load(ProjectText().group("MAIN", {"A", "B"}).file("A", "a.m").file("B", "b.h"));
    takeScans();
    for (int round = 0; round < 5; ++round) {
        pass();
    }
    EXPECT_THAT(takeScans(), IsEmpty());
    EXPECT_EQ(context().elements().size(), 2U);
}

TEST_F(ProjectLoading, aTouchedFileIsScannedAnewAndOthersKeepTheirRecords) {
    writeFile("a.m");
    writeFile("b.m");
    load(ProjectText().group("MAIN", {"A", "B"}).file("A", "a.m").file("B", "b.m"));
    // Whether or not a pass without changes lies between.
    for (const int quietPasses : {0, 1, 3}) {
        for (int quiet = 0; quiet < quietPasses; ++quiet) {
            pass();
        }
        takeScans();
        const CDElement* kept = context().elementsWithIdentifier("B").front();
        touch("a.m", 1'600'000'000 + quietPasses);
        pass();
        EXPECT_THAT(takeScans(), ElementsAre("a.m"));
        EXPECT_EQ(context().elementsWithIdentifier("B").front(), kept);
        EXPECT_EQ(context().elementsWithIdentifier("A").size(), 1U);
        EXPECT_EQ(context().shortcutsWithIdentifier("A").size(), 1U);
    }
}

/// Three sources, each of more than is scanned in one slice.
class LargeSources : public ProjectLoading {
protected:
    void SetUp() override {
        defaults.setBool(QStringLiteral("automaticProjectSelection"), false);
        for (const char* name : kNames) {
            writeFile(name, padding_ + kSource);
        }
        load(ProjectText()
                 .group("MAIN", {"A", "B", "C"})
                 .file("A", kNames[0])
                 .file("B", kNames[1])
                 .file("C", kNames[2]));
    }
    void changeAll(qint64 date) {
        for (const char* name : kNames) {
            writeFile(name, padding_ + kSource + kSource);
            touch(name, date);
        }
    }
    /// How many shortcuts each file has.
    std::vector<std::size_t> shortcuts() {
        std::vector<std::size_t> counts;
        for (const char* identifier : {"A", "B", "C"}) {
            counts.push_back(context().shortcutsWithIdentifier(identifier).size());
        }
        return counts;
    }

    static constexpr std::array<const char*, 3> kNames{"a.m", "b.m", "c.m"};
    std::unique_ptr<ScheduledCall> changes_;
    const QByteArray padding_ = QByteArray(1024 * 1024, '\n');
};

TEST_F(LargeSources, requestsAreLetInBetweenTheSlicesOfAPass) {
    changeAll(1'000'000'000);
    std::vector<std::vector<std::size_t>> seen;
    const auto request = clock.every(std::chrono::seconds(1), [&] { seen.push_back(shortcuts()); });
    std::vector<std::unique_ptr<ScheduledCall>> requests;
    for (int slice = 0; slice < 3; ++slice) {
        requests.push_back(
            clock.after(std::chrono::seconds(1), [&] { seen.push_back(shortcuts()); }));
    }
    clock.advance(std::chrono::seconds(1));
    EXPECT_THAT(seen, ::testing::Contains(std::vector<std::size_t>{2, 1, 1}));
    EXPECT_EQ(shortcuts(), (std::vector<std::size_t>{2, 2, 2}));
}

TEST_F(LargeSources, aFileThatChangesAllTheTimeHoldsUpNoOther) {
    changeAll(1'000'000'000);
    qint64 date = 1'000'000'001;
    const std::function<void()> change = [&] {
        touch("a.m", date++);
        if (date < 1'000'000'100) {
            changes_ = clock.after(std::chrono::milliseconds(0), change);
        }
    };
    changes_ = clock.after(std::chrono::seconds(1), change);
    clock.advance(std::chrono::seconds(1));
    EXPECT_EQ(shortcuts(), (std::vector<std::size_t>{2, 2, 2}));
}

TEST_F(LargeSources, aPassThatIsAskedForLeavesNothingForLater) {
    changeAll(1'000'000'000);
    pass();
    EXPECT_EQ(shortcuts(), (std::vector<std::size_t>{2, 2, 2}));
}

TEST_F(ProjectLoading, anyDifferenceOfDatesCountsAlsoABackwardOne) {
    writeFile("a.m");
    touch("a.m", 1'600'000'000);
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    pass();
    takeScans();

    touch("a.m", 1'500'000'000);
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("a.m"));

    const struct timespec oneNanosecondLater[2]{{1'500'000'000, 2}, {1'500'000'000, 2}};
    ASSERT_EQ(::utimensat(AT_FDCWD, pathText("a.m").c_str(), oneNanosecondLater, 0), 0);
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("a.m"));
    EXPECT_EQ(object("A")->modified(), 1'500'000'000'000'000'002);
}

TEST_F(ProjectLoading, aRebuiltRecordTakesWhatTheProjectSaysNow) {
    writeFile("a.m");
    writeFile("b.h");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m", "old", "Old"));
    touch("a.m", 1'600'000'000);
    writeProject(
        ProjectText().group("MAIN", {"G"}).group("G", {"X", "A"}).file("A", "b.h", "new", "New"));
    pass();
    EXPECT_EQ(object("A")->path(), pathOf("b.h").toUtf8());
    EXPECT_EQ(object("A")->extension(), "h");
    EXPECT_EQ(object("A")->type(), "new");
    EXPECT_EQ(object("A")->name(), "New");
    EXPECT_EQ(object("A")->parentID(), "G");
    EXPECT_EQ(object("A")->index(), 1);
}

TEST_F(ProjectLoading, aRecordThatIsNotRebuiltKeepsItsPlaceInTheProjectOnPurpose) {
    writeFile("a.m");
    writeFile("b.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m", "", "Old"));
    writeProject(ProjectText()
                     .group("MAIN", {"G"})
                     .group("G", {"B", "A"})
                     .file("A", "a.m", "", "New")
                     .file("B", "b.m"));
    pass();
    EXPECT_EQ(object("A")->parentID(), "MAIN");
    EXPECT_EQ(object("A")->index(), 0);
    EXPECT_EQ(object("A")->name(), "Old");
    EXPECT_EQ(object("B")->parentID(), "G");
}

TEST_F(ProjectLoading, theChildrenOfAnUnchangedGroupAreStillVisited) {
    writeFolder("G");
    writeFile("G/a.m");
    touch("G", 1'600'000'000);
    load(ProjectText().group("MAIN", {"G"}).group("G", {"A"}, "G").file("A", "a.m"));
    takeScans();
    touch("G/a.m", 1'600'000'000);
    touch("G", 1'600'000'000);
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("a.m"));
}

// Deletion.

TEST_F(ProjectLoading, aDeletedFileLosesItsRecord) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m", "", "Shown\nname"));
    pass();
    QFile::remove(pathOf("a.m"));
    pass();
    EXPECT_THAT(takeLog(), ElementsAre("Deleted Shown\nname"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));

    pass();
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(ProjectLoading, aDeletedRecordLeavesItsShortcutsAndElementsOnPurpose) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    writeProject(ProjectText().group("MAIN", {}));
    QFile::remove(pathOf("a.m"));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
    EXPECT_EQ(context().shortcutsWithIdentifier("A").size(), 1U);
    EXPECT_EQ(context().elementsWithIdentifier("A").size(), 1U);
}

TEST_F(ProjectLoading, aFileThatComesBackIsScannedAnew) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    QFile::remove(pathOf("a.m"));
    pass();
    takeScans();
    writeFile("a.m");
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("a.m"));
    EXPECT_EQ(context().elementsWithIdentifier("A").size(), 1U);
}

TEST_F(ProjectLoading, anObjectThatLeavesTheProjectKeepsItsRecordWhileItsFileExists) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    writeProject(ProjectText().group("MAIN", {}));
    pass();
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A"));

    QFile::remove(pathOf("a.m"));
    pass();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
    EXPECT_THAT(takeLog(), ElementsAre("Deleted a.m"));
}

TEST_F(ProjectLoading, aRecordWithoutAPathCountsAsMissing) {
    load(ProjectText().group("MAIN", {}));
    context().insertObject().setName(QByteArray("pathless"));
    pass();
    EXPECT_THAT(takeLog(), ElementsAre("Deleted pathless"));
}

TEST_F(ProjectLoading, aRenamedFolderTakesItsFilesAlong) {
    writeFile("G/a.m");
    load(ProjectText().group("MAIN", {"G"}).group("G", {"A"}, "G").file("A", "a.m"));
    pass();
    ASSERT_TRUE(QDir().rename(pathOf("G"), pathOf("H")));
    pass();
    EXPECT_THAT(takeLog(), UnorderedElementsAre("Deleted G", "Deleted a.m"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

// The project file.

TEST_F(ProjectLoading, aMissingProjectFileBuildsNothingAndStillDeletes) {
    writeFile("a.m");
    writeFile("b.m");
    load(ProjectText().group("MAIN", {"A", "B"}).file("A", "a.m").file("B", "b.m"));
    pass();
    QFile::remove(bundle() + QStringLiteral("/project.pbxproj"));
    QFile::remove(pathOf("a.m"));
    pass();
    EXPECT_EQ(manager().rootID(), std::nullopt);
    EXPECT_EQ(manager().pbxObjects(), nullptr);
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "B"));
    EXPECT_THAT(takeLog(), ElementsAre(HasSubstr("No such file or directory"), "Deleted a.m"));
}

TEST_F(ProjectLoading, unreadableProjectFilesBuildNothing) {
    for (const char* text :
         {"", "{", "<<<<<<< HEAD\n{}", "( a, b )", "\"text\"", "{ objects = (); }",
          "{ objects = {}; rootObject = (a); }", "{ objects = { P = text; }; rootObject = P; }",
          "{ objects = { P = { mainGroup = {}; }; }; rootObject = P; }"}) {
        SCOPED_TRACE(text);
        writeProject(QByteArray(text));
        load();
        EXPECT_EQ(manager().rootID(), std::nullopt);
        EXPECT_THAT(identifiers(), IsEmpty());
    }
    EXPECT_THAT(takeLog(), ::testing::Each(::testing::StartsWith("Nothing to show of ")));
}

TEST_F(ProjectLoading, anXMLProjectFileIsRead) {
    writeFile("a.m");
    writeProject(
        QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                   "<key>rootObject</key><string>P</string><key>objects</key><dict>"
                   "<key>P</key><dict><key>mainGroup</key><string>MAIN</string></dict>"
                   "<key>MAIN</key><dict><key>isa</key><string>PBXGroup</string>"
                   "<key>children</key><array><string>A</string></array></dict>"
                   "<key>A</key><dict><key>isa</key><string>PBXFileReference</string>"
                   "<key>path</key><string>a.m</string></dict>"
                   "</dict></dict></plist>"));
    load();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A"));
}

TEST_F(ProjectLoading, valuesOfTheWrongKindCountAsAbsent) {
    writeFile("a.m");
    load(ProjectText()
             .entry("MAIN", "isa = PBXGroup; path = (a); name = {};"
                            " children = ((A), {}, A, B, STRING);")
             .entry("A", "isa = PBXFileReference; path = \"a.m\"; lastKnownFileType = (x);"
                         " children = text;")
             .entry("B", "isa = (PBXGroup); children = {A = A;};"));
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "A", "B", "STRING"));
    EXPECT_EQ(object("MAIN")->path(), folder().toUtf8());
    EXPECT_EQ(object("MAIN")->name(), "work");
    EXPECT_EQ(object("A")->type(), "unknown");
    EXPECT_EQ(object("A")->index(), 2);
    EXPECT_EQ(object("B")->isGroup(), false);
}

TEST_F(ProjectLoading, anObjectThatIsNoDictionaryCountsAsAbsent) {
    writeProject(QByteArray("{ rootObject = P; objects = { P = { mainGroup = MAIN; };"
                            " MAIN = { isa = PBXGroup; children = (A); }; A = (a, b); }; }"));
    load();
    EXPECT_EQ(object("A")->path(), folder().toUtf8());
}

TEST_F(ProjectLoading, aFolderOrAPipeInPlaceOfTheProjectFileIsNotWaitedFor) {
    const QString path = bundle() + QStringLiteral("/project.pbxproj");
    ASSERT_TRUE(QDir().mkpath(path));
    load();
    EXPECT_EQ(manager().rootID(), std::nullopt);

    ASSERT_TRUE(QDir().rmdir(path));
    ASSERT_EQ(::mkfifo(path.toUtf8().constData(), 0600), 0);
    load();
    EXPECT_EQ(manager().rootID(), std::nullopt);
}

TEST_F(ProjectLoading, aProjectFileBeyondEverySizeIsNotRead) {
    writeProject(ProjectText().group("MAIN", {}));
    ASSERT_EQ(::truncate((bundle() + QStringLiteral("/project.pbxproj")).toUtf8().constData(),
                         off_t{65} * 1024 * 1024),
              0);
    load();
    EXPECT_EQ(manager().rootID(), std::nullopt);
}

TEST_F(ProjectLoading, everyNewVersionOfTheProjectFileIsRead) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {}));
    for (int version = 1; version <= 50; ++version) {
        // Of the same length, and mostly within one tick of the clock.
        const QByteArray identifier = QByteArray::number(1000 + version);
        writeProject(ProjectText().group("MAIN", {identifier}).file(identifier.constData(), "a.m"));
        pass();
        ASSERT_NE(object(identifier.constData()), nullptr);
    }
}

TEST_F(ProjectLoading, aProjectFilePutInPlaceWithTheFormersDateIsRead) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    const char* name = "App.xcodeproj/project.pbxproj";
    touch(name, 1'600'000'000);
    pass();
    pass();
    // An editor saves by renaming.
    writeFile("new", ProjectText().group("MAIN", {"B"}).file("B", "a.m").text());
    touch("new", 1'600'000'000);
    ASSERT_EQ(::rename(pathText("new").c_str(), pathText(name).c_str()), 0);
    pass();
    EXPECT_NE(object("B"), nullptr);
}

// The public operation on one object.

TEST_F(ProjectLoading, oneObjectCanBeBuiltUnderAnyParent) {
    writeFile("G/a.m");
    load(ProjectText().group("MAIN", {}).file("A", "a.m"));
    manager().generateObjectForID("A", pathOf("G").toUtf8(), QByteArray("PARENT"), 7);
    EXPECT_EQ(object("A")->path(), pathOf("G/a.m").toUtf8());
    EXPECT_EQ(object("A")->parentID(), "PARENT");
    EXPECT_EQ(object("A")->index(), 7);
}

TEST_F(ProjectLoading, withoutAReferencePathNothingIsMadeAndARebuiltRecordIsUnknown) {
    load(ProjectText().group("MAIN", {}).file("A", "a.m"));
    manager().generateObjectForID("A", std::nullopt, std::nullopt, 0);
    EXPECT_EQ(object("A"), nullptr);

    context().insertObject().setIdentifier(QByteArray("A"));
    manager().generateObjectForID("A", std::nullopt, std::nullopt, 0);
    EXPECT_EQ(object("A")->path(), std::nullopt);
    EXPECT_EQ(object("A")->extension(), "unknown");
    EXPECT_EQ(object("A")->name(), "unknown");
    EXPECT_THAT(context().filetypes(), IsEmpty());
}

TEST_F(ProjectLoading, theRecordInsertedLastIsTheOneRefreshed) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {}).file("A", "a.m"));
    CDObject& first = context().insertObject();
    first.setIdentifier(QByteArray("A"));
    CDObject& last = context().insertObject();
    last.setIdentifier(QByteArray("A"));
    manager().generateObjectForID("A", folder().toUtf8(), std::nullopt, 0);
    EXPECT_EQ(first.path(), std::nullopt);
    EXPECT_EQ(last.path(), pathOf("a.m").toUtf8());
}

// Saving.

TEST_F(ProjectLoading, everyPassSaves) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    EXPECT_FALSE(context().hasChanges());
    manager().changeFiletypeAllowanceWithDictionary(
        {{QStringLiteral("extension"), QStringLiteral("m")}, {QStringLiteral("allowed"), false}});
    EXPECT_TRUE(context().hasChanges());
    pass();
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(ProjectLoading, everyPassCommitsPendingEditsBeforeItSaves) {
    load(ProjectText().group("MAIN", {}));
    context().addPendingEdit([this] {
        context().insertShortcut();
        return true;
    });
    pass();
    EXPECT_EQ(context().shortcuts().size(), 1U);
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(ProjectLoading, aFailedSaveIsLoggedAndTriedAgainByTheNextPass) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    {
        SQLiteDatabase other;
        ASSERT_FALSE(other.open(storePath().toUtf8()).has_value());
        ASSERT_FALSE(other.execute("BEGIN IMMEDIATE").has_value());
        touch("a.m", 1'600'000'000);
        pass();
        const std::vector<std::string> messages = takeLog();
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_THAT(messages.front(), ::testing::HasSubstr("database is locked"));
        EXPECT_EQ(object("A")->modified(), 1'600'000'000'000'000'001);
        EXPECT_TRUE(context().hasChanges());
    }
    pass();
    EXPECT_FALSE(context().hasChanges());
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(ProjectLoading, aPassOverAnUnchangedProjectDoesNotTouchTheStore) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    // A statement would fail now, and be logged.
    SQLiteDatabase other;
    ASSERT_FALSE(other.open(storePath().toUtf8()).has_value());
    ASSERT_FALSE(other.execute("BEGIN EXCLUSIVE").has_value());
    for (int round = 0; round < 3; ++round) {
        pass();
    }
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(ProjectLoading, whyNothingIsShownIsLoggedOnceForEachReason) {
    const std::string file = bundle().toStdString() + "/project.pbxproj: ";
    load();
    pass();
    EXPECT_THAT(takeLog(), ElementsAre("Nothing to show of " + file + "No such file or directory"));
    writeProject(QByteArray("{ objects = {}; }"));
    pass();
    pass();
    EXPECT_THAT(takeLog(), ElementsAre("Nothing to show of " + file + "it names no main group"));
    writeProject(ProjectText().group("MAIN", {}));
    pass();
    EXPECT_THAT(takeLog(), ::testing::IsEmpty());
}

} // namespace
} // namespace navrel
