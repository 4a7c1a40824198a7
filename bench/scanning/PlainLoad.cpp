#include "bench/scanning/PlainLoad.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSqlError>
#include <QVariant>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace navrel::bench {

namespace {

void require(bool succeeded, const QSqlError& error) {
    if (!succeeded) {
        std::fprintf(stderr, "%s\n", error.text().toUtf8().constData());
        std::exit(EXIT_FAILURE);
    }
}

void execute(QSqlDatabase& database, const char* sql) {
    QSqlQuery query(database);
    require(query.exec(QString::fromUtf8(sql)), query.lastError());
}

QSqlQuery prepared(QSqlDatabase& database, const char* sql) {
    QSqlQuery query(database);
    require(query.prepare(QString::fromUtf8(sql)), query.lastError());
    return query;
}

void insert(QSqlQuery& query, std::initializer_list<QVariant> values) {
    int column = 0;
    for (const QVariant& value : values) {
        query.bindValue(column++, value);
    }
    require(query.exec(), query.lastError());
}

/// The tables of the program's own store.
void makeTables(QSqlDatabase& database) {
    execute(database, "CREATE TABLE CDObject (extension, identifier, 'index', isGroup, modified,"
                      " name, parentID, path, subclassOf, type)");
    execute(database, "CREATE TABLE CDShortcut (identifier, line, name, path, shortcut)");
    execute(database, "CREATE TABLE CDElement (identifier, line, name, path, type)");
}

} // namespace

std::size_t PlainLoad::load(const SourceTree& tree, const QString& databasePath) {
    const QString connection = QStringLiteral("plain load");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(databasePath);
        require(database.open(), database.lastError());
        loadFiles(tree, database);
    }
    QSqlDatabase::removeDatabase(connection);
    return elements_;
}

void PlainLoad::loadFiles(const SourceTree& tree, QSqlDatabase& database) {
    makeTables(database);
    insertObject_ =
        prepared(database, "INSERT INTO CDObject VALUES (?, ?, ?, 0, ?, ?, ?, ?, ?, ?)");
    insertShortcut_ = prepared(database, "INSERT INTO CDShortcut VALUES (?, ?, NULL, ?, ?)");
    insertElement_ = prepared(database, "INSERT INTO CDElement VALUES (?, ?, ?, ?, ?)");
    elements_ = 0;
    require(database.transaction(), database.lastError());
    int number = 0;
    for (const QByteArray& path : tree.paths()) {
        loadFile(path, number++);
    }
    require(database.commit(), database.lastError());
    insertObject_.reset();
    insertShortcut_.reset();
    insertElement_.reset();
}

void PlainLoad::loadFile(const QByteArray& path, int number) {
    const SourceFindings& findings = scan_.scan(path);
    const QFileInfo file(QString::fromUtf8(path));
    const QString identifier = QString::number(number).rightJustified(24, u'0');
    const auto& superclass = findings.superclass();
    insert(*insertObject_,
           {file.suffix(), identifier, number, file.lastModified().toMSecsSinceEpoch(),
            file.fileName(), QStringLiteral("MAIN"), file.filePath(),
            superclass ? QVariant(QString::fromUtf8(*superclass)) : QVariant(),
            QStringLiteral("unknown")});
    insertFindings(findings, file.filePath(), identifier);
}

void PlainLoad::insertFindings(const SourceFindings& findings, const QString& path,
                               const QString& identifier) {
    for (const SourceShortcut& found : findings.shortcuts()) {
        insert(*insertShortcut_, {identifier, found.line, path, QString::fromUtf8(found.text)});
    }
    findings.visitElements([&](const SourceElement& found) {
        insert(*insertElement_, {identifier, found.line, QString::fromUtf8(found.name), path,
                                 QString::fromUtf8(nameOfElementType(found.type))});
        ++elements_;
    });
}

} // namespace navrel::bench
