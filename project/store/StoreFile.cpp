#include "project/store/StoreFile.h"

#include "project/store/ManagedObjectModel.h"
#include "project/store/StoreFolder.h"
#include "support/core/Assertion.h"
#include "support/files/OwnedDescriptor.h"

#include <QByteArrayList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace navrel {

const QString kStoreFileErrorDomain = QStringLiteral("StoreFileErrorDomain");

namespace {

// Marks a database as this program's ("NVRL"), and its layout.
constexpr qint64 kApplicationID = 0x4E56524C;
constexpr qint64 kLayoutVersion = 1;

// Another process holds the lock for no longer than it takes to read the tables; the main thread
// waits for that, and not for a process that sits on the file.
constexpr int kBusyTimeoutMilliseconds = 250;

// Rows are numbered by counting on from the last one. This program never gets near this number.
constexpr qint64 kMaximumRowID = std::numeric_limits<qint64>::max() / 2;

// Rows that one statement writes. Most of the cost of a row is that of starting a statement; more
// of them in one gain nothing.
constexpr std::size_t kRowsInBatch = 16;

// What a first load writes stays in memory until the commit, instead of being spilled half-way.
// A rollback journal, SQLite's default mode, is one extra file during a save and none at rest, and
// lets a killed process's half-written save be undone by the next process that opens the file. FULL
// also keeps a loss of power from damaging the file.
constexpr const char* kSettings = "PRAGMA cache_size = -65536;"
                                  "PRAGMA cell_size_check = ON;"
                                  "PRAGMA synchronous = FULL;";

Error storeError(StoreFileError code, const char* text) {
    return {kStoreFileErrorDomain, static_cast<qint64>(code), QString::fromUtf8(text)};
}

Error damagedError() {
    return storeError(StoreFileError::kDamaged, "The store holds values that do not belong there");
}

QByteArray quoted(const char* name) {
    return '"' + QByteArray(name) + '"';
}

const char* columnTypeOf(const AttributeDescription& attribute) {
    return attribute.isText ? "TEXT" : "INTEGER";
}

template <typename Record>
QByteArrayList columnsOf() {
    return std::apply([](auto... attribute) { return QByteArrayList{quoted(attribute.name)...}; },
                      Record::attributes());
}

/// Whether there is nothing at the path yet, or a file of which a store can be made.
std::optional<Error> checkFileKind(const QByteArray& path, qint64 maximumSize) {
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) {
        return errno == ENOENT ? std::nullopt : errorFromErrno(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return storeError(StoreFileError::kNotARegularFile, "The store is not a regular file");
    }
    if (status.st_size > maximumSize) {
        return storeError(StoreFileError::kTooLarge,
                          "The store is larger than any project makes it");
    }
    return std::nullopt;
}

/// Makes an empty file for the user alone where there is none: SQLite would leave its rights to the
/// umask. Its journals have those of the file. What fails here fails when SQLite opens the file.
void makeForUserAlone(const QByteArray& path) {
    constexpr mode_t kReadAndWrite = S_IRUSR | S_IWUSR;
    const OwnedDescriptor file(
        ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kReadAndWrite));
    if (file.isValid()) {
        ::fchmod(file.value(), kReadAndWrite); // whatever the umask left
    }
}

bool readInteger(const SQLiteStatement& row, int column, qint64 least, qint64 most,
                 qint64& number) {
    if (row.columnType(column) != SQLITE_INTEGER) {
        return false;
    }
    number = row.integer(column);
    return number >= least && number <= most;
}

template <typename Number>
bool readNumber(const SQLiteStatement& row, int column, std::optional<Number>& attribute) {
    qint64 number = 0;
    const bool fits = readInteger(row, column, std::numeric_limits<Number>::min(),
                                  std::numeric_limits<Number>::max(), number);
    attribute = static_cast<Number>(number);
    return fits;
}

bool readText(const SQLiteStatement& row, int column, std::optional<QByteArray>& attribute) {
    if (row.columnType(column) != SQLITE_TEXT) {
        return false;
    }
    attribute = row.text(column);
    return true;
}

/// Reads a column into an attribute of any type. False for a value that the attribute cannot have.
template <typename Value>
bool readAttribute(const SQLiteStatement& row, int column, std::optional<Value>& attribute) {
    if (row.columnType(column) == SQLITE_NULL) {
        return true;
    }
    if constexpr (std::is_same_v<Value, QByteArray>) {
        return readText(row, column, attribute);
    } else {
        return readNumber(row, column, attribute);
    }
}

