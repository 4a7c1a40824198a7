#include "project/ProjectSelection.h"

#include "project/Editor.h"
#include "project/MenuItem.h"
#include "project/ProjectDialogs.h"
#include "project/ProjectStore.h"
#include "project/store/ManagedObjectContext.h"
#include "support/core/MainThread.h"
#include "support/core/UserDefaults.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <QScopedValueRollback>

namespace navrel {

namespace {

const QString kAutomaticProjectSelectionKey = QStringLiteral("automaticProjectSelection");
const QString kLastKnownProjectKey = QStringLiteral("lastKnownProject");

} // namespace

ProjectSelection::ProjectSelection(UserDefaults& userDefaults, Editor& editor,
                                   ProjectDialogs& dialogs, ProjectStore& store)
    : userDefaults_(userDefaults), editor_(editor), dialogs_(dialogs), store_(store) {}

void ProjectSelection::restore() {
    setAutomaticProjectSelection(
        userDefaults_.boolForKey(kAutomaticProjectSelectionKey).value_or(true));
    if (const auto lastKnownProject = userDefaults_.stringForKey(kLastKnownProjectKey)) {
        changeProjectToPath(lastKnownProject);
    } else {
        open();
    }
}

void ProjectSelection::setAutomaticProjectSelection(bool follow) {
    NAVREL_ASSERT_MAIN_THREAD();
    automaticProjectSelection_ = follow;
    if (automaticProjectSelectionItem_ != nullptr) {
        automaticProjectSelectionItem_->setChecked(follow);
    }
}

void ProjectSelection::setAutomaticProjectSelectionItem(MenuItem* item) {
    automaticProjectSelectionItem_ = item;
    setAutomaticProjectSelection(automaticProjectSelection_);
}

void ProjectSelection::open() {
    NAVREL_ASSERT_MAIN_THREAD();
    // Deliberate: off even when the user cancels, and nothing turns it on again.
    setAutomaticProjectSelection(false);
    if (isPanelShown_) {
        return; // the user is being asked
    }
    std::optional<QString> path;
    {
        const QScopedValueRollback shown(isPanelShown_, true);
        path = dialogs_.runOpenPanel(QStringLiteral("Select *.xcodeproj file to use with Navrel"),
                                     {QStringLiteral("xcodeproj")});
    }
    if (path) {
        setAutomaticProjectSelection(false);
        userDefaults_.setBool(kAutomaticProjectSelectionKey, false);
        changeProjectToPath(path);
    }
}

std::optional<QString> ProjectSelection::activeProject() {
    return editor_.activeProjectPath();
}

void ProjectSelection::changeProjectToPath(const std::optional<QString>& path) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (path && path == pbxProjPath_) {
        return;
    }
    if (ManagedObjectContext* context = store_.context()) {
        context->deleteAllObjects();
        context->deleteAllShortcuts();
        context->deleteAllElements();
        store_.save();
    }
    pbxProjPath_ = path;
    userDefaults_.setString(kLastKnownProjectKey, path);
}

void ProjectSelection::follow() {
    if (automaticProjectSelection_) {
        changeProjectToPath(activeProject());
    }
}

void ProjectSelection::beginPass() {
    NAVREL_ASSERT_MAIN_THREAD();
    const QByteArray bundle = pbxProjPath_->toUtf8();
    projectPath_ = shownUTF8(deletingLastPathComponent(bundle));
    if (currentProjectItem_ != nullptr) {
        currentProjectItem_->setTitle(
            QStringLiteral("Current project: %1").arg(shownUTF8(lastPathComponent(bundle))));
    }
}

} // namespace navrel
