#include "project/store/SQLiteDatabase.h"

namespace navrel {

const QString kSQLiteErrorDomain = QStringLiteral("NSSQLiteErrorDomain");

namespace {

Error errorOf(sqlite3* database) {
    return {kSQLiteErrorDomain, sqlite3_extended_errcode(database),
            QString::fromUtf8(sqlite3_errmsg(database))};
}

} // namespace

void SQLiteStatement::bind(int parameter, const std::optional<QByteArray>& text) {
    if (text) {
        sqlite3_bind_text64(statement_.get(), parameter, text->constData(),
                            static_cast<sqlite3_uint64>(text->size()), SQLITE_STATIC, SQLITE_UTF8);
    } else {
        sqlite3_bind_null(statement_.get(), parameter);
    }
}

void SQLiteStatement::bind(int parameter, qint64 number) {
    sqlite3_bind_int64(statement_.get(), parameter, number);
}

bool SQLiteStatement::step() {
    error_.reset();
    const int result = sqlite3_step(statement_.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        error_ = errorOf(sqlite3_db_handle(statement_.get()));
    }
    return result == SQLITE_ROW;
}

std::optional<Error> SQLiteStatement::run() {
    while (step()) {
    }
    reset();
    return error_;
}

QByteArray SQLiteStatement::text(int column) const {
    const auto* bytes = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return {reinterpret_cast<const char*>(bytes), size};
}

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
    return errorOf(database_.get());
}

} // namespace navrel