/// Reads the columns from the second on; the first is the row number.
template <typename Record>
bool readAttributes(const SQLiteStatement& row, Record& record) {
    int column = 0;
    return std::apply(
        [&](auto... attribute) {
            return (readAttribute(row, ++column, record.*attribute.field) && ...);
        },
        Record::attributes());
}

/// Binds a record's row number and attributes to the parameters after `last`. The last one bound.
template <typename Record>
int bindRecord(SQLiteStatement& statement, int last, const Record& record) {
    statement.bind(++last, record.rowID());
    std::apply([&](auto... attribute) { (statement.bind(++last, record.*attribute.field), ...); },
               Record::attributes());
    return last;
}

} // namespace

std::optional<Error> StoreFile::open(const QByteArray& path) {
    std::optional<Error> error = checkFileKind(path, maximumSize_);
    if (!error) {
        makeForUserAlone(path);
        error = database_.open(path);
    }
    if (!error) {
        error = configure();
    }
    if (!error) {
        error = inTransaction([this] { return makeOrCheckTables(); });
    }
    if (!error) {
        error = leaveWriteAheadLog();
    }
    if (!error) {
        error = limitSize();
    }
    if (!error) {
        error = prepareStatementsOf<CDObject>();
    }
    if (!error) {
        error = prepareStatementsOf<CDFiletype>();
    }
    if (!error) {
        error = prepareStatementsOf<CDShortcut>();
    }
    if (!error) {
        error = prepareStatementsOf<CDElement>();
    }
    if (!error) {
        keepFromOthers(path);
    }
    return error;
}

std::optional<Error> StoreFile::configure() {
    sqlite3* database = database_.handle();
    sqlite3_busy_timeout(database, kBusyTimeoutMilliseconds);
    // Nothing that a foreign schema says is run.
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    return database_.execute(kSettings);
}

/// Bounds the file for as long as it is open. A save beyond fails as on a full disk.
std::optional<Error> StoreFile::limitSize() {
    qint64 pageSize = 0;
    std::optional<Error> error = forEachRow("PRAGMA page_size", [&](const SQLiteStatement& row) {
        pageSize = row.integer(0);
        return std::nullopt;
    });
    if (error) {
        return error;
    }
    NAVREL_ASSERT(pageSize > 0);
    return database_.execute("PRAGMA max_page_count = " +
                             QByteArray::number(maximumSize_ / pageSize));
}

std::optional<Error> StoreFile::makeOrCheckTables() {
    bool isEmpty = true;
    std::optional<Error> error =
        forEachRow("SELECT 1 FROM sqlite_schema LIMIT 1", [&](const auto&) {
            isEmpty = false;
            return std::nullopt;
        });
    if (error) {
        return error;
    }
    error = checkOwner();
    if (!error) {
        error = isEmpty ? makeTables() : checkTables();
    }
    return error ? error : checkPages();
}

std::optional<Error> StoreFile::makeTables() {
    QByteArray sql;
    for (const EntityDescription& entity : managedObjectModel().entities) {
        QByteArrayList columns;
        for (const AttributeDescription& attribute : entity.attributes) {
            columns.append(quoted(attribute.name) + ' ' + columnTypeOf(attribute));
        }
        sql += "CREATE TABLE " + quoted(entity.name) + " (" + columns.join(", ") + ");";
    }
    sql += "PRAGMA application_id = " + QByteArray::number(kApplicationID) + ';';
    sql += "PRAGMA user_version = " + QByteArray::number(kLayoutVersion) + ';';
    return database_.execute(sql);
}

std::optional<Error> StoreFile::checkOwner() {
    const auto check = [](const SQLiteStatement& row) -> std::optional<Error> {
        const qint64 application = row.integer(0);
        if (application != 0 && application != kApplicationID) {
            return storeError(StoreFileError::kForeignSchema,
                              "The database belongs to another program");
        }
        if (row.integer(1) > kLayoutVersion) {
            return storeError(StoreFileError::kTooNew,
                              "The store was made by a later version of the program");
        }
        return std::nullopt;
    };
    return forEachRow("SELECT application_id, user_version"
                      " FROM pragma_application_id, pragma_user_version",
                      check);
}

