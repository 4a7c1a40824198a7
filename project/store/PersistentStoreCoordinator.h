#pragma once

#include "support/core/Error.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace navrel {

class StoreFile;
struct StoreTables;

/// Opens the store file, and saves a context's records to it. Main thread only.
class PersistentStoreCoordinator {
public:
    PersistentStoreCoordinator();
    ~PersistentStoreCoordinator();
    PersistentStoreCoordinator(const PersistentStoreCoordinator&) = delete;
    PersistentStoreCoordinator& operator=(const PersistentStoreCoordinator&) = delete;

    /// Opens the store file, or creates it, and reads its records. Fails if the file is not a store
    /// of this program, is damaged, too new or too large, or is locked for longer than a moment;
    /// the file then stays as it was.
    std::optional<Error> addPersistentStoreAtPath(const QString& path);

    /// Returns the records that the file had when it was opened. Must be called at most once.
    std::unique_ptr<StoreTables> takeRecords();

    /// Writes all changes since the last save, or none of them. A save that returned without error
    /// survives a kill of the process and a loss of power. If the file was deleted or replaced
    /// meanwhile, that is logged, and a new file with all records is made.
    std::optional<Error> save(StoreTables& tables);

private:
    std::optional<Error> makeStoreAgain(StoreTables& tables);

    QByteArray path_;
    std::unique_ptr<StoreTables> records_;
    std::unique_ptr<StoreFile> file_;
};

} // namespace navrel
