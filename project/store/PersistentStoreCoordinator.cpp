#include "project/store/PersistentStoreCoordinator.h"

#include "project/store/StoreFile.h"
#include "project/store/StoreFolder.h"
#include "project/store/StoreTables.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <QFile>
#include <sqlite3.h>

#include <cerrno>
#include <utility>

namespace navrel {

PersistentStoreCoordinator::PersistentStoreCoordinator() = default;

PersistentStoreCoordinator::~PersistentStoreCoordinator() = default;

std::optional<Error> PersistentStoreCoordinator::addPersistentStoreAtPath(const QString& path) {
    NAVREL_ASSERT_MAIN_THREAD();
    path_ = QFile::encodeName(path);
    auto file = std::make_unique<StoreFile>();
    auto records = std::make_unique<StoreTables>();
    std::optional<Error> error = file->open(path_);
    if (!error) {
        error = file->load(*records);
    }
    if (!error) {
        file_ = std::move(file);
        records_ = std::move(records);
    }
    return error;
}

std::unique_ptr<StoreTables> PersistentStoreCoordinator::takeRecords() {
    return std::move(records_);
}

std::optional<Error> PersistentStoreCoordinator::save(StoreTables& tables) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::optional<Error> error = file_->save(tables);
    if (error == Error(kSQLiteErrorDomain, SQLITE_READONLY_DBMOVED)) {
        error = makeStoreAgain(tables);
        if (!error) {
            error = file_->save(tables);
        }
    }
    return error;
}

/// Puts an empty store in the place of the one that somebody took away, for all records to be
/// written to it. What is in that place is kept under another name.
std::optional<Error> PersistentStoreCoordinator::makeStoreAgain(StoreTables& tables) {
    const auto aside = moveAside(path_);
    if (!aside) {
        return Error::posix(errno);
    }
    std::optional<Error> error = makeStoreFolder(deletingLastPathComponent(path_));
    auto file = std::make_unique<StoreFile>();
    if (!error) {
        error = file->open(path_);
    }
    if (error) {
        return error;
    }
    log(aside->isEmpty() ? QStringLiteral("The store was deleted: all of it is written again")
                         : QStringLiteral("The store was replaced: all of it is written again, and "
                                          "what was put in its place is now %1")
                               .arg(shownUTF8(*aside)));
    file_ = std::move(file);
    tables.visitUntil([](auto& table) {
        table.markUnsaved();
        return false;
    });
    return std::nullopt;
}

} // namespace navrel
