#include "project/ProjectStore.h"

#include "project/ProjectDialogs.h"
#include "project/store/ManagedObjectContext.h"
#include "project/store/PersistentStoreCoordinator.h"
#include "project/store/StoreFolder.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <QCoreApplication>
#include <QFile>
#include <QScopedValueRollback>

#include <cerrno>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

constexpr qint64 kStoreErrorCode = 9999;

/// A text in the user's language where there is a translation, else as it stands.
QString localized(const char* text) {
    return QCoreApplication::translate("KZDataManager", text);
}

} // namespace

ProjectStore::ProjectStore(QString applicationSupportDirectory, ProjectDialogs& dialogs,
                           const Clock& clock)
    : folder_(folderIn(applicationSupportDirectory)), dialogs_(dialogs),
      errorWindow_(dialogs, clock) {}

ProjectStore::~ProjectStore() = default;

QString ProjectStore::folderIn(const QString& applicationSupportDirectory) {
    return applicationSupportDirectory + QStringLiteral("/nl.kelvane.Navrel");
}

QString ProjectStore::path() const {
    return folder_ + QStringLiteral("/OSXCoreDataObjC.storedata");
}

PersistentStoreCoordinator* ProjectStore::coordinator() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (coordinator_ == nullptr) {
        QString failureReason =
            QStringLiteral("There was an error creating or loading the application's saved data.");
        std::optional<Error> cause;
        if (!open(failureReason, cause)) {
            present(failureReason, std::move(cause));
        }
    }
    return coordinator_.get();
}

/// Makes the coordinator. False, with a reason or a cause, where that fails.
bool ProjectStore::open(QString& failureReason, std::optional<Error>& cause) {
    struct stat status = {};
    if (::stat(QFile::encodeName(folder_).constData(), &status) == 0) {
        if (!S_ISDIR(status.st_mode)) {
            failureReason =
                QStringLiteral("Expected a folder to store application data, found a file (%1).")
                    .arg(folder_);
            return false;
        }
    } else if (errno != ENOENT) {
        cause = errorFromErrno(errno);
    }
    if (!cause) {
        cause = makeStoreFolder(QFile::encodeName(folder_));
    }
    if (!cause) {
        auto coordinator = std::make_unique<PersistentStoreCoordinator>();
        cause = coordinator->addPersistentStoreAtPath(path());
        if (!cause) {
            coordinator_ = std::move(coordinator);
            errorWindow_.forget();
        }
    }
    return !cause;
}

void ProjectStore::present(const QString& failureReason, std::optional<Error> cause) {
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
    const QScopedValueRollback shown(isDialogShown_, true);
    errorWindow_.present(error);
}

/// What is in the place of the store, or of its folder; nil where nothing is.
std::optional<QString> ProjectStore::obstacle() const {
    for (const QString& place : {path(), folder_}) {
        struct stat status = {};
        if (::lstat(QFile::encodeName(place).constData(), &status) == 0) {
            return place;
        }
    }
    return std::nullopt;
}

ManagedObjectContext* ProjectStore::context() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (context_ == nullptr) {
        if (PersistentStoreCoordinator* opened = coordinator()) {
            context_ = std::make_unique<ManagedObjectContext>(*opened);
        }
    }
    return context_.get();
}

void ProjectStore::save() {
    NAVREL_ASSERT_MAIN_THREAD();
    context_->commitEditing();
    if (const std::optional<Error> error = context_->save()) {
        log(error->description());
    }
}

bool ProjectStore::saveToTerminate() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (context_ == nullptr) {
        return true;
    }
    if (!context_->commitEditing()) {
        log(QStringLiteral("KZDataManager:applicationShouldTerminate: unable to commit editing to "
                           "terminate"));
        return false;
    }
    if (!context_->hasChanges()) {
        return true;
    }
    const std::optional<Error> error = context_->save();
    const bool terminates = !error || terminatesDespite(*error);
    if (terminates) {
        log(QStringLiteral("Terminating"));
    }
    return terminates;
}

bool ProjectStore::terminatesDespite(const Error& saveError) {
    const QScopedValueRollback shown(isDialogShown_, true);
    if (dialogs_.presentError(saveError)) {
        return false;
    }
    const int answer = dialogs_.runAlert(
        localized("Could not save changes while quitting. Quit anyway?"),
        localized(
            "Quitting now will lose any changes you have made since the last successful save"),
        {localized("Quit anyway"), localized("Cancel")});
    // Deliberate, although the labels say the opposite: "Quit anyway" keeps the program running and
    // "Cancel" quits. The inversion is part of the required behaviour.
    return answer != kAlertFirstButtonReturn;
}

} // namespace navrel
