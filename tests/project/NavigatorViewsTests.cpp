#include "tests/project/DataManagerFixture.h"

#include <QVariantList>
#include <QVariantMap>

namespace navrel {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Truly;

class NavigatorViews : public DataManagerTest {
protected:
    static std::vector<std::string> namesIn(const QVariantMap& reply) {
        std::vector<std::string> names;
        for (const QVariant& item : reply.value(QStringLiteral("items")).toList()) {
            names.push_back(item.toMap().value(QStringLiteral("name")).toString().toStdString());
        }
        return names;
    }

    static QVariantMap fileType(const char* extension, int allowed) {
        return {{QStringLiteral("extension"), QString::fromUtf8(extension)},
                {QStringLiteral("allowed"), allowed}};
    }

    void switchFileType(const char* extension, bool allowed) {
        manager().changeFiletypeAllowanceWithDictionary(
            {{QStringLiteral("extension"), QString::fromUtf8(extension)},
             {QStringLiteral("allowed"), allowed}});
    }

    QVariantMap navigator(const char* identifier) {
        return manager().navigatorDictionaryForID(shownUTF8(identifier)).value();
    }

    void loadGroupWithFiles() {
        for (const char* name : {"b.m", "A.h", "c.M", "Views/d.m", "e.xib", "f.strings"}) {
            writeFile(name);
        }
        load(ProjectText()
                 .group("MAIN", {"M", "H", "UPPER", "VIEWS", "XIB", "STRINGS"})
                 .file("M", "b.m")
                 .file("H", "A.h")
                 .file("UPPER", "c.M")
                 .group("VIEWS", {"D"}, "Views")
                 .file("D", "d.m")
                 .entry("XIB", "isa = PBXVariantGroup; path = \"e.xib\";")
                 .entry("STRINGS", "isa = PBXVariantGroup; path = \"f.strings\";"));
    }
};

TEST_F(NavigatorViews, withoutAProjectThereIsNoNavigator) {
    CDObject& record = context().insertObject();
    record.setIdentifier(QByteArray("A"));
    EXPECT_EQ(manager().navigatorDictionaryForID(std::nullopt), std::nullopt);
    EXPECT_EQ(manager().navigatorDictionaryForID(QStringLiteral("A")), std::nullopt);
}

TEST_F(NavigatorViews, nilAsksForTheMainGroup) {
    writeFile("a.m");
    writeFolder("G");
    load(ProjectText()
             .group("MAIN", {"A", "G"}, "", "Project")
             .file("A", "a.m")
             .group("G", {}, "G"));

    const QVariantMap expected{
        {QStringLiteral("identifier"), QStringLiteral("MAIN")},
        {QStringLiteral("label"), QStringLiteral("Project")},
        {QStringLiteral("path"), folder()},
        {QStringLiteral("items"),
         QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("a.m")},
                                  {QStringLiteral("identifier"), QStringLiteral("A")},
                                  {QStringLiteral("isGroup"), 0},
                                  {QStringLiteral("path"), pathOf("a.m")}},
                      QVariantMap{{QStringLiteral("name"), QStringLiteral("G")},
                                  {QStringLiteral("identifier"), QStringLiteral("G")},
                                  {QStringLiteral("isGroup"), 1},
                                  {QStringLiteral("path"), pathOf("G")}}}}};
    EXPECT_EQ(manager().navigatorDictionaryForID(std::nullopt), expected);
    EXPECT_EQ(manager().navigatorDictionaryForID(QStringLiteral("MAIN")), expected);
}

TEST_F(NavigatorViews, aBooleanGoesOutAsANumber) {
    load(ProjectText().group("MAIN", {"G"}).group("G", {}));
    const QVariantMap item =
        navigator("MAIN").value(QStringLiteral("items")).toList().front().toMap();
    EXPECT_EQ(item.value(QStringLiteral("isGroup")).typeId(), QMetaType::Int);
}

