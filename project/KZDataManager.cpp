#include "project/KZDataManager.h"

#include "project/FileSurvey.h"
#include "project/ManagedObjectContext.h"
#include "project/PersistentStoreCoordinator.h"
#include "project/ProjectFile.h"
#include "support/Log.h"
#include "support/text/UTF8.h"

#include <QObject>

#include <chrono>
#include <utility>

namespace navrel {

namespace {

constexpr std::chrono::milliseconds kUpdateInterval{1000};

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
      survey_(std::make_unique<FileSurvey>()) {}

KZDataManager::~KZDataManager() = default;

void KZDataManager::scheduleUpdates() {
    QObject::connect(&updateTimer_, &QTimer::timeout, &updateTimer_, [this] {
        if (modalDialogs_ == 0) {
            update();
        }
    });
    // Other types of timer may be early by a twentieth.
    updateTimer_.setTimerType(Qt::PreciseTimer);
    updateTimer_.start(kUpdateInterval);
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
