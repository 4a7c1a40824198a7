#pragma once

#include "support/core/Error.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace navrel {

class StoreFile;
struct StoreTables;

/// Stands between a context and the store file. Main thread only.
class PersistentStoreCoordinator {
public:
    PersistentStoreCoordinator();
    ~PersistentStoreCoordinator();
    PersistentStoreCoordinator(const PersistentStoreCoordinator&) = delete;
    PersistentStoreCoordinator& operator=(const PersistentStoreCoordinator&) = delete;

    /// Opens the store file, makes it where there is none, and reads its records. An error when the
    /// file is no store of this program, is damaged, too new or too large, or when it cannot be had
    /// for writing within a short time; the file then stays as it was.
    std::optional<Error> addPersistentStoreAtPath(const QString& path);

    /// The records that the file held when it was opened. To be called once.
    std::unique_ptr<StoreTables> takeRecords();

    /// Writes what changed since the last save, all of it or nothing. Neither a killed process nor
    /// a lost power supply undoes a save that returned without error. Where the file was deleted or
    /// replaced since, which is logged, a new one with all records takes its place.
    std::optional<Error> save(StoreTables& tables);

private:
    std::optional<Error> makeStoreAgain(StoreTables& tables);

    QByteArray path_;
    std::unique_ptr<StoreTables> records_;
    std::unique_ptr<StoreFile> file_;
};

} // namespace navrel