TEST_F(NavigatorViews, anUnknownIdentifierHasNoNavigator) {
    load(ProjectText().group("MAIN", {}));
    EXPECT_EQ(manager().navigatorDictionaryForID(QStringLiteral("NOWHERE")), std::nullopt);
    EXPECT_EQ(manager().navigatorDictionaryForID(QStringLiteral("")), std::nullopt);
}

TEST_F(NavigatorViews, aFileHasANavigatorWithoutItems) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    const QVariantMap reply = navigator("A");
    EXPECT_EQ(reply.value(QStringLiteral("label")), QStringLiteral("a.m"));
    EXPECT_EQ(reply.value(QStringLiteral("path")), pathOf("a.m"));
    EXPECT_EQ(reply.value(QStringLiteral("items")), QVariant(QVariantList()));
}

TEST_F(NavigatorViews, filesAndGroupsAreListedByNameWithoutRegardToCase) {
    loadGroupWithFiles();
    EXPECT_THAT(namesIn(navigator("MAIN")), ElementsAre("A.h", "b.m", "c.M", "e.xib", "Views"));
}

TEST_F(NavigatorViews, onlyAllowedTypesAndGroupsAreListed) {
    loadGroupWithFiles();
    switchFileType("m", false);
    switchFileType("M", false);
    EXPECT_THAT(namesIn(navigator("MAIN")), ElementsAre("A.h", "e.xib", "Views"));
    EXPECT_THAT(namesIn(navigator("VIEWS")), IsEmpty());
}

TEST_F(NavigatorViews, thousandsOfTypesAreToldApart) {
    constexpr int kFiles = 5'000;
    writeFile("a.txt");
    load(ProjectText().group("MAIN", {}));
    for (int file = 0; file < kFiles; ++file) {
        CDObject& record = context().insertObject();
        record.setParentID(QByteArray("MAIN"));
        record.setName(QByteArray::number(file));
        record.setExtension(QByteArray::number(file));
        CDFiletype& filetype = context().insertFiletype();
        filetype.setExtension(QByteArray::number(file));
        filetype.setAllowed(file % 2 == 0);
    }
    const std::vector<std::string> names = namesIn(navigator("MAIN"));
    EXPECT_EQ(names.size(), kFiles / 2U);
    EXPECT_THAT(names,
                Each(Truly([](const std::string& name) { return std::stoi(name) % 2 == 0; })));
}

TEST_F(NavigatorViews, withEveryTypeSwitchedOffAllIsListedOnPurpose) {
    loadGroupWithFiles();
    for (const char* extension : {"m", "M", "h"}) {
        switchFileType(extension, false);
    }
    EXPECT_THAT(namesIn(navigator("MAIN")),
                ElementsAre("A.h", "b.m", "c.M", "e.xib", "f.strings", "Views"));
}

TEST_F(NavigatorViews, labelAndPathComeFromTheRecordInsertedLast) {
    load(ProjectText().group("MAIN", {}));
    CDObject& second = context().insertObject();
    second.setIdentifier(QByteArray("MAIN"));
    second.setName(QByteArray("second"));
    second.setPath(QByteArray("/second"));
    EXPECT_EQ(navigator("MAIN").value(QStringLiteral("label")), QStringLiteral("second"));
    EXPECT_EQ(navigator("MAIN").value(QStringLiteral("path")), QStringLiteral("/second"));
}

TEST_F(NavigatorViews, namesReachTheDeviceAsTheyStand) {
    const char* name = "Ünï+$& 中文 🙂\x01.m";
    writeFile(name);
    load(ProjectText().group("MAIN", {"🙂"}).file("🙂", name));
    EXPECT_THAT(namesIn(navigator("MAIN")), ElementsAre(name));
    EXPECT_EQ(navigator("🙂").value(QStringLiteral("identifier")), QStringLiteral("🙂"));
}

