#pragma once

#include "support/core/Error.h"

#include <QByteArray>
#include <QString>
#include <sqlite3.h>

#include <memory>
#include <optional>

namespace navrel {

/// Domain of the errors whose code is an (extended) SQLite result code.
extern const QString kSQLiteErrorDomain;

/// The error of the connection's last call.
Error lastErrorOf(sqlite3* database);

/// A prepared statement, for many runs. One run: bind, step until done, reset. Must be destroyed
/// before its database. One thread at a time.
class SQLiteStatement {
public:
    SQLiteStatement() = default;

    /// Parameters count from 1. Text is not copied and must outlive the run; nil is NULL.
    void bind(int parameter, const std::optional<QByteArray>& text);
    void bind(int parameter, qint64 number);
    template <typename Number>
    void bind(int parameter, std::optional<Number> number) {
        if (number) {
            bind(parameter, static_cast<qint64>(*number));
        } else {
            sqlite3_bind_null(statement_.get(), parameter);
        }
    }

    /// The statement itself, for callers that bind by hand. Owned by this.
    sqlite3_stmt* handle() const { return statement_.get(); }

    /// Runs to the next row. False at the end, and on failure: then `error` has the reason.
    bool step();
    /// Runs a statement without rows to its end, and resets it.
    std::optional<Error> run();
    /// The error of the last step; nil if it did not fail.
    const std::optional<Error>& error() const { return error_; }
    void reset() { sqlite3_reset(statement_.get()); }

    // The current row. Columns count from 0.

    /// One of SQLITE_INTEGER, SQLITE_TEXT, SQLITE_NULL …: the type as stored.
    int columnType(int column) const { return sqlite3_column_type(statement_.get(), column); }
    qint64 integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
    QByteArray text(int column) const;

private:
    friend class SQLiteDatabase;

    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
    std::optional<Error> error_;
};

} // namespace navrel
