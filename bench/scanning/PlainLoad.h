#pragma once

#include "bench/scanning/PlainPeer.h"
#include "bench/scanning/SourceTree.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <optional>

namespace navrel::bench {

/// The first load of a project by what is at hand: ICU in one of its ways, and Qt's database layer.
/// It is given the list of files, which the program has to read and to walk. Errors end the
/// program.
class PlainLoad {
public:
    explicit PlainLoad(PlainPeer::Way way) : scan_(way) {}

    /// Loads the files into a new database at the path; returns how many elements there are.
    std::size_t load(const SourceTree& tree, const QString& databasePath);

private:
    void loadFiles(const SourceTree& tree, QSqlDatabase& database);
    void loadFile(const QByteArray& path, int number);
    void insertFindings(const SourceFindings& findings, const QString& path,
                        const QString& identifier);

    PlainPeer scan_;

    // Of the load under way.
    std::optional<QSqlQuery> insertObject_;
    std::optional<QSqlQuery> insertShortcut_;
    std::optional<QSqlQuery> insertElement_;
    std::size_t elements_ = 0;
};

} // namespace navrel::bench
