#include "project/ProjectPass.h"

#include "project/ProjectStore.h"
#include "project/store/ManagedObjectContext.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

namespace navrel {

ProjectPass::End ProjectPass::run(const QString& bundlePath, qint64 bytesToScan) {
    NAVREL_ASSERT_MAIN_THREAD();
    isResumed_ = false;
    return perform(bundlePath, bytesToScan);
}

ProjectPass::End ProjectPass::resume(const QString& bundlePath, qint64 bytesToScan) {
    NAVREL_ASSERT_MAIN_THREAD();
    isResumed_ = true;
    return perform(bundlePath, bytesToScan);
}

ProjectPass::End ProjectPass::perform(const QString& bundlePath, qint64 bytesToScan) {
    projectFile_.read(bundlePath.toUtf8() + "/project.pbxproj");
    logProblem(bundlePath);
    End end = End::Complete;
    if (ManagedObjectContext* context = store_.context()) {
        if (!wouldChangeNothing(*context)) {
            end = update(*context, bundlePath, bytesToScan);
        }
        store_.save();
    }
    return end;
}

/// Says why nothing is shown, once for each reason. The empty path is no project that could be
/// broken.
void ProjectPass::logProblem(const QString& bundlePath) {
    std::optional<QString> problem;
    if (!bundlePath.isEmpty() && projectFile_.problem()) {
        problem = QStringLiteral("Nothing to show of %1/project.pbxproj: %2")
                      .arg(bundlePath, *projectFile_.problem());
    }
    if (problem && problem != loggedProblem_) {
        log(*problem);
    }
    loggedProblem_ = problem;
}

void ProjectPass::generateObjectForID(const QByteArray& identifier,
                                      const std::optional<QByteArray>& referencePath,
                                      const std::optional<QByteArray>& parentID, qint32 index) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (ManagedObjectContext* context = store_.context()) {
        survey_.clear();
        quietPass_.reset();
        ScanAllowance allowance;
        walk(*context, identifier, referencePath, parentID, index, allowance);
    }
}

const SourceFindings& ProjectPass::scan(const CDObject& object) {
    NAVREL_ASSERT_MAIN_THREAD();
    return scanner_.scan(object.path());
}

/// Whether a pass now would do what the last one did, which was nothing. A pass is a function of
/// the project file, the records and what the file system says about the files and synchronized
/// folders: where none of them has changed, neither has its outcome.
bool ProjectPass::wouldChangeNothing(const ManagedObjectContext& context) {
    return quietPass_ && quietPass_->projectFileGeneration == projectFile_.generation() &&
           quietPass_->objectsGeneration == context.objectsGeneration() && survey_.stillHolds() &&
           listings_.stillHold();
}

ProjectPass::End ProjectPass::update(ManagedObjectContext& context, const QString& bundlePath,
                                     qint64 bytesToScan) {
    const quint64 generation = context.objectsGeneration();
    if (!isResumed_) {
        survey_.clear();
        listings_.beginPass();
    }
    quietPass_.reset();
    ScanAllowance allowance{bytesToScan};
    if (const std::optional<QByteArray>& root = projectFile_.rootID()) {
        walk(context, *root, deletingLastPathComponent(bundlePath.toUtf8()), std::nullopt, 0,
             allowance);
    }
    if (!context.hasRoom()) {
        log(QStringLiteral("The project is too large: not all of it is shown"));
    }
    deleteVanishedObjects(context);
    if (allowance.isUsedUp) {
        return End::ToBeContinued;
    }
    if (context.objectsGeneration() == generation) {
        quietPass_ = QuietPass{projectFile_.generation(), generation};
    }
    return End::Complete;
}

void ProjectPass::walk(ManagedObjectContext& context, const QByteArray& identifier,
                       const std::optional<QByteArray>& referencePath,
                       const std::optional<QByteArray>& parentID, qint32 index,
                       ScanAllowance& allowance) {
    FolderListings* listings = showsSynchronizedFolders_ ? &listings_ : nullptr;
    ProjectWalk(context, projectFile_.objects(), scanner_, survey_, listings, allowance)
        .generateObjectForID(identifier, referencePath, parentID, index);
}

/// Deletes the records whose file is gone. Deliberately not those of objects that the project no
/// longer lists, nor the shortcuts and elements of a deleted record.
void ProjectPass::deleteVanishedObjects(ManagedObjectContext& context) {
    for (CDObject* object : context.objects()) {
        if (!object->path() || !survey_.exists(*object->path())) {
            log(QStringLiteral("Deleted %1").arg(shownUTF8(object->name().value_or(""))));
            context.deleteObject(*object);
        }
    }
}

} // namespace navrel
