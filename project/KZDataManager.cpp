#include "project/KZDataManager.h"

#include "project/FileSurvey.h"
#include "project/FolderListings.h"
#include "project/ProjectFile.h"
#include "project/StoreErrorWindow.h"
#include "project/store/ManagedObjectContext.h"
#include "project/store/PersistentStoreCoordinator.h"
#include "scanning/SourceFileScanner.h"
#include "support/Log.h"
#include "support/UserDefaults.h"
#include "support/text/UTF8.h"

#include <chrono>
#include <utility>

namespace navrel {

namespace {

constexpr std::chrono::milliseconds kUpdateInterval{1000};

const QString kSynchronizedFoldersKey = QStringLiteral("synchronizedFolders");

} // namespace

std::shared_ptr<KZDataManager> KZDataManager::init(Collaborators collaborators) {
    const std::shared_ptr<KZDataManager> manager(new KZDataManager(std::move(collaborators)));
    manager->weakSelf_ = manager;
    manager->restoreSelection();
    manager->scheduleUpdates();
    return manager;
}

KZDataManager::KZDataManager(Collaborators collaborators)
    : collaborators_(std::move(collaborators)), projectFile_(std::make_unique<ProjectFile>()),
      scanner_(std::make_unique<SourceFileScanner>()), survey_(std::make_unique<FileSurvey>()),
      listings_(std::make_unique<FolderListings>()),
      showsSynchronizedFolders_(
          collaborators_.userDefaults.boolForKey(kSynchronizedFoldersKey).value_or(true)),
      storeErrorWindow_(
          std::make_unique<StoreErrorWindow>(collaborators_.dialogs, collaborators_.clock)) {}

KZDataManager::~KZDataManager() = default;

void KZDataManager::scheduleUpdates() {
    updates_ = collaborators_.clock.every(kUpdateInterval, [this] {
        if (modalDialogs_ == 0) {
            update();
        }
    });
}

const PropertyListIndex* KZDataManager::pbxObjects() const {
    return projectFile_->objects();
}

std::optional<QString> KZDataManager::rootID() const {
    const std::optional<QByteArray>& identifier = projectFile_->rootID();
    return identifier ? std::optional(shownUTF8(*identifier)) : std::nullopt;
}

void KZDataManager::saveChanges(ManagedObjectContext& context) {
    context.commitEditing();
    if (const std::optional<Error> error = context.save()) {
        log(error->description());
    }
}

} // namespace navrel
