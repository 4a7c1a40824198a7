#pragma once

#include "support/core/Error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <sqlite3.h>

#include <memory>
#include <optional>

namespace navrel {

/// Domain of the errors whose code is an (extended) SQLite result code.
extern const QString kSQLiteErrorDomain;

/// A prepared statement, kept for many runs. One run: bind, step until done, reset. Outlived by its
/// database.
class SQLiteStatement {
public:
    SQLiteStatement() = default;

    /// Parameters count from 1. Text stays the caller's and must outlive the run; nil is NULL.
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

    /// The statement itself, for callers that bind by hand.
    sqlite3_stmt* handle() const { return statement_.get(); }

    /// Runs on to the next row. False at the end and on failure, which `error` tells apart.
    bool step();
    /// Runs a statement without rows to its end and makes it ready for the next run.
    std::optional<Error> run();
    /// What the last step failed with.
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

/// A connection to a database file. One thread at a time.
class SQLiteDatabase {
public:
    /// Opens a file for reading and writing, and makes it where there is none. SQLite looks at its
    /// bytes only when a statement is run.
    std::optional<Error> open(const QByteArray& path);

    std::optional<Error> prepare(const QByteArray& sql, SQLiteStatement& statement);
    /// Runs statements that take no parameters and whose rows do not matter.
    std::optional<Error> execute(const QByteArray& sql);

    /// The connection, for settings.
    sqlite3* handle() const { return database_.get(); }

    /// The error of a result code that the connection just gave, or nothing for success.
    std::optional<Error> errorFrom(int resultCode) const;

private:
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Closer> database_;
};

} // namespace navrel
