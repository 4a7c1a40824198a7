// The data manager's store: opening it on first use, and saving it at quit.

#include "project/KZDataManager.h"
#include "project/ManagedObjectContext.h"
#include "project/PersistentStoreCoordinator.h"
#include "project/ProjectDialogs.h"
#include "support/Error.h"
#include "support/Log.h"

#include <QCoreApplication>
#include <QFile>
#include <QScopedValueRollback>

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace navrel {

namespace {

constexpr qint64 kStoreErrorCode = 9999;

/// A text in the person's language where there is a translation, else as it stands.
QString localized(const char* text) {
    return QCoreApplication::translate("KZDataManager", text);
}

/// Makes a folder and those above it.
std::optional<Error> makeFolder(const QString& path) {
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), error);
    return errorFromErrno(error.value());
}

} // namespace

QString KZDataManager::applicationDocumentsDirectory() const {
    return collaborators_.applicationSupportDirectory + QStringLiteral("/nl.kelvane.Navrel");
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
    } else {
        cause = errno == ENOENT ? makeFolder(folder) : errorFromErrno(errno);
    }
    if (!cause) {
        auto coordinator = std::make_unique<PersistentStoreCoordinator>(managedObjectModel_);
        cause = coordinator->addPersistentStoreAtPath(folder +
                                                      QStringLiteral("/OSXCoreDataObjC.storedata"));
        if (!cause) {
            persistentStoreCoordinator_ = std::move(coordinator);
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
    const QScopedValueRollback modal(modalDialogs_, modalDialogs_ + 1);
    collaborators_.dialogs.presentError(error);
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
