// The data manager's store: opening it on first use, and saving it at quit.

#include "project/KZDataManager.h"
#include "project/ProjectDialogs.h"
#include "project/StoreErrorWindow.h"
#include "project/store/ManagedObjectContext.h"
#include "project/store/PersistentStoreCoordinator.h"
#include "project/store/StoreFolder.h"
#include "support/Error.h"
#include "support/Log.h"

#include <QCoreApplication>
#include <QFile>
#include <QScopedValueRollback>

#include <cerrno>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

constexpr qint64 kStoreErrorCode = 9999;

/// A text in the person's language where there is a translation, else as it stands.
QString localized(const char* text) {
    return QCoreApplication::translate("KZDataManager", text);
}

} // namespace

QString KZDataManager::applicationDocumentsDirectory() const {
    return applicationDocumentsDirectoryIn(collaborators_.applicationSupportDirectory);
}

QString KZDataManager::storePath() const {
    return applicationDocumentsDirectory() + QStringLiteral("/OSXCoreDataObjC.storedata");
}

PersistentStoreCoordinator* KZDataManager::persistentStoreCoordinator() {
    if (persistentStoreCoordinator_ == nullptr) {
        QString failureReason =
            QStringLiteral("There was an error creating or loading the application's saved data.");
        std::optional<Error> cause;
        if (!openStore(failureReason, cause)) {
            presentStoreError(failureReason, std::move(cause));
        }
    }
    return persistentStoreCoordinator_.get();
}

/// Makes the coordinator. False, with a reason or a cause, where that fails.
bool KZDataManager::openStore(QString& failureReason, std::optional<Error>& cause) {
    const QString folder = applicationDocumentsDirectory();
    struct stat status {};
    if (::stat(QFile::encodeName(folder).constData(), &status) == 0) {
        if (!S_ISDIR(status.st_mode)) {
            failureReason =
                QStringLiteral("Expected a folder to store application data, found a file (%1).")
                    .arg(folder);
            return false;
        }
    } else if (errno != ENOENT) {
        cause = errorFromErrno(errno);
    }
    if (!cause) {
        cause = makeStoreFolder(QFile::encodeName(folder));
    }
    if (!cause) {
        auto coordinator = std::make_unique<PersistentStoreCoordinator>(managedObjectModel_);
        cause = coordinator->addPersistentStoreAtPath(storePath());
        if (!cause) {
            persistentStoreCoordinator_ = std::move(coordinator);
            storeErrorWindow_->forget();
        }
    }
    return !cause;
}

void KZDataManager::presentStoreError(const QString& failureReason, std::optional<Error> cause) {
    Error error(QStringLiteral("YOUR_ERROR_DOMAIN"), kStoreErrorCode,
                QStringLiteral("Failed to initialize the application's saved data"));
    error.setLocalizedFailureReason(failureReason);
    if (cause) {
        error.setUnderlyingError(std::move(*cause));
    }
    if (const auto inTheWay = obstacle()) {
        error.setLocalizedRecoverySuggestion(
            localized("To start with an empty store, quit Navrel and move this away:\n%1")
                .arg(*inTheWay));
    }
    const QScopedValueRollback modal(modalDialogs_, modalDialogs_ + 1);
    storeErrorWindow_->present(error);
}

/// What is in the place of the store, or of its folder; nil where nothing is.
std::optional<QString> KZDataManager::obstacle() const {
    for (const QString& path : {storePath(), applicationDocumentsDirectory()}) {
        struct stat status {};
        if (::lstat(QFile::encodeName(path).constData(), &status) == 0) {
            return path;
        }
    }
    return std::nullopt;
}

ManagedObjectContext* KZDataManager::managedObjectContext() {
    if (managedObjectContext_ == nullptr) {
        if (PersistentStoreCoordinator* coordinator = persistentStoreCoordinator()) {
            managedObjectContext_ = std::make_unique<ManagedObjectContext>(*coordinator);
        }
    }
    return managedObjectContext_.get();
}

bool KZDataManager::applicationShouldTerminate() {
    if (managedObjectContext_ == nullptr) {
        return true;
    }
    if (!managedObjectContext_->commitEditing()) {
        log(QStringLiteral("KZDataManager:applicationShouldTerminate: unable to commit editing to "
                           "terminate"));
        return false;
    }
    if (!managedObjectContext_->hasChanges()) {
        return true;
    }
    if (const std::optional<Error> error = managedObjectContext_->save()) {
        return shouldTerminateDespite(*error);
    }
    log(QStringLiteral("Terminating"));
    return true;
}

bool KZDataManager::shouldTerminateDespite(const Error& saveError) {
    const QScopedValueRollback modal(modalDialogs_, modalDialogs_ + 1);
    if (collaborators_.dialogs.presentError(saveError)) {
        return false;
    }
    const int answer = collaborators_.dialogs.runAlert(
        localized("Could not save changes while quitting. Quit anyway?"),
        localized(
            "Quitting now will lose any changes you have made since the last successful save"),
        {localized("Quit anyway"), localized("Cancel")});
    // Deliberate, although the labels say the opposite: "Quit anyway" keeps the program running and
    // "Cancel" quits. The inversion is part of the required behaviour.
    if (answer == kAlertFirstButtonReturn) {
        return false;
    }
    log(QStringLiteral("Terminating"));
    return true;
}

} // namespace navrel
