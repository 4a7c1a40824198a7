#include "bench/project/BareStore.h"

#include <cstdio>
#include <cstdlib>

namespace navrel::bench {

namespace {

// Those of the program's own store.
constexpr char kSettings[] = "PRAGMA cache_size = -65536; PRAGMA synchronous = FULL;"
                             "PRAGMA journal_mode = DELETE;";

} // namespace

void require(const std::optional<Error>& error) {
    if (error) {
        std::fprintf(stderr, "%s\n", error->description().toUtf8().constData());
        std::exit(EXIT_FAILURE);
    }
}

BareStore::BareStore(const QString& path, bool indexed) {
    require(database_.open(path.toUtf8()));
    execute(kSettings);
    if (indexed) {
        execute("CREATE INDEX byIdentifier ON CDElement(identifier)");
    }
    require(database_.prepare("INSERT INTO CDElement (identifier, line, name, path, type)"
                              " VALUES (?, ?, ?, ?, ?)",
                              insert_));
    require(database_.prepare("DELETE FROM CDElement WHERE rowid = ?", removeRow_));
    require(database_.prepare("UPDATE CDObject SET modified = ? WHERE rowid = 1", updateDate_));
    require(database_.prepare("SELECT line, name, path, type FROM CDElement WHERE identifier = ?",
                              select_));
}

void BareStore::removeAll() {
    execute("DELETE FROM CDElement");
}

void BareStore::insert(const std::vector<ElementRow>& rows) {
    execute("BEGIN IMMEDIATE");
    insertRows(rows);
    execute("COMMIT");
}

void BareStore::replace(qint64 firstRow, const std::vector<ElementRow>& rows, qint64 date) {
    execute("BEGIN IMMEDIATE");
    for (std::size_t row = 0; row < rows.size(); ++row) {
        removeRow_.bind(1, firstRow + static_cast<qint64>(row));
        require(removeRow_.run());
    }
    updateDate_.bind(1, date);
    require(updateDate_.run());
    insertRows(rows);
    execute("COMMIT");
}

qint64 BareStore::fetch(const QByteArray& identifier) {
    qint64 sum = 0;
    select_.bind(1, std::optional(identifier));
    while (select_.step()) {
        sum += select_.integer(0);
        for (const int column : {1, 2, 3}) {
            sum += select_.text(column).size() > 0 ? 0 : 1;
        }
    }
    select_.reset();
    return sum;
}

void BareStore::execute(const char* sql) {
    require(database_.execute(sql));
}

void BareStore::insertRows(const std::vector<ElementRow>& rows) {
    sqlite3_stmt* statement = insert_.handle();
    const auto bindText = [&](int parameter, const QByteArray& text) {
        sqlite3_bind_text(statement, parameter, text.constData(), static_cast<int>(text.size()),
                          SQLITE_STATIC);
    };
    for (const ElementRow& row : rows) {
        bindText(1, row.identifier);
        sqlite3_bind_int64(statement, 2, row.line);
        bindText(3, row.name);
        bindText(4, row.path);
        bindText(5, row.type);
        if (sqlite3_step(statement) != SQLITE_DONE) {
            std::exit(EXIT_FAILURE);
        }
        sqlite3_reset(statement);
    }
}

} // namespace navrel::bench
