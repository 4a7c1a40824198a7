#include "project/store/SQLiteStatement.h"

namespace navrel {

const QString kSQLiteErrorDomain = QStringLiteral("NSSQLiteErrorDomain");

Error lastErrorOf(sqlite3* database) {
    return {kSQLiteErrorDomain, sqlite3_extended_errcode(database),
            QString::fromUtf8(sqlite3_errmsg(database))};
}

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
        error_ = lastErrorOf(sqlite3_db_handle(statement_.get()));
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

} // namespace navrel
