#include "project/SynchronizedFolder.h"
#include "tests/project/DataManagerFixture.h"

#include <QRegularExpression>

#include <unistd.h>

// Groups that mirror a folder: what lies below them is on disk alone.
namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

const QString kItems = QStringLiteral("items");

class SynchronizedFolders : public DataManagerTest {
protected:
    static ProjectText project() {
        return ProjectText()
            .group("MAIN", {"S"})
            .entry("S", "isa = PBXFileSystemSynchronizedRootGroup; path = App;"
                        "sourceTree = \"<group>\";");
    }

    const CDObject* named(const char* name) {
        const auto objects = context().objectsWithName(name);
        return objects.size() == 1 ? objects.front() : nullptr;
    }
    std::string identifierOf(const char* name) {
        const CDObject* object = named(name);
        return object != nullptr ? object->identifier()->toStdString() : "none";
    }

    /// The navigator below a group, as a device that opens every group sees it.
    std::vector<std::string> tree(const QString& identifier = QStringLiteral("S"),
                                  const std::string& before = "") {
        std::vector<std::string> lines;
        const auto group = manager().navigatorDictionaryForID(identifier);
        for (const QVariant& value : group ? group->value(kItems).toList() : QVariantList()) {
            const QVariantMap item = value.toMap();
            const std::string name =
                before + item.value(QStringLiteral("name")).toString().toStdString();
            const bool isGroup = item.value(QStringLiteral("isGroup")).toInt() == 1;
            lines.push_back(name + (isGroup ? "/" : ""));
            if (isGroup) {
                for (const std::string& line :
                     tree(item.value(QStringLiteral("identifier")).toString(), name + "/")) {
                    lines.push_back(line);
                }
            }
        }
        return lines;
    }
};

TEST_F(SynchronizedFolders, whatLiesOnDiskIsShownAsGroupsAndFiles) {
    writeFile("App/Main.swift");
    writeFile("App/Views/Start.h");
    writeFile("App/Views/Deep/Cell.m");
    load(project());
    EXPECT_THAT(tree(), ElementsAre("Main.swift", "Views/", "Views/Deep/", "Views/Deep/Cell.m",
                                    "Views/Start.h"));
    EXPECT_EQ(object("S")->isGroup(), true);
    EXPECT_EQ(object("S")->name(), "App");
}

TEST_F(SynchronizedFolders, aRecordHoldsWhatThatOfAFileReferenceHolds) {
    writeFile("App/Views/Start.h");
    load(project());
    const CDObject* file = named("Start.h");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->extension(), "h");
    EXPECT_EQ(file->type(), "unknown");
    EXPECT_EQ(file->isGroup(), false);
    EXPECT_EQ(file->index(), 0);
    EXPECT_EQ(file->path(), pathOf("App/Views/Start.h").toUtf8());
    EXPECT_EQ(file->parentID()->toStdString(), identifierOf("Views"));
    EXPECT_EQ(named("Views")->parentID(), "S");
    EXPECT_EQ(named("Views")->extension(), std::nullopt);
    EXPECT_THAT(takeScans(), ElementsAre("Start.h"));
    EXPECT_EQ(manager().allowedFileTypes(), QStringList{QStringLiteral("h")});
}

TEST_F(SynchronizedFolders, identifiersLookLikeOthersAndStayAcrossRestarts) {
    writeFile("App/Views/Start.h");
    writeFile("App/Start.h");
    load(project());
    const auto before = identifiers();
    ASSERT_EQ(before.size(), 5U);
    for (const std::string& identifier : before) {
        if (identifier != "MAIN" && identifier != "S") {
            EXPECT_TRUE(QRegularExpression(QStringLiteral("^[0-9A-F]{24}$"))
                            .match(QString::fromStdString(identifier))
                            .hasMatch())
                << identifier;
        }
    }
    endManager();
    load();
    EXPECT_EQ(identifiers(), before);
    // The same in every version of the program: devices remember them.
    EXPECT_EQ(identifierOf("Views"),
              SynchronizedFolder("S", "/x").identifierOf("/x/Views").toStdString());
    EXPECT_EQ(identifierOf("Views"), "4CCBBA2C5E763EF826A0AFD2");
}

