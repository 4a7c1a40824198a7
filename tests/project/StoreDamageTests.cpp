#include "project/store/SQLiteDatabase.h"
#include "project/store/StoreFile.h"
#include "tests/OrdinaryUser.h"
#include "tests/project/OpenStore.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

/// Store files that this program did not write, or not like this.
class StoreDamage : public ::testing::Test {
protected:
    QString path() const { return folder_.filePath(QStringLiteral("store")); }

    void write(const QByteArray& bytes) const {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    QByteArray read() const {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// Runs SQL on the file from outside.
    void execute(const QByteArray& sql) const {
        SQLiteDatabase database;
        ASSERT_FALSE(database.open(path().toUtf8()).has_value());
        const std::optional<Error> error = database.execute(sql);
        ASSERT_FALSE(error.has_value()) << error->description().toStdString();
    }

    /// A new store with some records in it.
    void makeStore(int elements = 200) const {
        QFile::remove(path());
        const OpenStore store(path());
        store->insertFiletype().setExtension(QByteArray("m"));
        for (int line = 1; line <= elements; ++line) {
            CDElement& element = store->insertElement();
            element.setName(QByteArray(50, 'x'));
            element.setLine(line);
        }
        ASSERT_FALSE(store->save().has_value());
    }

    void expectError(const Error& expected) const {
        const OpenStore store(path());
        ASSERT_TRUE(store.error().has_value());
        EXPECT_EQ(*store.error(), expected) << store.error()->description().toStdString();
    }

    void expectRefused(const Error& expected) const {
        const QByteArray before = read();
        expectError(expected);
        EXPECT_TRUE(read() == before) << "the file was changed";
    }

    static Error storeError(StoreFileError code) {
        return {kStoreFileErrorDomain, static_cast<qint64>(code)};
    }

    QTemporaryDir folder_;
};

TEST_F(StoreDamage, anEmptyFileBecomesAStore) {
    write("");
    const OpenStore store(path());
    EXPECT_FALSE(store.error().has_value());
}

TEST_F(StoreDamage, aStoreMadeByHandIsTaken) {
    execute("CREATE TABLE CDObject(name TEXT, extension TEXT, identifier TEXT, 'index' INTEGER,"
            " isGroup INTEGER, modified INTEGER, parentID TEXT, path TEXT, subclassOf TEXT,"
            " type TEXT);"
            "CREATE TABLE CDFiletype(extension text, allowed integer);"
            "CREATE TABLE CDShortcut(identifier TEXT, line INTEGER, name TEXT, path TEXT,"
            " shortcut TEXT);"
            "CREATE TABLE CDElement(identifier TEXT, line INTEGER, name TEXT, path TEXT,"
            " type TEXT);"
            "INSERT INTO CDFiletype VALUES('m', 0)");

    const OpenStore store(path());
    ASSERT_FALSE(store.error().has_value()) << store.error()->description().toStdString();
    EXPECT_EQ(store->filetypesWithExtension("m").front()->allowed(), false);
}

TEST_F(StoreDamage, aStoreWithAWriteAheadLogIsTakenAndLeavesOneFile) {
    makeStore();
    execute("PRAGMA journal_mode = WAL");

    const OpenStore store(path());
    ASSERT_FALSE(store.error().has_value());
    store->insertElement();
    ASSERT_FALSE(store->save().has_value());
    EXPECT_FALSE(QFile::exists(path() + QStringLiteral("-wal")));
}

TEST_F(StoreDamage, aFileThatIsNoDatabaseIsRefused) {
    write(QByteArray("<?xml version=\"1.0\"?>\n").repeated(100));
    expectRefused(Error(kSQLiteErrorDomain, SQLITE_NOTADB));
}

TEST_F(StoreDamage, aFolderInItsPlaceIsRefused) {
    ASSERT_EQ(::mkdir(path().toUtf8().constData(), 0700), 0);
    expectError(storeError(StoreFileError::kNotARegularFile));
}

TEST_F(StoreDamage, aPipeInItsPlaceIsRefusedWithoutWaiting) {
    ASSERT_EQ(::mkfifo(path().toUtf8().constData(), 0600), 0);
    expectError(storeError(StoreFileError::kNotARegularFile));
}

TEST_F(StoreDamage, aFolderThatDoesNotExistIsAnError) {
    const OpenStore store(folder_.filePath(QStringLiteral("missing/store")));
    ASSERT_TRUE(store.error().has_value());
    EXPECT_EQ(store.error()->domain(), kSQLiteErrorDomain);
}

TEST_F(StoreDamage, anotherProgramsDatabaseIsRefused) {
    execute("CREATE TABLE moz_places(url TEXT)");
    expectRefused(storeError(StoreFileError::kForeignSchema));
}

TEST_F(StoreDamage, anotherProgramsMarkIsRefused) {
    makeStore();
    execute("PRAGMA application_id = 1234");
    expectRefused(storeError(StoreFileError::kForeignSchema));
}

TEST_F(StoreDamage, aStoreOfALaterVersionIsRefused) {
    makeStore();
    execute("PRAGMA user_version = 2");
    expectRefused(storeError(StoreFileError::kTooNew));
}

TEST_F(StoreDamage, aMissingTableIsRefused) {
    makeStore();
    execute("DROP TABLE CDShortcut");
    expectRefused(storeError(StoreFileError::kForeignSchema));
}

TEST_F(StoreDamage, otherColumnsAreRefused) {
    for (const char* change : {"ALTER TABLE CDFiletype ADD COLUMN more TEXT",
                               "ALTER TABLE CDFiletype RENAME COLUMN allowed TO permitted",
                               "ALTER TABLE CDFiletype DROP COLUMN allowed"}) {
        SCOPED_TRACE(change);
        makeStore();
        execute(change);
        expectRefused(storeError(StoreFileError::kForeignSchema));
    }
}

TEST_F(StoreDamage, columnsOfAnotherNatureAreRefused) {
    for (const char* columns :
         {"allowed INTEGER, extension INTEGER", "allowed INTEGER PRIMARY KEY, extension TEXT",
          "allowed INTEGER NOT NULL, extension TEXT", "allowed INTEGER, extension TEXT UNIQUE",
          "allowed INTEGER, extension TEXT GENERATED ALWAYS AS (allowed)"}) {
        SCOPED_TRACE(columns);
        makeStore();
        execute("DROP TABLE CDFiletype; CREATE TABLE CDFiletype(" + QByteArray(columns) + ")");
        expectRefused(storeError(StoreFileError::kForeignSchema));
    }
}

TEST_F(StoreDamage, aViewInATablesPlaceIsRefusedAndNeverRun) {
    makeStore();
    execute("DROP TABLE CDElement;"
            "CREATE VIEW CDElement(identifier, line, name, path, type) AS"
            " WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
            " SELECT 'A', i, 'n', 'p', 't' FROM n");
    expectRefused(storeError(StoreFileError::kForeignSchema));
}

TEST_F(StoreDamage, aTriggerIsRefused) {
    makeStore();
    execute("CREATE TRIGGER t AFTER INSERT ON CDElement BEGIN DELETE FROM CDFiletype; END");
    expectRefused(storeError(StoreFileError::kForeignSchema));
}

TEST_F(StoreDamage, valuesOfAnotherTypeAreRefused) {
    for (const char* change :
         {"UPDATE CDFiletype SET allowed = 'yes'", "UPDATE CDFiletype SET allowed = 2",
          "UPDATE CDFiletype SET allowed = 0.5", "UPDATE CDFiletype SET extension = x'00FF'",
          "INSERT INTO CDObject(\"index\") VALUES(2147483648)",
          "UPDATE CDElement SET line = 'three'"}) {
        SCOPED_TRACE(change);
        makeStore();
        execute(change);
        expectRefused(storeError(StoreFileError::kDamaged));
    }
}

TEST_F(StoreDamage, rowNumbersThatLeaveNoRoomAreRefused) {
    makeStore();
    execute("UPDATE CDFiletype SET rowid = 9223372036854775807");
    expectRefused(storeError(StoreFileError::kDamaged));
}

TEST_F(StoreDamage, aFileBeyondEverySizeIsRefused) {
    makeStore();
    ASSERT_EQ(::truncate(path().toUtf8().constData(), off_t{513} * 1024 * 1024), 0);
    expectError(storeError(StoreFileError::kTooLarge));
}

TEST_F(StoreDamage, moreRecordsThanAnyProjectMakesAreRefused) {
    makeStore();
    execute("INSERT INTO CDFiletype WITH RECURSIVE n(i) AS"
            " (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 2000000) SELECT NULL, NULL FROM n");
    expectError(storeError(StoreFileError::kTooLarge));
}

TEST_F(StoreDamage, aStoreLockedByAnotherProcessIsRefusedUntilItIsFree) {
    makeStore();
    SQLiteDatabase other;
    ASSERT_FALSE(other.open(path().toUtf8()).has_value());
    ASSERT_FALSE(other.execute("BEGIN EXCLUSIVE").has_value());
    expectError(Error(kSQLiteErrorDomain, SQLITE_BUSY));

    ASSERT_FALSE(other.execute("ROLLBACK").has_value());
    const OpenStore store(path());
    EXPECT_FALSE(store.error().has_value());
}

TEST_F(StoreDamage, aStoreThatCannotBeWrittenIsRefused) {
    makeStore();
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0400), 0);
    const OrdinaryUser user(QFileInfo(path()).path());
    expectRefused(Error(kSQLiteErrorDomain, SQLITE_READONLY));
}

