#pragma once

#include "project/store/SQLiteDatabase.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace navrel::bench {

/// One element of a source file, as the scan of a file gives it.
struct ElementRow {
    QByteArray identifier;
    qint64 line;
    QByteArray name;
    QByteArray path;
    QByteArray type;
};

/// The floor of the store: the same rows through prepared statements alone, into a file with the
/// same tables and settings. Errors end the program.
class BareStore {
public:
    /// Takes a store that was made by the program, without rows, and, for `indexed` ones, gives it
    /// the index without which no row would be fetched by its identifier.
    BareStore(const QString& path, bool indexed);

    void removeAll();
    /// All rows in one transaction.
    void insert(const std::vector<ElementRow>& rows);
    /// Replaces the rows with numbers from `firstRow` on by as many new ones, and writes the date
    /// of the file's record, in one transaction.
    void replace(qint64 firstRow, const std::vector<ElementRow>& rows, qint64 date);
    /// The sum of the lines of a file's elements, each of whose columns is read.
    qint64 fetch(const QByteArray& identifier);

private:
    void execute(const char* sql);
    void insertRows(const std::vector<ElementRow>& rows);

    SQLiteDatabase database_;
    SQLiteStatement insert_;
    SQLiteStatement removeRow_;
    SQLiteStatement updateDate_;
    SQLiteStatement select_;
};

/// Ends the program when something failed.
void require(const std::optional<Error>& error);

} // namespace navrel::bench
