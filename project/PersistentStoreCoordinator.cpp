#include "project/PersistentStoreCoordinator.h"

#include "project/StoreFile.h"
#include "project/StoreTables.h"

#include <QFile>

#include <utility>

namespace navrel {

PersistentStoreCoordinator::PersistentStoreCoordinator(const ManagedObjectModel& model)
    : model_(model) {}

PersistentStoreCoordinator::~PersistentStoreCoordinator() = default;

std::optional<Error> PersistentStoreCoordinator::addPersistentStoreAtPath(const QString& path) {
    auto file = std::make_unique<StoreFile>();
    auto records = std::make_unique<StoreTables>();
    std::optional<Error> error = file->open(QFile::encodeName(path), model_);
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
    return file_->save(tables);
}

} // namespace navrel
