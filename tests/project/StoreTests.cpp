#include "project/store/ManagedObjectModel.h"
#include "project/store/SQLiteDatabase.h"
#include "project/store/StoreFile.h"
#include "tests/project/OpenStore.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Store : public ::testing::Test {
protected:
    QString path() const { return folder_.filePath(QStringLiteral("store")); }

    /// Runs a query on the store file from outside and gives the first column of all rows.
    std::vector<std::string> query(const QByteArray& sql) const {
        SQLiteDatabase database;
        SQLiteStatement rows;
        std::vector<std::string> column;
        EXPECT_FALSE(database.open(path().toUtf8()).has_value());
        EXPECT_FALSE(database.prepare(sql, rows).has_value()) << sql.toStdString();
        while (rows.step()) {
            column.push_back(rows.text(0).toStdString());
        }
        EXPECT_FALSE(rows.error().has_value());
        return column;
    }

    QTemporaryDir folder_;
};

void insertElements(ManagedObjectContext& context, const QByteArray& identifier, int count) {
    for (int line = 1; line <= count; ++line) {
        CDElement& element = context.insertElement();
        element.setIdentifier(identifier);
        element.setLine(line);
    }
}

void insertElementsNamed(RecordTable<CDElement>& elements, const QByteArray& name, int count) {
    for (int element = 0; element < count; ++element) {
        elements.insert().setName(name);
    }
}

CDObject& insertNamed(ManagedObjectContext& context, const char* identifier, const char* name) {
    CDObject& object = context.insertObject();
    object.setIdentifier(QByteArray(identifier));
    object.setName(QByteArray(name));
    return object;
}

std::vector<qint64> linesOf(const std::vector<CDElement*>& elements) {
    std::vector<qint64> lines;
    for (const CDElement* element : elements) {
        lines.push_back(element->line().value_or(-1));
    }
    return lines;
}

std::vector<std::string> namesOf(const std::vector<CDObject*>& objects) {
    std::vector<std::string> names;
    for (const CDObject* object : objects) {
        names.push_back(object->name().value_or("nil").toStdString());
    }
    return names;
}

TEST(ManagedObjectModel, namesTheFourEntitiesAndTheirAttributes) {
    std::map<std::string, std::vector<std::string>> attributes;
    for (const EntityDescription& entity : managedObjectModel().entities) {
        for (const AttributeDescription& attribute : entity.attributes) {
            attributes[entity.name].emplace_back(attribute.name);
        }
    }

    const std::map<std::string, std::vector<std::string>> expected{
        {"CDObject",
         {"extension", "identifier", "index", "isGroup", "modified", "name", "parentID", "path",
          "subclassOf", "type"}},
        {"CDFiletype", {"allowed", "extension"}},
        {"CDShortcut", {"identifier", "line", "name", "path", "shortcut"}},
        {"CDElement", {"identifier", "line", "name", "path", "type"}},
    };
    EXPECT_EQ(attributes, expected);
}

TEST_F(Store, aNewRecordHasNoAttributes) {
    const OpenStore store(path());
    const CDObject& object = store->insertObject();

    EXPECT_FALSE(object.extension() || object.identifier() || object.index() || object.isGroup());
    EXPECT_FALSE(object.modified() || object.name() || object.parentID() || object.path());
    EXPECT_FALSE(object.subclassOf() || object.type());
}

