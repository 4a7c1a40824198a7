#pragma once

#include "project/StoreErrorWindow.h"
#include "support/core/Error.h"

#include <QString>

#include <memory>
#include <optional>

namespace navrel {

class ManagedObjectContext;
class PersistentStoreCoordinator;

/// The store as the project model uses it: opened on first use, with its failures presented to the
/// user. Main thread.
class ProjectStore {
public:
    /// The store's own folder is made in `applicationSupportDirectory`. Both references must
    /// outlive the store.
    ProjectStore(QString applicationSupportDirectory, ProjectDialogs& dialogs, const Clock& clock);
    ~ProjectStore();

    /// The folder of the store.
    const QString& folder() const { return folder_; }
    static QString folderIn(const QString& applicationSupportDirectory);

    /// Opens the store on first use. Null if that failed: then the error has been presented (modal,
    /// by `StoreErrorWindow`), and the next call tries again.
    PersistentStoreCoordinator* coordinator();
    /// The single context, made on first use. Null if the coordinator is.
    ManagedObjectContext* context();

    /// Commits pending edits and saves what has changed; a failure is logged. `context` must have
    /// returned one.
    void save();
    /// Saves at quit, and asks the user (modal) if that fails. True to terminate now, false to
    /// cancel.
    bool saveToTerminate();

    /// Whether a dialog of the store is shown.
    bool isDialogShown() const { return isDialogShown_; }

private:
    bool open(QString& failureReason, std::optional<Error>& cause);
    void present(const QString& failureReason, std::optional<Error> cause);
    QString path() const;
    std::optional<QString> obstacle() const;
    bool terminatesDespite(const Error& saveError);

    QString folder_;
    ProjectDialogs& dialogs_;
    StoreErrorWindow errorWindow_;
    std::unique_ptr<PersistentStoreCoordinator> coordinator_;
    std::unique_ptr<ManagedObjectContext> context_;
    bool isDialogShown_ = false;
};

} // namespace navrel
