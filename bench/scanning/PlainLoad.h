#pragma once

#include "bench/scanning/SourceTree.h"
#include "scanning/PlainScan.h"
#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceFindings.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <memory>
#include <optional>

namespace navrel::bench {

/// The first load of a project by what is at hand: ICU's expressions as the patterns are written,
/// and Qt's database layer. It is given the list of files, which the program has to read and to
/// walk. Errors end the program.
class PlainLoad {
public:
    enum class Expressions {
        madeForEachFile, ///< as a scan that keeps nothing makes them
        kept,
    };

    explicit PlainLoad(Expressions expressions);

    /// Loads the files into a new database at the path; returns how many elements there are.
    std::size_t load(const SourceTree& tree, const QString& databasePath);

private:
    void loadFiles(const SourceTree& tree, QSqlDatabase& database);
    void loadFile(const QByteArray& path, int number);
    void scan(const QByteArray& path);
    void insertFindings(const QString& path, const QString& identifier);

    std::optional<PlainScan> kept_;
    SourceFileBuffer buffer_;
    std::unique_ptr<SourceFindings> findings_ = std::make_unique<SourceFindings>();

    // Of the load under way.
    std::optional<QSqlQuery> insertObject_;
    std::optional<QSqlQuery> insertShortcut_;
    std::optional<QSqlQuery> insertElement_;
    std::size_t elements_ = 0;
};

} // namespace navrel::bench
