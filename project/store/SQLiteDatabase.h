#pragma once

#include "project/store/SQLiteStatement.h"
#include "support/core/Error.h"

#include <QByteArray>
#include <sqlite3.h>

#include <memory>
#include <optional>

namespace navrel {

/// A connection to a database file. One thread at a time.
class SQLiteDatabase {
public:
    /// Opens a file for reading and writing, or creates it. SQLite reads its bytes only when a
    /// statement is run.
    std::optional<Error> open(const QByteArray& path);

    std::optional<Error> prepare(const QByteArray& sql, SQLiteStatement& statement);
    /// Runs statements without parameters, and ignores their rows.
    std::optional<Error> execute(const QByteArray& sql);

    /// The connection, for settings. Owned by this.
    sqlite3* handle() const { return database_.get(); }

private:
    /// The error of a result code that the connection just gave, or nothing for success.
    std::optional<Error> errorFrom(int resultCode) const;

    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Closer> database_;
};

} // namespace navrel