std::optional<Error> StoreFile::checkTables() {
    // Views, triggers and indexes count as tables too many.
    std::vector<QByteArray> names;
    const auto collect = [&](const SQLiteStatement& row) {
        names.push_back(row.text(0));
        return std::nullopt;
    };
    if (auto error = forEachRow("SELECT name FROM sqlite_schema", collect)) {
        return error;
    }
    std::vector<QByteArray> expected;
    for (const EntityDescription& entity : managedObjectModel().entities) {
        expected.emplace_back(entity.name);
    }
    std::sort(names.begin(), names.end());
    std::sort(expected.begin(), expected.end());
    if (names != expected) {
        return storeError(StoreFileError::kForeignSchema,
                          "The database holds other tables than a store");
    }
    for (const EntityDescription& entity : managedObjectModel().entities) {
        if (auto error = checkColumns(entity)) {
            return error;
        }
    }
    return std::nullopt;
}

std::optional<Error> StoreFile::checkColumns(const EntityDescription& entity) {
    std::vector<QByteArray> columns;
    const auto collect = [&](const SQLiteStatement& row) {
        // A key, a required column or a hidden one shows as another column than expected.
        columns.push_back(row.text(0) + ' ' + row.text(1).toUpper() + ' ' + row.text(2));
        return std::nullopt;
    };
    if (auto error =
            forEachRow("SELECT name, type, pk + \"notnull\" + hidden FROM pragma_table_xinfo(" +
                           quoted(entity.name) + ")",
                       collect)) {
        return error;
    }
    std::vector<QByteArray> expected;
    for (const AttributeDescription& attribute : entity.attributes) {
        expected.push_back(QByteArray(attribute.name) + ' ' + columnTypeOf(attribute) + " 0");
    }
    std::sort(columns.begin(), columns.end());
    std::sort(expected.begin(), expected.end());
    if (columns != expected) {
        return storeError(StoreFileError::kForeignSchema,
                          "The store's columns are not those of this version");
    }
    return std::nullopt;
}

std::optional<Error> StoreFile::checkPages() {
    return forEachRow("PRAGMA quick_check(1)",
                      [](const SQLiteStatement& row) -> std::optional<Error> {
                          const QByteArray finding = row.text(0);
                          if (finding == "ok") {
                              return std::nullopt;
                          }
                          return storeError(StoreFileError::kDamaged, finding.constData());
                      });
}

std::optional<Error> StoreFile::leaveWriteAheadLog() {
    // A database made by hand may use a write-ahead log, which would stay beside it at rest.
    return forEachRow("PRAGMA journal_mode = DELETE",
                      [](const SQLiteStatement& row) -> std::optional<Error> {
                          if (row.text(0) == "delete") {
                              return std::nullopt;
                          }
                          return Error(kSQLiteErrorDomain, SQLITE_BUSY,
                                       QStringLiteral("The store's write-ahead log is in use"));
                      });
}

template <typename Record>
std::optional<Error> StoreFile::prepareStatementsOf() {
    auto& statements = std::get<Statements<Record>>(statements_);
    const QByteArray table = quoted(Record::kEntityName);
    const QByteArrayList columns = QByteArrayList{"rowid"} + columnsOf<Record>();
    const QByteArray list = columns.join(", ");
    const QByteArray row = '(' + QByteArrayList(columns.size(), "?").join(", ") + ')';
    // Replaces: a commit that was reported as failed may have reached the file all the same, and
    // the next save then writes the same rows again.
    const QByteArray write = "INSERT OR REPLACE INTO " + table + " (" + list + ") VALUES ";

    const std::array<std::pair<SQLiteStatement*, QByteArray>, 5> texts{{
        {&statements.read, "SELECT " + list + " FROM " + table + " ORDER BY rowid"},
        {&statements.writeOne, write + row},
        {&statements.writeBatch, write + QByteArrayList(kRowsInBatch, row).join(", ")},
        {&statements.removeRange, "DELETE FROM " + table + " WHERE rowid BETWEEN ? AND ?"},
        {&statements.removeAll, "DELETE FROM " + table},
    }};
    for (const auto& [statement, text] : texts) {
        if (auto error = database_.prepare(text, *statement)) {
            return error;
        }
    }
    return std::nullopt;
}

std::optional<Error> StoreFile::load(StoreTables& tables) {
    return inTransaction(
        [&] { return tables.visitUntil([&](auto& table) { return loadTable(table); }); });
}