TEST_F(Store, everyAttributeOfAnObjectOutlivesTheProgram) {
    {
        const OpenStore store(path());
        CDObject& object = store->insertObject();
        object.setExtension(QByteArray("m"));
        object.setIdentifier(QByteArray("OBJ_18"));
        object.setIndex(std::numeric_limits<qint32>::max());
        object.setIsGroup(true);
        object.setModified(1'700'000'000'123'456'789);
        object.setName(QByteArray("é😀\x01.m"));
        object.setParentID(QByteArray("P"));
        object.setPath(QByteArray("/a/b"));
        object.setSubclassOf(QByteArray("NSObject"));
        object.setType(QByteArray("sourcecode.c.objc"));
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    ASSERT_EQ(store->objects().size(), 1U);
    const CDObject& object = *store->objects().front();
    EXPECT_EQ(object.extension(), "m");
    EXPECT_EQ(object.identifier(), "OBJ_18");
    EXPECT_EQ(object.index(), std::numeric_limits<qint32>::max());
    EXPECT_EQ(object.isGroup(), true);
    EXPECT_EQ(object.modified(), 1'700'000'000'123'456'789);
    EXPECT_EQ(object.name(), "é😀\x01.m");
    EXPECT_EQ(object.parentID(), "P");
    EXPECT_EQ(object.path(), "/a/b");
    EXPECT_EQ(object.subclassOf(), "NSObject");
    EXPECT_EQ(object.type(), "sourcecode.c.objc");
    EXPECT_FALSE(store->hasChanges());
}

TEST_F(Store, everyAttributeOfTheOtherEntitiesOutlivesTheProgram) {
    {
        const OpenStore store(path());
        CDFiletype& filetype = store->insertFiletype();
        filetype.setAllowed(false);
        filetype.setExtension(QByteArray(""));
        CDShortcut& shortcut = store->insertShortcut();
        shortcut.setIdentifier(QByteArray("A"));
        shortcut.setLine(7);
        shortcut.setName(QByteArray("n"));
        shortcut.setPath(QByteArray("/p"));
        shortcut.setShortcut(QByteArray("Intro"));
        CDElement& element = store->insertElement();
        element.setIdentifier(QByteArray("B"));
        element.setLine(8);
        element.setName(QByteArray("a\0b", 3));
        element.setPath(QByteArray("/q"));
        element.setType(QByteArray("mark"));
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_EQ(store->filetypes().front()->allowed(), false);
    EXPECT_EQ(store->filetypes().front()->extension(), "");
    const CDShortcut& shortcut = *store->shortcuts().front();
    EXPECT_EQ(shortcut.identifier(), "A");
    EXPECT_EQ(shortcut.line(), 7);
    EXPECT_EQ(shortcut.name(), "n");
    EXPECT_EQ(shortcut.path(), "/p");
    EXPECT_EQ(shortcut.shortcut(), "Intro");
    const CDElement& element = *store->elements().front();
    EXPECT_EQ(element.identifier(), "B");
    EXPECT_EQ(element.line(), 8);
    EXPECT_EQ(element.name(), QByteArray("a\0b", 3));
    EXPECT_EQ(element.path(), "/q");
    EXPECT_EQ(element.type(), "mark");
}

TEST_F(Store, nilIsKeptApartFromTheEmptyText) {
    {
        const OpenStore store(path());
        insertNamed(*store, "A", "").setPath(std::nullopt);
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_EQ(store->objects().front()->name(), "");
    EXPECT_EQ(store->objects().front()->path(), std::nullopt);
}

TEST_F(Store, theFileHasATableForEachEntityAndAColumnForEachAttribute) {
    const OpenStore store(path());
    CDObject& object = store->insertObject();
    object.setIsGroup(false);
    object.setModified(1);
    object.setName(QByteArray("a"));
    ASSERT_FALSE(store->save().has_value());

    EXPECT_THAT(query("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY name"),
                ElementsAre("CDElement", "CDFiletype", "CDObject", "CDShortcut"));
    EXPECT_THAT(query("SELECT name || isGroup || modified FROM CDObject"
                      " WHERE path IS NULL AND \"index\" IS NULL AND identifier IS NULL"),
                ElementsAre("a01"));
}

TEST_F(Store, thereIsOneFileAtRest) {
    const OpenStore store(path());
    insertElements(*store, "A", 1000);
    ASSERT_FALSE(store->save().has_value());

    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files), QStringList{QStringLiteral("store")});
}

TEST_F(Store, fetchesGiveRecordsInTheOrderOfInsertion) {
    const OpenStore store(path());
    insertNamed(*store, "A", "first");
    insertNamed(*store, "B", "second");
    insertNamed(*store, "A", "third");

    EXPECT_THAT(namesOf(store->objects()), ElementsAre("first", "second", "third"));
    EXPECT_THAT(namesOf(store->objectsWithIdentifier("A")), ElementsAre("first", "third"));
    EXPECT_EQ(store->lastObjectWithIdentifier("A")->name(), "third");
    EXPECT_THAT(store->objectsWithIdentifier("a"), IsEmpty());
    EXPECT_EQ(store->lastObjectWithIdentifier("C"), nullptr);
}

TEST_F(Store, aFetchFollowsEveryChangeOfItsKey) {
    const OpenStore store(path());
    CDObject& object = insertNamed(*store, "A", "a");
    object.setParentID(QByteArray("P"));
    object.setSubclassOf(QByteArray("NSObject"));
    insertNamed(*store, "B", "b");

    object.setIdentifier(QByteArray("B"));
    object.setName(QByteArray("c"));
    object.setParentID(QByteArray("Q"));
    object.setSubclassOf(std::nullopt);

    EXPECT_THAT(store->objectsWithIdentifier("A"), IsEmpty());
    // Older than the record that stood under the key before.
    EXPECT_THAT(namesOf(store->objectsWithIdentifier("B")), ElementsAre("c", "b"));
    EXPECT_THAT(store->objectsWithName("a"), IsEmpty());
    EXPECT_THAT(store->objectsWithName("c"), ElementsAre(&object));
    EXPECT_THAT(store->objectsWithParentID("P"), IsEmpty());
    EXPECT_THAT(store->objectsWithParentID("Q"), ElementsAre(&object));
    EXPECT_THAT(store->objectsWithSubclassOf("NSObject"), IsEmpty());
}

TEST_F(Store, everyKeyIsFoundAgainAfterOpening) {
    {
        const OpenStore store(path());
        CDObject& object = insertNamed(*store, "A", "a");
        object.setParentID(QByteArray("P"));
        object.setSubclassOf(QByteArray("S"));
        store->insertFiletype().setExtension(QByteArray("m"));
        store->insertShortcut().setIdentifier(QByteArray("A"));
        insertElements(*store, "A", 1);
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_EQ(store->objectsWithIdentifier("A").size(), 1U);
    EXPECT_EQ(store->objectsWithName("a").size(), 1U);
    EXPECT_EQ(store->objectsWithParentID("P").size(), 1U);
    EXPECT_EQ(store->objectsWithSubclassOf("S").size(), 1U);
    EXPECT_EQ(store->filetypesWithExtension("m").size(), 1U);
    EXPECT_EQ(store->shortcutsWithIdentifier("A").size(), 1U);
    EXPECT_EQ(store->elementsWithIdentifier("A").size(), 1U);
}

TEST_F(Store, deletedRecordsAreFoundNeitherInMemoryNorInTheFile) {
    {
        const OpenStore store(path());
        insertElements(*store, "A", 6);
        insertElements(*store, "B", 2);
        ASSERT_FALSE(store->save().has_value());

        // A run of rows, a single row, and one that the file never saw.
        const auto elements = store->elementsWithIdentifier("A");
        for (const std::size_t position : {4, 0, 1}) {
            store->deleteElement(*elements[position]);
        }
        store->deleteElement(store->insertElement());
        EXPECT_THAT(linesOf(store->elementsWithIdentifier("A")), ElementsAre(3, 4, 6));
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_THAT(linesOf(store->elements()), ElementsAre(3, 4, 6, 1, 2));
}

TEST_F(Store, aRecordChangedAndDeletedBeforeTheSaveStaysDeleted) {
    {
        const OpenStore store(path());
        insertElements(*store, "A", 3);
        ASSERT_FALSE(store->save().has_value());

        const auto elements = store->elements();
        for (CDElement* element : elements) {
            element->setName(QByteArray("changed"));
        }
        store->deleteElement(*elements.front());
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_THAT(linesOf(store->elements()), ElementsAre(2, 3));
    EXPECT_EQ(store->elements().front()->name(), "changed");
    EXPECT_EQ(store->elements().back()->name(), "changed");
}

TEST_F(Store, deletingAllRecordsOfAnEntityLeavesTheOthers) {
    {
        const OpenStore store(path());
        insertNamed(*store, "A", "a");
        insertElements(*store, "A", 100);
        store->insertShortcut();
        store->insertFiletype().setExtension(QByteArray("m"));
        ASSERT_FALSE(store->save().has_value());

        store->deleteAllObjects();
        store->deleteAllElements();
        store->deleteAllShortcuts();
        EXPECT_THAT(store->elementsWithIdentifier("A"), IsEmpty());
        insertElements(*store, "B", 1);
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_THAT(store->objects(), IsEmpty());
    EXPECT_THAT(store->shortcuts(), IsEmpty());
    EXPECT_EQ(store->filetypes().size(), 1U);
    EXPECT_EQ(store->elements().size(), 1U);
    EXPECT_EQ(store->elementsWithIdentifier("B").size(), 1U);
}

TEST_F(Store, thereAreChangesExactlyUntilTheNextSave) {
    const OpenStore store(path());
    EXPECT_FALSE(store->hasChanges());

    CDObject& object = insertNamed(*store, "A", "a");
    EXPECT_TRUE(store->hasChanges());
    ASSERT_FALSE(store->save().has_value());
    EXPECT_FALSE(store->hasChanges());

    object.setName(QByteArray("b"));
    EXPECT_TRUE(store->hasChanges());
    ASSERT_FALSE(store->save().has_value());
    EXPECT_FALSE(store->hasChanges());

    store->deleteObject(object);
    EXPECT_TRUE(store->hasChanges());
    ASSERT_FALSE(store->save().has_value());
    EXPECT_FALSE(store->hasChanges());

    store->deleteAllObjects();
    EXPECT_FALSE(store->hasChanges());
}

TEST_F(Store, settingTheValueThatIsThereIsNoChange) {
    const OpenStore store(path());
    CDObject& object = insertNamed(*store, "A", "a");
    object.setModified(5);
    ASSERT_FALSE(store->save().has_value());
    const quint64 generation = store->objectsGeneration();

    object.setName(QByteArray("a"));
    object.setModified(5);

    EXPECT_FALSE(store->hasChanges());
    EXPECT_EQ(store->objectsGeneration(), generation);
}

TEST_F(Store, aFailedSaveKeepsTheRecordsAndTheNextOneWritesThem) {
    {
        const OpenStore store(path());
        CDObject& changed = insertNamed(*store, "A", "a");
        CDObject& deleted = insertNamed(*store, "B", "b");
        ASSERT_FALSE(store->save().has_value());
        changed.setName(QByteArray("changed"));
        store->deleteObject(deleted);
        insertNamed(*store, "C", "new");

        SQLiteDatabase other;
        ASSERT_FALSE(other.open(path().toUtf8()).has_value());
        ASSERT_FALSE(other.execute("BEGIN IMMEDIATE").has_value());
        const std::optional<Error> error = store->save();
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(*error, Error(kSQLiteErrorDomain, SQLITE_BUSY));
        EXPECT_THAT(namesOf(store->objects()), ElementsAre("changed", "new"));
        EXPECT_TRUE(store->hasChanges());

        ASSERT_FALSE(other.execute("ROLLBACK").has_value());
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_THAT(namesOf(store->objects()), ElementsAre("changed", "new"));
}

TEST_F(Store, aSaveWhileSomebodyReadsFailsAndTheNextOneWrites) {
    const OpenStore store(path());
    insertElements(*store, "A", 1);
    SQLiteDatabase reader;
    ASSERT_FALSE(reader.open(path().toUtf8()).has_value());
    ASSERT_FALSE(reader.execute("BEGIN; SELECT * FROM CDObject").has_value());

    EXPECT_TRUE(store->save().has_value());
    ASSERT_FALSE(reader.execute("COMMIT").has_value());
    EXPECT_FALSE(store->save().has_value());
    EXPECT_THAT(query("SELECT count(*) FROM CDElement"), ElementsAre("1"));
}

TEST_F(Store, aSaveWithoutChangesDoesNotTouchTheFile) {
    const OpenStore store(path());
    // Nobody can write now: a save that tried to would fail.
    SQLiteDatabase other;
    ASSERT_FALSE(other.open(path().toUtf8()).has_value());
    ASSERT_FALSE(other.execute("BEGIN IMMEDIATE").has_value());

    EXPECT_FALSE(store->save().has_value());
}

TEST_F(Store, pendingEditsAreCommittedInOrderUntilOneRefuses) {
    const OpenStore store(path());
    std::vector<int> asked;
    bool accepts = false;
    store->addPendingEdit([&] {
        asked.push_back(1);
        return true;
    });
    store->addPendingEdit([&] {
        asked.push_back(2);
        return accepts;
    });

    EXPECT_FALSE(store->commitEditing());
    EXPECT_THAT(asked, ElementsAre(1, 2));
    accepts = true;
    EXPECT_TRUE(store->commitEditing());
    EXPECT_TRUE(store->commitEditing());
    EXPECT_THAT(asked, ElementsAre(1, 2, 2));
}

TEST_F(Store, aHundredThousandRecordsComeBack) {
    constexpr int kFiles = 100;
    constexpr int kElements = 1000;
    {
        const OpenStore store(path());
        for (int file = 0; file < kFiles; ++file) {
            insertElements(*store, QByteArray::number(file), kElements);
        }
        ASSERT_FALSE(store->save().has_value());
    }

    const OpenStore store(path());
    EXPECT_EQ(store->elements().size(), std::size_t{kFiles} * kElements);
    EXPECT_EQ(linesOf(store->elementsWithIdentifier("57")).back(), kElements);
}

TEST_F(Store, noSaveMakesTheFileLargerThanOneThatIsOpened) {
    constexpr qint64 kMaximumSize = 100'000;
    {
        StoreFile file(kMaximumSize);
        StoreTables tables;
        ASSERT_FALSE(file.open(path().toUtf8()).has_value());
        insertElementsNamed(tables.elements, "small", 10);
        ASSERT_FALSE(file.save(tables).has_value());
        tables.elements.markSaved();
        insertElementsNamed(tables.elements, QByteArray(1000, 'x'), 100);
        ASSERT_TRUE(file.save(tables).has_value());
    }
    EXPECT_LE(QFileInfo(path()).size(), kMaximumSize);

    StoreFile file(kMaximumSize);
    StoreTables tables;
    ASSERT_FALSE(file.open(path().toUtf8()).has_value());
    ASSERT_FALSE(file.load(tables).has_value());
    EXPECT_EQ(tables.elements.size(), 10U);
}

} // namespace
} // namespace navrel
