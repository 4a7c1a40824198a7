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

    /// Opens the store on first use. Null when that failed: the error has been presented (modal, as
    /// `StoreErrorWindow` does), and the next call tries, and presents, again.
    PersistentStoreCoordinator* coordinator();
    /// The single context, made on first use. Null where the coordinator is.
    ManagedObjectContext* context();

    /// Commits pending edits and saves what has changed; a failure is logged. There must be a
    /// context.
    void save();
    /// Saves at quit, and asks the user (modal) where that fails. True to terminate now, false to
    /// cancel.
    bool saveToTerminate();

    /// Whether a dialog of the store's is open.
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