template <typename Record>
std::optional<Error> StoreFile::loadTable(RecordTable<Record>& table) {
    SQLiteStatement& rows = std::get<Statements<Record>>(statements_).read;
    while (rows.step()) {
        const qint64 rowID = rows.integer(0);
        if (table.size() == kMaximumStoredRecords) {
            return storeError(StoreFileError::kTooLarge,
                              "The store holds more records than any project makes");
        }
        // Damaged pages may give rows twice or out of order.
        const bool isInOrder = rowID >= table.nextRowID() && rowID <= kMaximumRowID;
        if (!isInOrder ||
            !table.insertStored(rowID, [&](Record& r) { return readAttributes(rows, r); })) {
            return damagedError();
        }
    }
    rows.reset();
    return rows.error();
}

std::optional<Error> StoreFile::save(StoreTables& tables) {
    return inTransaction(
        [&] { return tables.visitUntil([&](auto& table) { return saveTable(table); }); });
}

template <typename Record>
std::optional<Error> StoreFile::saveTable(const RecordTable<Record>& table) {
    if (auto error = saveRemovals(table)) {
        return error;
    }
    std::vector<const Record*> batch;
    batch.reserve(kRowsInBatch);
    std::optional<Error> error;
    const auto write = [&](const Record* record) {
        batch.push_back(record);
        if (batch.size() == kRowsInBatch) {
            error = writeRecords(batch);
            batch.clear();
        }
        return !error;
    };
    for (const Record* changed : table.changedRecords()) {
        if (!write(changed)) {
            return error;
        }
    }
    for (const Record* record = table.firstNewRecord(); record != nullptr;
         record = RecordTable<Record>::next(*record)) {
        if (!write(record)) {
            return error;
        }
    }
    return writeRecords(batch);
}

template <typename Record>
std::optional<Error> StoreFile::saveRemovals(const RecordTable<Record>& table) {
    auto& statements = std::get<Statements<Record>>(statements_);
    if (table.isFileOutdated()) {
        return statements.removeAll.run();
    }
    // The records of one file were inserted one after the other: their rows go in one statement.
    std::vector<qint64> rowIDs = table.removedRowIDs();
    std::sort(rowIDs.begin(), rowIDs.end());
    for (std::size_t first = 0; first < rowIDs.size();) {
        std::size_t end = first + 1;
        while (end < rowIDs.size() && rowIDs[end] == rowIDs[end - 1] + 1) {
            ++end;
        }
        statements.removeRange.bind(1, rowIDs[first]);
        statements.removeRange.bind(2, rowIDs[end - 1]);
        if (auto error = statements.removeRange.run()) {
            return error;
        }
        first = end;
    }
    return std::nullopt;
}

/// Writes a full batch in one statement, a smaller one record by record.
template <typename Record>
std::optional<Error> StoreFile::writeRecords(const std::vector<const Record*>& records) {
    auto& statements = std::get<Statements<Record>>(statements_);
    if (records.size() == kRowsInBatch) {
        int lastParameter = 0;
        for (const Record* record : records) {
            lastParameter = bindRecord(statements.writeBatch, lastParameter, *record);
        }
        return statements.writeBatch.run();
    }
    for (const Record* record : records) {
        bindRecord(statements.writeOne, 0, *record);
        if (auto error = statements.writeOne.run()) {
            return error;
        }
    }
    return std::nullopt;
}

std::optional<Error> StoreFile::forEachRow(const QByteArray& sql, const RowReceiver& receive) {
    SQLiteStatement rows;
    if (auto error = database_.prepare(sql, rows)) {
        return error;
    }
    while (rows.step()) {
        if (auto error = receive(rows)) {
            return error;
        }
    }
    return rows.error();
}

std::optional<Error> StoreFile::inTransaction(const std::function<std::optional<Error>()>& work) {
    // Immediate: whether the file can be written is known at once, before anything is done.
    std::optional<Error> error = database_.execute("BEGIN IMMEDIATE");
    if (error) {
        return error;
    }
    error = work();
    if (!error) {
        error = database_.execute("COMMIT");
    }
    if (error) {
        // Where SQLite has rolled back by itself there is nothing left to do.
        static_cast<void>(database_.execute("ROLLBACK"));
    }
    return error;
}

} // namespace navrel