TEST_F(NavigatorViews, aByteOrderMarkIsPartOfTheNameThatBeginsWithIt) {
    writeFile("\uFEFFa.\uFEFFm");
    load(ProjectText().group("MAIN", {"\uFEFFA"}).file("\uFEFFA", "\uFEFFa.\uFEFFm"));
    EXPECT_THAT(namesIn(navigator("MAIN")), ElementsAre("\uFEFFa.\uFEFFm"));
    const QVariantMap file = navigator("\uFEFFA");
    EXPECT_EQ(file.value(QStringLiteral("identifier")), QStringLiteral("\uFEFFA"));
    EXPECT_EQ(file.value(QStringLiteral("label")), QStringLiteral("\uFEFFa.\uFEFFm"));
    EXPECT_EQ(manager().allowedFileTypes(), QStringList{QStringLiteral("\uFEFFm")});
    editor.fileName = QStringLiteral("\uFEFFa.\uFEFFm");
    EXPECT_EQ(manager().objectIDForActiveFile(), QStringLiteral("\uFEFFA"));

    context().objects().front()->setSubclassOf(QByteArray("\uFEFFBase"));
    EXPECT_EQ(manager().superclassDictionary().value(QStringLiteral("items")),
              QVariantList{QStringLiteral("\uFEFFBase")});
}

TEST_F(NavigatorViews, superclassesAreListedInOrderWithoutRepeats) {
    ProjectText text;
    writeFile("a.h", "@interface a : Widget\n");
    writeFile("b.h", "@interface b : Base\n");
    writeFile("c.h", "@interface c : Base\n");
    writeFile("d.h");
    writeFile("e.h", "@interface e : apple\n");
    for (const char* name : {"a.h", "b.h", "c.h", "d.h", "e.h"}) {
        text.file(name, name);
    }
    load(text.group("MAIN", {"a.h", "b.h", "c.h", "d.h", "e.h"}));

    const QVariantMap expected{
        {QStringLiteral("title"), QStringLiteral("Superclass navigator")},
        {QStringLiteral("items"),
         QVariantList{QStringLiteral("Base"), QStringLiteral("Widget"), QStringLiteral("apple")}}};
    EXPECT_EQ(manager().superclassDictionary(), expected);
}

TEST_F(NavigatorViews, anEmptySuperclassIsListedToo) {
    writeFile("a.h", "@interface a : _Base\n");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.h"));
    EXPECT_EQ(manager().superclassDictionary().value(QStringLiteral("items")),
              QVariant(QVariantList{QStringLiteral("")}));
}

TEST_F(NavigatorViews, withoutSuperclassesTheListIsEmpty) {
    load(ProjectText().group("MAIN", {}));
    EXPECT_EQ(manager().superclassDictionary().value(QStringLiteral("items")),
              QVariant(QVariantList()));
}

TEST_F(NavigatorViews, aSuperclassListsItsFilesByName) {
    ProjectText text;
    writeFile("b.h", "@interface b : Base\n");
    writeFile("A.h", "@interface A : Base\n");
    writeFile("c.h", "@interface c : base\n");
    for (const char* name : {"b.h", "A.h", "c.h"}) {
        text.file(name, name);
    }
    load(text.group("MAIN", {"b.h", "A.h", "c.h"}));

    const QVariantMap reply = manager().navigatorDictionaryForSuperclass(QStringLiteral("Base"));
    EXPECT_EQ(reply.keys(), (QStringList{QStringLiteral("items"), QStringLiteral("label"),
                                         QStringLiteral("superclass")}));
    EXPECT_EQ(reply.value(QStringLiteral("superclass")), QStringLiteral("Base"));
    EXPECT_EQ(reply.value(QStringLiteral("label")), QStringLiteral("Base"));
    EXPECT_THAT(namesIn(reply), ElementsAre("A.h", "b.h"));
    EXPECT_EQ(reply.value(QStringLiteral("items")).toList().front().toMap(),
              (QVariantMap{{QStringLiteral("name"), QStringLiteral("A.h")},
                           {QStringLiteral("identifier"), QStringLiteral("A.h")},
                           {QStringLiteral("isGroup"), 0},
                           {QStringLiteral("path"), pathOf("A.h")}}));
}