TEST_F(StoreDamage, aFileCutShortIsRefused) {
    makeStore();
    write(read().chopped(4096));
    expectRefused(Error(kSQLiteErrorDomain, SQLITE_CORRUPT));
}

TEST_F(StoreDamage, aTreeOfPagesThatMeetAgainIsRefused) {
    makeStore(20'000);
    QByteArray bytes = read();
    // The root of the last table, CDElement, lies on page 5 and lists its children by their page
    // numbers: let each of them be the first.
    constexpr qsizetype kRoot = qsizetype{4} * 4096;
    constexpr char kInteriorPage = 0x05;
    ASSERT_EQ(bytes.at(kRoot), kInteriorPage);
    const auto bigEndian16 = [&](qsizetype at) {
        return static_cast<quint8>(bytes.at(at)) * 256 + static_cast<quint8>(bytes.at(at + 1));
    };
    const int cells = bigEndian16(kRoot + 3);
    const auto cellAt = [&](int cell) {
        return kRoot + bigEndian16(kRoot + 12 + qsizetype{2} * cell);
    };
    const QByteArray firstChild = bytes.mid(cellAt(0), 4);
    for (int cell = 1; cell < cells; ++cell) {
        bytes.replace(cellAt(cell), 4, firstChild);
    }
    write(bytes);
    expectRefused(storeError(StoreFileError::kDamaged));
}

TEST_F(StoreDamage, bytesChangedAtRandomNeitherStopNorHangTheProgram) {
    makeStore();
    const QByteArray whole = read();
    std::mt19937 random(20); // the same changes in every run
    int refused = 0;
    for (int round = 0; round < 200; ++round) {
        QByteArray damaged = whole;
        for (int change = 0; change < 20; ++change) {
            damaged[static_cast<qsizetype>(random() % static_cast<unsigned>(damaged.size()))] =
                static_cast<char>(random());
        }
        write(damaged);
        const OpenStore store(path());
        if (store.error()) {
            ++refused;
        } else {
            // What was changed is a value, or lies where nothing is kept.
            EXPECT_LE(store->elements().size(), 200U);
        }
    }
    EXPECT_GT(refused, 0);
}

} // namespace
} // namespace navrel
