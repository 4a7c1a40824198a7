// The data manager's choice of project: the last one, the person's, or the one active in the
// editor.

#include "project/Editor.h"
#include "project/KZDataManager.h"
#include "project/MenuItem.h"
#include "project/ProjectDialogs.h"
#include "project/store/ManagedObjectContext.h"
#include "support/UserDefaults.h"

#include <QScopedValueRollback>

namespace navrel {

namespace {

const QString kAutomaticProjectSelectionKey = QStringLiteral("automaticProjectSelection");
const QString kLastKnownProjectKey = QStringLiteral("lastKnownProject");

} // namespace

void KZDataManager::restoreSelection() {
    const UserDefaults& defaults = collaborators_.userDefaults;
    setAutomaticProjectSelection(defaults.boolForKey(kAutomaticProjectSelectionKey).value_or(true));
    if (const auto lastKnownProject = defaults.stringForKey(kLastKnownProjectKey)) {
        changeProjectToPath(lastKnownProject);
    } else {
        open();
    }
}

void KZDataManager::setAutomaticProjectSelection(bool follow) {
    automaticProjectSelection_ = follow;
    if (automaticProjectSelectionItem_ != nullptr) {
        automaticProjectSelectionItem_->setChecked(follow);
    }
}

void KZDataManager::setAutomaticProjectSelectionItem(MenuItem* item) {
    automaticProjectSelectionItem_ = item;
    setAutomaticProjectSelection(automaticProjectSelection_);
}

void KZDataManager::open() {
    // Deliberate: off even when the person cancels, and nothing turns it on again.
    setAutomaticProjectSelection(false);
    if (isOpenPanelShown_) {
        return; // the person is being asked
    }
    std::optional<QString> path;
    {
        const QScopedValueRollback shown(isOpenPanelShown_, true);
        const QScopedValueRollback modal(modalDialogs_, modalDialogs_ + 1);
        path = collaborators_.dialogs.runOpenPanel(
            QStringLiteral("Select *.xcodeproj file to use with Navrel"),
            {QStringLiteral("xcodeproj")});
    }
    if (path) {
        setAutomaticProjectSelection(false);
        collaborators_.userDefaults.setBool(kAutomaticProjectSelectionKey, false);
        changeProjectToPath(path);
    }
}

std::optional<QString> KZDataManager::activeProject() {
    return collaborators_.editor.activeProjectPath();
}

void KZDataManager::changeProjectToPath(const std::optional<QString>& path) {
    if (path && path == pbxProjPath_) {
        return;
    }
    if (ManagedObjectContext* context = managedObjectContext()) {
        context->deleteAllObjects();
        context->deleteAllShortcuts();
        context->deleteAllElements();
        saveChanges(*context);
    }
    pbxProjPath_ = path;
    collaborators_.userDefaults.setString(kLastKnownProjectKey, path);
}

} // namespace navrel
