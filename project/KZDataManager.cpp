#include "project/KZDataManager.h"

#include "project/FileSurvey.h"
#include "project/FolderListings.h"
#include "project/ProjectFile.h"
#include "project/StoreErrorWindow.h"
#include "project/store/ManagedObjectContext.h"
#include "project/store/PersistentStoreCoordinator.h"
#include "project/views/FiletypeViews.h"
#include "project/views/NavigatorViews.h"
#include "project/views/ScanViews.h"
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

std::optional<QVariantMap>
KZDataManager::navigatorDictionaryForID(const std::optional<QString>& identifier) {
    const std::optional<QByteArray>& root = projectFile_->rootID();
    return root ? views::navigatorDictionaryForID(managedObjectContext(), *root, identifier)
                : std::nullopt;
}

QVariantMap KZDataManager::superclassDictionary() {
    return views::superclassDictionary(managedObjectContext());
}

QVariantMap KZDataManager::navigatorDictionaryForSuperclass(const QString& superclass) {
    return views::navigatorDictionaryForSuperclass(managedObjectContext(), superclass);
}

QVariantMap KZDataManager::allowedFileTypesDictionary() {
    return views::allowedFileTypesDictionary(managedObjectContext());
}

QStringList KZDataManager::allowedFileTypes() {
    return views::allowedFileTypes(managedObjectContext());
}

QVariantMap KZDataManager::changeFiletypeAllowanceWithDictionary(const QVariantMap& request) {
    return views::changeFiletypeAllowanceWithDictionary(managedObjectContext(), request);
}

QVariantMap KZDataManager::shortcutsDictionary() {
    return views::shortcutsDictionary(managedObjectContext());
}

std::optional<QVariantMap> KZDataManager::elementsDictionaryForObjectID(const QString& identifier) {
    return views::elementsDictionaryForObjectID(managedObjectContext(), identifier);
}

void KZDataManager::saveChanges(ManagedObjectContext& context) {
    context.commitEditing();
    if (const std::optional<Error> error = context.save()) {
        log(error->description());
    }
}

} // namespace navrel