TEST_F(SynchronizedFolders, filesComeGoAndChangeWhileTheProgramRuns) {
    writeFile("App/a.m");
    load(project());
    pass();
    takeScans();
    pass();
    EXPECT_THAT(takeScans(), IsEmpty());

    writeFile("App/New/b.m");
    pass();
    EXPECT_THAT(tree(), ElementsAre("a.m", "New/", "New/b.m"));
    EXPECT_THAT(takeScans(), ElementsAre("b.m"));

    touch("App/New/b.m", 1000);
    pass();
    EXPECT_THAT(takeScans(), ElementsAre("b.m"));

    ASSERT_TRUE(QFile::rename(pathOf("App/New"), pathOf("App/Renamed")));
    pass();
    EXPECT_THAT(tree(), ElementsAre("a.m", "Renamed/", "Renamed/b.m"));
    ASSERT_TRUE(QDir(pathOf("App/Renamed")).removeRecursively());
    pass();
    EXPECT_THAT(tree(), ElementsAre("a.m"));
    EXPECT_EQ(context().objects().size(), 3U);
}

TEST_F(SynchronizedFolders, hiddenFilesAreLeftOutAndBundlesAreLeaves) {
    writeFile("App/.hidden/a.m");
    writeFile("App/.a.m");
    writeFile("App/Assets.xcassets/Contents.json");
    load(project());
    EXPECT_THAT(tree(), ElementsAre("Assets.xcassets"));
    EXPECT_EQ(named("Assets.xcassets")->extension(), "xcassets");
}

TEST_F(SynchronizedFolders, loopsOfLinksEnd) {
    writeFile("App/Sub/a.m");
    writeFolder("Outside/Deep");
    writeFile("Outside/Deep/b.m");
    for (const auto& [target, link] : {std::pair("../..", "App/Sub/up"),
                                       {".", "App/itself"},
                                       {"Sub", "App/twice"},
                                       {"../Outside", "App/out"},
                                       {"../Outside/Deep", "App/out2"},
                                       {"../../App", "Outside/Deep/back"},
                                       {"..", "Outside/Deep/up"}}) {
        ASSERT_EQ(::symlink(target, pathOf(link).toUtf8().constData()), 0);
    }
    load(project());
    EXPECT_LT(context().objects().size(), 30U);
    EXPECT_NE(named("a.m"), nullptr);
    EXPECT_FALSE(context().objectsWithName("b.m").empty());
    EXPECT_EQ(named("twice")->isGroup(), false);
    EXPECT_EQ(named("itself")->isGroup(), false);
}

TEST_F(SynchronizedFolders, aGroupWithinAGroupHasThePathOfBoth) {
    writeFile("Lib/App/a.m");
    load(ProjectText()
             .group("MAIN", {"G"})
             .group("G", {"S"}, "Lib")
             .entry("S", "isa = PBXFileSystemSynchronizedRootGroup; path = App;"));
    EXPECT_THAT(tree(), ElementsAre("a.m"));
}

TEST_F(SynchronizedFolders, aGroupWhoseFolderIsElsewhereNowShowsTheNewOne) {
    writeFile("App/a.m");
    load(project());
    ASSERT_TRUE(QFile::rename(pathOf("App"), pathOf("Application")));
    writeProject(ProjectText()
                     .group("MAIN", {"S"})
                     .entry("S", "isa = PBXFileSystemSynchronizedRootGroup; path = Application;"));
    pass();
    pass();
    EXPECT_THAT(tree(), ElementsAre("a.m"));
    EXPECT_EQ(named("a.m")->path(), pathOf("Application/a.m").toUtf8());
}

TEST_F(SynchronizedFolders, twoGroupsOfOneFolderHaveRecordsOfTheirOwn) {
    writeFile("App/a.m");
    load(ProjectText()
             .group("MAIN", {"S", "T"})
             .entry("S", "isa = PBXFileSystemSynchronizedRootGroup; path = App;")
             .entry("T", "isa = PBXFileSystemSynchronizedRootGroup; path = App;"));
    EXPECT_THAT(tree(QStringLiteral("T")), ElementsAre("a.m"));
}

TEST_F(SynchronizedFolders, theyAreALeafWhereThePreferenceSaysSo) {
    defaults.setBool(QStringLiteral("synchronizedFolders"), false);
    writeFile("App/a.m");
    load(project());
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "S"));
    EXPECT_EQ(object("S")->isGroup(), false);
    EXPECT_EQ(object("S")->extension(), std::nullopt);
    EXPECT_THAT(tree(), IsEmpty());
}

} // namespace
} // namespace navrel
