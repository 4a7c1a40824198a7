#pragma once

#include "project/store/SQLiteDatabase.h"
#include "project/store/StoreLimits.h"
#include "project/store/StoreTables.h"
#include "support/core/Error.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>
#include <tuple>
#include <vector>

namespace navrel {

struct EntityDescription;

/// Domain of the errors of files that are not a store of this program.
extern const QString kStoreFileErrorDomain;

/// The codes of that domain.
enum class StoreFileError {
    kNotARegularFile = 1,
    /// The database belongs to something else, or its columns are not those of the model.
    kForeignSchema = 2,
    /// Made by a later version of the program.
    kTooNew = 3,
    /// Its pages or values are not what the program writes.
    kDamaged = 4,
    kTooLarge = 5,
};

/// The store as a file: an SQLite 3 database with a table for each entity, whose columns are its
/// attributes by name. The file is not trusted. One thread at a time.
class StoreFile {
public:
    /// `maximumSize` is in bytes: larger files are neither opened nor written.
    explicit StoreFile(qint64 maximumSize = kMaximumStoreSize) : maximumSize_(maximumSize) {}

    /// Opens the file, or creates it, so that only the user can read it. After an error the file is
    /// as it was, and this object must not be used any more.
    std::optional<Error> open(const QByteArray& path);

    /// Appends the file's records to empty tables, in the order of their insertion.
    std::optional<Error> load(StoreTables& tables);

    /// Writes all changes of the tables, or none of them.
    std::optional<Error> save(StoreTables& tables);

private:
    using RowReceiver = std::function<std::optional<Error>(const SQLiteStatement& row)>;

    /// The statements for one entity, which are prepared once.
    template <typename Record>
    struct Statements {
        SQLiteStatement read;
        SQLiteStatement writeOne;
        SQLiteStatement writeBatch;
        SQLiteStatement removeRange;
        SQLiteStatement removeAll;
    };

    std::optional<Error> configure();
    std::optional<Error> limitSize();
    std::optional<Error> makeOrCheckTables();
    std::optional<Error> makeTables();
    std::optional<Error> checkOwner();
    std::optional<Error> checkTables();
    std::optional<Error> checkColumns(const EntityDescription& entity);
    std::optional<Error> checkPages();
    std::optional<Error> leaveWriteAheadLog();
    template <typename Record>
    std::optional<Error> prepareStatementsOf();
    template <typename Record>
    std::optional<Error> loadTable(RecordTable<Record>& table);
    template <typename Record>
    std::optional<Error> saveTable(const RecordTable<Record>& table);
    template <typename Record>
    std::optional<Error> saveRemovals(const RecordTable<Record>& table);
    template <typename Record>
    std::optional<Error> writeRecords(const std::vector<const Record*>& records);
    /// Calls `receive` for each row of a query until it returns an error.
    std::optional<Error> forEachRow(const QByteArray& sql, const RowReceiver& receive);
    std::optional<Error> inTransaction(const std::function<std::optional<Error>()>& work);

    qint64 maximumSize_;
    SQLiteDatabase database_;
    std::tuple<Statements<CDObject>, Statements<CDFiletype>, Statements<CDShortcut>,
               Statements<CDElement>>
        statements_;
};

} // namespace navrel
