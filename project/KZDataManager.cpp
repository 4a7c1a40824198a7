#include "project/KZDataManager.h"

#include "project/EditorControl.h"
#include "project/ProjectPass.h"
#include "project/ProjectSelection.h"
#include "project/ProjectStore.h"
#include "project/store/ManagedObjectModel.h"
#include "project/views/FiletypeViews.h"
#include "project/views/NavigatorViews.h"
#include "project/views/ScanViews.h"
#include "scanning/ScanningOperations.h"
#include "support/core/MainThread.h"
#include "support/core/UserDefaults.h"
#include "support/text/UTF8.h"

#include <chrono>

namespace navrel {

namespace {

constexpr std::chrono::milliseconds kUpdateInterval{1000};
/// What is scanned before requests are let in: some milliseconds' worth.
constexpr qint64 kBytesOfSlice = 256 * 1024;

const QString kSynchronizedFoldersKey = QStringLiteral("synchronizedFolders");

} // namespace

std::shared_ptr<KZDataManager> KZDataManager::init(const Collaborators& collaborators) {
    NAVREL_ASSERT_MAIN_THREAD();
    const std::shared_ptr<KZDataManager> manager(new KZDataManager(collaborators));
    manager->weakSelf_ = manager;
    manager->selection_->restore();
    manager->scheduleUpdates(collaborators.clock);
    return manager;
}

KZDataManager::KZDataManager(const Collaborators& world)
    : store_(std::make_unique<ProjectStore>(world.applicationSupportDirectory, world.dialogs,
                                            world.clock)),
      selection_(std::make_unique<ProjectSelection>(world.userDefaults, world.editor, world.dialogs,
                                                    *store_)),
      pass_(std::make_unique<ProjectPass>(
          *store_, world.userDefaults.boolForKey(kSynchronizedFoldersKey).value_or(true))),
      editor_(std::make_unique<EditorControl>(world.editor, *store_)) {}

KZDataManager::~KZDataManager() = default;

/// The event loop of a modal dialog runs the timer too: no update happens behind an open dialog.
void KZDataManager::scheduleUpdates(Clock& clock) {
    updates_ = clock.every(kUpdateInterval, [this, &clock] {
        if (!isDialogShown()) {
            nextSlice_.reset();
            selection_->follow();
            if (!runPass(kBytesOfSlice, false)) {
                continueLater(clock);
            }
        }
    });
}

/// Lets requests in, then goes on. Where a dialog has opened meanwhile, the rest is left to the
/// pass after it.
void KZDataManager::continueLater(Clock& clock) {
    nextSlice_ = clock.after(std::chrono::milliseconds(0), [this, &clock] {
        nextSlice_.reset();
        if (!isDialogShown() && !runPass(kBytesOfSlice, true)) {
            continueLater(clock);
        }
    });
}

bool KZDataManager::isDialogShown() const {
    return selection_->isPanelShown() || store_->isDialogShown();
}

const std::optional<QString>& KZDataManager::projectPath() const {
    return selection_->projectPath();
}

const std::optional<QString>& KZDataManager::pbxProjPath() const {
    return selection_->pbxProjPath();
}

const PropertyListIndex* KZDataManager::pbxObjects() const {
    return pass_->projectFile().objects();
}

std::optional<QString> KZDataManager::rootID() const {
    const std::optional<QByteArray>& identifier = pass_->projectFile().rootID();
    return identifier ? std::optional(shownUTF8(*identifier)) : std::nullopt;
}

bool KZDataManager::automaticProjectSelection() const {
    return selection_->automaticProjectSelection();
}

void KZDataManager::setAutomaticProjectSelection(bool follow) {
    selection_->setAutomaticProjectSelection(follow);
}

void KZDataManager::setAutomaticProjectSelectionItem(MenuItem* item) {
    selection_->setAutomaticProjectSelectionItem(item);
}

void KZDataManager::setCurrentProjectItem(MenuItem* item) {
    selection_->setCurrentProjectItem(item);
}

QString KZDataManager::applicationDocumentsDirectory() const {
    return store_->folder();
}

QString KZDataManager::applicationDocumentsDirectoryIn(const QString& applicationSupportDirectory) {
    return ProjectStore::folderIn(applicationSupportDirectory);
}

const ManagedObjectModel& KZDataManager::managedObjectModel() const {
    return navrel::managedObjectModel();
}

PersistentStoreCoordinator* KZDataManager::persistentStoreCoordinator() {
    return store_->coordinator();
}

ManagedObjectContext* KZDataManager::managedObjectContext() {
    return store_->context();
}

bool KZDataManager::applicationShouldTerminate() {
    return store_->saveToTerminate();
}

void KZDataManager::open() {
    selection_->open();
}

std::optional<QString> KZDataManager::activeProject() {
    return selection_->activeProject();
}

void KZDataManager::changeProjectToPath(const std::optional<QString>& path) {
    selection_->changeProjectToPath(path);
}

void KZDataManager::update() {
    selection_->follow();
    updateInBackground();
}

void KZDataManager::updateInBackground() {
    runPass(ScanAllowance::kUnlimited, false);
}

/// False where the pass is to be continued.
bool KZDataManager::runPass(qint64 bytesToScan, bool resumes) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!pbxProjPath()) {
        return true;
    }
    selection_->beginPass();
    // A copy: during a dialog of the pass, a request may select another project.
    const QString bundle = *pbxProjPath();
    const auto end = resumes ? pass_->resume(bundle, bytesToScan) : pass_->run(bundle, bytesToScan);
    return end == ProjectPass::End::Complete;
}

void KZDataManager::generateObjectForID(const QByteArray& identifier,
                                        const std::optional<QByteArray>& referencePath,
                                        const std::optional<QByteArray>& parentID, qint32 index) {
    pass_->generateObjectForID(identifier, referencePath, parentID, index);
}

void KZDataManager::setSuperclassForManagedObject(CDObject& object) {
    navrel::setSuperclassForManagedObject(object, pass_->scan(object));
}

void KZDataManager::generateShortcutsForManagedObject(const CDObject& object) {
    navrel::generateShortcutsForManagedObject(object, pass_->scan(object), *managedObjectContext());
}

void KZDataManager::generateElementsForManagedObject(const CDObject& object) {
    navrel::generateElementsForManagedObject(object, pass_->scan(object), *managedObjectContext());
}

std::optional<QVariantMap>
KZDataManager::navigatorDictionaryForID(const std::optional<QString>& identifier) {
    const std::optional<QByteArray>& root = pass_->projectFile().rootID();
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

std::optional<QString> KZDataManager::objectIDForActiveFile() {
    return editor_->objectIDForActiveFile();
}

void KZDataManager::openFile(const std::optional<QString>& path, const QVariant& line) {
    editor_->openFile(path, line);
}

} // namespace navrel
