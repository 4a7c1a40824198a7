#include "tests/project/DataManagerFixture.h"

#include <QVariantList>
#include <QVariantMap>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

QVariantList itemsOf(const QVariantMap& dictionary) {
    return dictionary.value(QStringLiteral("items")).toList();
}

/// One value of every item.
std::vector<std::string> valuesOf(const QVariantMap& dictionary, const QString& key) {
    std::vector<std::string> values;
    for (const QVariant& item : itemsOf(dictionary)) {
        values.push_back(item.toMap().value(key).toString().toStdString());
    }
    return values;
}

class ScanViews : public DataManagerTest {
protected:
    void addShortcut(const QByteArray& text, qint64 line = 1, const QByteArray& path = "/p/a.c") {
        CDShortcut& shortcut = context().insertShortcut();
        shortcut.setIdentifier("A");
        shortcut.setPath(path);
        shortcut.setLine(line);
        shortcut.setShortcut(text);
    }

    void addFile(const QByteArray& identifier, const QByteArray& name) {
        CDObject& object = context().insertObject();
        object.setIdentifier(identifier);
        object.setName(name);
        object.setPath("/p/" + name);
    }

    void addElement(const QByteArray& identifier, qint64 line, const QByteArray& name) {
        CDElement& element = context().insertElement();
        element.setIdentifier(identifier);
        element.setLine(line);
        element.setName(name);
        element.setPath("/p/a");
        element.setType("method");
    }

    QVariantMap elementsOf(const char* identifier) {
        const auto dictionary =
            manager().elementsDictionaryForObjectID(QString::fromUtf8(identifier));
        EXPECT_TRUE(dictionary.has_value());
        return dictionary.value_or(QVariantMap());
    }

    QVariant counterpartOf(const char* identifier) {
        return elementsOf(identifier).value(QStringLiteral("counterpart"));
    }
};

// Shortcuts.

TEST_F(ScanViews, aByteOrderMarkIsPartOfTheNameThatBeginsWithIt) {
    addShortcut("\uFEFFtap");
    addFile("A", "\uFEFFa.m");
    addElement("A", 1, "\uFEFFrun");
    EXPECT_THAT(valuesOf(manager().shortcutsDictionary(), QStringLiteral("shortcut")),
                ElementsAre("\uFEFFtap"));
    EXPECT_THAT(valuesOf(elementsOf("A"), QStringLiteral("name")), ElementsAre("\uFEFFrun"));
    EXPECT_EQ(elementsOf("A").value(QStringLiteral("title")), QStringLiteral("\uFEFFa.m"));
}

TEST_F(ScanViews, withoutShortcutsTheirListIsEmpty) {
    const QVariantMap dictionary = manager().shortcutsDictionary();
    EXPECT_EQ(dictionary.keys(), QStringList{QStringLiteral("items")});
    EXPECT_THAT(itemsOf(dictionary), IsEmpty());
}

TEST_F(ScanViews, aShortcutTellsItsTextLineAndPathAndNothingElse) {
    addShortcut("Setup", 12, "/p/b.swift");
    const QVariantList items = itemsOf(manager().shortcutsDictionary());
    ASSERT_EQ(items.size(), 1);
    const QVariantMap expected = {{QStringLiteral("shortcut"), QStringLiteral("Setup")},
                                  {QStringLiteral("line"), qint64(12)},
                                  {QStringLiteral("path"), QStringLiteral("/p/b.swift")}};
    EXPECT_EQ(items.first().toMap(), expected);
}

TEST_F(ScanViews, shortcutsAreOrderedWithoutLetterCase) {
    for (const char* text : {"gamma", "Beta", "alpha"}) {
        addShortcut(text);
    }
    EXPECT_THAT(valuesOf(manager().shortcutsDictionary(), QStringLiteral("shortcut")),
                ElementsAre("alpha", "Beta", "gamma"));
}

TEST_F(ScanViews, withoutAStoreTheListOfShortcutsIsEmpty) {
    write(storeFolder(), "a file in place of the folder");
    EXPECT_THAT(itemsOf(manager().shortcutsDictionary()), IsEmpty());
    EXPECT_EQ(manager().elementsDictionaryForObjectID(QStringLiteral("A")), std::nullopt);
}

// Elements.

TEST_F(ScanViews, anUnknownIdentifierHasNoElementList) {
    addElement("A", 1, "x");
    EXPECT_EQ(manager().elementsDictionaryForObjectID(QStringLiteral("A")), std::nullopt);
}

TEST_F(ScanViews, aFileTellsItsTitleIdentifierItemsAndPath) {
    addFile("A", "Bar.swift");
    const QVariantMap expected = {{QStringLiteral("title"), QStringLiteral("Bar.swift")},
                                  {QStringLiteral("identifier"), QStringLiteral("A")},
                                  {QStringLiteral("items"), QVariantList()},
                                  {QStringLiteral("path"), QStringLiteral("/p/Bar.swift")}};
    EXPECT_EQ(elementsOf("A"), expected);
}

