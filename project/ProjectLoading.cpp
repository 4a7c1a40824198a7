// The data manager's update pass: from the project file and the file system to the records.

#include "project/FileSurvey.h"
#include "project/FolderListings.h"
#include "project/KZDataManager.h"
#include "project/MenuItem.h"
#include "project/ProjectFile.h"
#include "project/ProjectWalk.h"
#include "project/store/ManagedObjectContext.h"
#include "support/Log.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

namespace navrel {

void KZDataManager::update() {
    if (automaticProjectSelection_) {
        changeProjectToPath(activeProject());
    }
    updateInBackground();
}

void KZDataManager::updateInBackground() {
    if (!pbxProjPath_) {
        return;
    }
    const QByteArray bundle = pbxProjPath_->toUtf8();
    projectPath_ = shownUTF8(deletingLastPathComponent(bundle));
    if (currentProjectItem_ != nullptr) {
        currentProjectItem_->setTitle(
            QStringLiteral("Current project: %1").arg(shownUTF8(lastPathComponent(bundle))));
    }
    projectFile_->read(bundle + "/project.pbxproj");
    logProblem();
    if (ManagedObjectContext* context = managedObjectContext()) {
        if (!wouldChangeNothing(*context)) {
            runPass(*context);
        }
        saveChanges(*context);
    }
}

/// Says why nothing is shown, once for each reason. The empty path is no project that could be
/// broken.
void KZDataManager::logProblem() {
    std::optional<QString> problem;
    if (!pbxProjPath_->isEmpty() && projectFile_->problem()) {
        problem = QStringLiteral("Nothing to show of %1/project.pbxproj: %2")
                      .arg(*pbxProjPath_, *projectFile_->problem());
    }
    if (problem && problem != loggedProblem_) {
        log(*problem);
    }
    loggedProblem_ = problem;
}

void KZDataManager::generateObjectForID(const QByteArray& identifier,
                                        const std::optional<QByteArray>& referencePath,
                                        const std::optional<QByteArray>& parentID, qint32 index) {
    if (ManagedObjectContext* context = managedObjectContext()) {
        survey_->clear();
        quietPass_.reset();
        ProjectWalk(*context, projectFile_->objects(), *scanner_, *survey_, listings())
            .generateObjectForID(identifier, referencePath, parentID, index);
    }
}

/// Whether a pass now would do what the last one did, which was nothing. A pass is a function of
/// the project file, the records and what the file system says about the files and synchronized
/// folders: where none of them has changed, neither has its outcome.
bool KZDataManager::wouldChangeNothing(const ManagedObjectContext& context) {
    return quietPass_ && quietPass_->projectFileGeneration == projectFile_->generation() &&
           quietPass_->objectsGeneration == context.objectsGeneration() && survey_->stillHolds() &&
           listings_->stillHold();
}

/// Those of synchronized folders; null where the user does without.
FolderListings* KZDataManager::listings() {
    return showsSynchronizedFolders_ ? listings_.get() : nullptr;
}

void KZDataManager::runPass(ManagedObjectContext& context) {
    const quint64 generation = context.objectsGeneration();
    survey_->clear();
    listings_->beginPass();
    quietPass_.reset();
    if (const std::optional<QByteArray>& root = projectFile_->rootID()) {
        ProjectWalk(context, projectFile_->objects(), *scanner_, *survey_, listings())
            .generateObjectForID(*root, projectPath_->toUtf8(), std::nullopt, 0);
    }
    if (!context.hasRoom()) {
        log(QStringLiteral("The project is too large: not all of it is shown"));
    }
    deleteVanishedObjects(context);
    if (context.objectsGeneration() == generation) {
        quietPass_ = QuietPass{projectFile_->generation(), generation};
    }
}

/// Deletes the records whose file is gone. Deliberately not those of objects that the project no
/// longer lists, nor the shortcuts and elements of a deleted record.
void KZDataManager::deleteVanishedObjects(ManagedObjectContext& context) {
    for (CDObject* object : context.objects()) {
        if (!object->path() || !survey_->exists(*object->path())) {
            log(QStringLiteral("Deleted %1").arg(shownUTF8(object->name().value_or(""))));
            context.deleteObject(*object);
        }
    }
}

} // namespace navrel
