#include "project/store/SQLiteDatabase.h"

namespace navrel {

std::optional<Error> SQLiteDatabase::open(const QByteArray& path) {
    sqlite3* database = nullptr;
    const int result = sqlite3_open_v2(path.constData(), &database,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE |
                                           SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE,
                                       nullptr);
    database_.reset(database);
    // A file that may not be written is opened for reading alone, without a word.
    if (result == SQLITE_OK && sqlite3_db_readonly(database, "main") == 1) {
        return Error(kSQLiteErrorDomain, SQLITE_READONLY,
                     QString::fromUtf8(sqlite3_errstr(SQLITE_READONLY)));
    }
    return errorFrom(result);
}

std::optional<Error> SQLiteDatabase::prepare(const QByteArray& sql, SQLiteStatement& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int result =
        sqlite3_prepare_v3(database_.get(), sql.constData(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.statement_.reset(prepared);
    return errorFrom(result);
}

std::optional<Error> SQLiteDatabase::execute(const QByteArray& sql) {
    return errorFrom(sqlite3_exec(database_.get(), sql.constData(), nullptr, nullptr, nullptr));
}

std::optional<Error> SQLiteDatabase::errorFrom(int resultCode) const {
    if (resultCode == SQLITE_OK) {
        return std::nullopt;
    }
    return lastErrorOf(database_.get());
}

} // namespace navrel