TEST_F(ScanViews, theLastRecordOfAnIdentifierIsTheFile) {
    addFile("A", "Old.m");
    addFile("A", "New.m");
    EXPECT_EQ(elementsOf("A").value(QStringLiteral("title")), QStringLiteral("New.m"));
}

TEST_F(ScanViews, anElementTellsItsNameLinePathAndType) {
    addFile("A", "a.m");
    addElement("A", 3, "-init");
    const QVariantMap expected = {{QStringLiteral("name"), QStringLiteral("-init")},
                                  {QStringLiteral("line"), qint64(3)},
                                  {QStringLiteral("path"), QStringLiteral("/p/a")},
                                  {QStringLiteral("type"), QStringLiteral("method")}};
    EXPECT_EQ(itemsOf(elementsOf("A")).first().toMap(), expected);
}

TEST_F(ScanViews, elementsAreOrderedByLineAndAreTheFilesOwn) {
    addFile("A", "a.m");
    for (const qint64 line : {12, 3, 7}) {
        addElement("A", line, QByteArray::number(line));
        addElement("B", line, "other");
    }
    EXPECT_THAT(valuesOf(elementsOf("A"), QStringLiteral("name")), ElementsAre("3", "7", "12"));
}

// Counterparts.

TEST_F(ScanViews, headerAndImplementationAreCounterparts) {
    addFile("M", "Foo.m");
    addFile("H", "Foo.h");
    EXPECT_EQ(counterpartOf("M"), QStringLiteral("H"));
    EXPECT_EQ(counterpartOf("H"), QStringLiteral("M"));
    EXPECT_EQ(elementsOf("M").size(), 5);
}

TEST_F(ScanViews, theCounterpartOfTheLaterExtensionWins) {
    addFile("M", "Foo.m");
    addFile("MM", "Foo.mm");
    addFile("H", "Foo.h");
    EXPECT_EQ(counterpartOf("M"), QStringLiteral("MM"));
    addFile("C", "Foo.c");
    addFile("CPP", "Foo.cpp");
    EXPECT_EQ(counterpartOf("M"), QStringLiteral("C"));
}

TEST_F(ScanViews, anAmbiguousNameIsNoCounterpart) {
    addFile("M", "Foo.m");
    addFile("H1", "Foo.h");
    addFile("H2", "Foo.h");
    EXPECT_FALSE(elementsOf("M").contains(QStringLiteral("counterpart")));
    EXPECT_EQ(counterpartOf("H1"), QStringLiteral("M"));
}

TEST_F(ScanViews, anotherFileOfTheSameNameIsACounterpart) {
    addFile("M1", "Foo.m");
    addFile("M2", "Foo.m");
    EXPECT_EQ(counterpartOf("M1"), QStringLiteral("M2"));
}

TEST_F(ScanViews, aSwiftFileHasACounterpartOnlyInAnotherLanguage) {
    addFile("S", "Bar.swift");
    addFile("S2", "Bar.swift");
    EXPECT_FALSE(elementsOf("S").contains(QStringLiteral("counterpart")));
    addFile("H", "Bar.h");
    EXPECT_EQ(counterpartOf("S"), QStringLiteral("H"));
}

// From the files to the views.

TEST_F(ScanViews, aLoadedProjectShowsWhatItsSourcesHold) {
    writeFile("Foo.h", "@interface Foo : Base\n- (void)run;\n@end\n");
    writeFile("Foo.m", "// navrel: Start\n- (void)run {\n}\n");
    load(ProjectText().group("MAIN", {"H", "M"}).file("H", "Foo.h").file("M", "Foo.m"));

    EXPECT_EQ(object("H")->subclassOf(), "Base");
    EXPECT_THAT(valuesOf(manager().shortcutsDictionary(), QStringLiteral("shortcut")),
                ElementsAre("Start"));
    const auto elements = manager().elementsDictionaryForObjectID(QStringLiteral("M"));
    ASSERT_TRUE(elements.has_value());
    EXPECT_THAT(valuesOf(*elements, QStringLiteral("name")), ElementsAre("Start", "-run"));
    EXPECT_EQ(elements->value(QStringLiteral("counterpart")), QStringLiteral("H"));

    writeFile("Foo.m", "\n- (void)stop {\n}\n");
    touch("Foo.m", 1000);
    pass();
    EXPECT_THAT(itemsOf(manager().shortcutsDictionary()), IsEmpty());
    EXPECT_THAT(valuesOf(*manager().elementsDictionaryForObjectID(QStringLiteral("M")),
                         QStringLiteral("name")),
                ElementsAre("-stop"));
}

} // namespace
} // namespace navrel
