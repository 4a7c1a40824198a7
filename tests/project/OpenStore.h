#pragma once

#include "project/store/ManagedObjectContext.h"
#include "project/store/PersistentStoreCoordinator.h"
#include "support/core/Assertion.h"

#include <QString>

#include <memory>
#include <optional>

namespace navrel {

/// A store file opened as the program opens it, with a context on it.
class OpenStore {
public:
    explicit OpenStore(const QString& path) {
        error_ = coordinator_.addPersistentStoreAtPath(path);
        if (!error_) {
            context_ = std::make_unique<ManagedObjectContext>(coordinator_);
        }
    }

    const std::optional<Error>& error() const { return error_; }

    ManagedObjectContext& operator*() const {
        NAVREL_ASSERT(context_ != nullptr);
        return *context_;
    }
    ManagedObjectContext* operator->() const { return &**this; }

private:
    PersistentStoreCoordinator coordinator_;
    std::optional<Error> error_;
    std::unique_ptr<ManagedObjectContext> context_;
};

} // namespace navrel