TEST_F(NavigatorViews, anUnknownSuperclassListsNothing) {
    const QVariantMap reply = manager().navigatorDictionaryForSuperclass(QStringLiteral("None"));
    EXPECT_EQ(reply.value(QStringLiteral("superclass")), QStringLiteral("None"));
    EXPECT_THAT(namesIn(reply), IsEmpty());
}

TEST_F(NavigatorViews, fileTypesAreListedByExtension) {
    loadGroupWithFiles();
    switchFileType("h", false);
    const QVariantMap expected{
        {QStringLiteral("items"),
         QVariantList{fileType("M", 1), fileType("h", 0), fileType("m", 1)}}};
    EXPECT_EQ(manager().allowedFileTypesDictionary(), expected);
}

TEST_F(NavigatorViews, allowedFileTypesComeInTheOrderOfTheirDiscovery) {
    loadGroupWithFiles();
    EXPECT_EQ(manager().allowedFileTypes(),
              (QStringList{QStringLiteral("m"), QStringLiteral("h"), QStringLiteral("M")}));
    switchFileType("h", false);
    EXPECT_EQ(manager().allowedFileTypes(),
              (QStringList{QStringLiteral("m"), QStringLiteral("M")}));
}

TEST_F(NavigatorViews, aChangeOfFileTypesAnswersWithTheNewListAndSavesNothing) {
    loadGroupWithFiles();
    ASSERT_FALSE(context().hasChanges());
    for (const QVariant& allowed : {QVariant(false), QVariant(true), QVariant(0), QVariant(1),
                                    QVariant(0LL), QVariant(1ULL)}) {
        const QVariantMap reply = manager().changeFiletypeAllowanceWithDictionary(
            {{QStringLiteral("extension"), QStringLiteral("m")},
             {QStringLiteral("allowed"), allowed}});
        EXPECT_EQ(reply.value(QStringLiteral("items")).toList().back().toMap(),
                  fileType("m", allowed.toInt()));
        EXPECT_EQ(reply, manager().allowedFileTypesDictionary());
        EXPECT_TRUE(context().hasChanges());
    }
}

TEST_F(NavigatorViews, everyRecordOfAnExtensionIsChanged) {
    for (int record = 0; record < 2; ++record) {
        context().insertFiletype().setExtension(QByteArray("m"));
    }
    switchFileType("m", true);
    EXPECT_EQ(manager().allowedFileTypes().size(), 2);
}

TEST_F(NavigatorViews, aRequestThatNamesNoKnownExtensionOrNoSwitchChangesNothing) {
    loadGroupWithFiles();
    const QVariantMap before = manager().allowedFileTypesDictionary();
    const QString extension = QStringLiteral("extension");
    const QString allowed = QStringLiteral("allowed");
    for (const QVariantMap& request :
         {QVariantMap(), QVariantMap{{extension, QStringLiteral("swift")}, {allowed, false}},
          QVariantMap{{extension, QStringLiteral("m")}},
          QVariantMap{{extension, QStringLiteral("m")}, {allowed, QStringLiteral("no")}},
          QVariantMap{{extension, QStringLiteral("m")}, {allowed, QByteArray()}},
          QVariantMap{{extension, QVariantList{QStringLiteral("m")}}, {allowed, false}},
          QVariantMap{{extension, 5}, {allowed, false}}, QVariantMap{{allowed, false}}}) {
        EXPECT_EQ(manager().changeFiletypeAllowanceWithDictionary(request), before);
    }
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(NavigatorViews, aSwitchMayBeAReal) {
    loadGroupWithFiles();
    const auto setAllowed = [&](double value) {
        manager().changeFiletypeAllowanceWithDictionary(
            {{QStringLiteral("extension"), QStringLiteral("m")},
             {QStringLiteral("allowed"), value}});
        return context().filetypesWithExtension("m").front()->allowed();
    };
    EXPECT_EQ(setAllowed(0.0), false);
    EXPECT_EQ(setAllowed(1.0), true);
}

} // namespace
} // namespace navrel
