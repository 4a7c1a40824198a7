#pragma once

#include <QString>

#include <optional>

namespace navrel {

class Editor;
class MenuItem;
class ProjectDialogs;
class ProjectStore;
class UserDefaults;

/// Which project is shown: the last one, one that the user picks, or the one that is active in the
/// editor. What is not described here is an operation of KZDataManager's. Main thread.
class ProjectSelection {
public:
    /// All of them must outlive the selection.
    ProjectSelection(UserDefaults& userDefaults, Editor& editor, ProjectDialogs& dialogs,
                     ProjectStore& store);

    /// Selects the last known project, or lets the user pick one (modal).
    void restore();

    const std::optional<QString>& pbxProjPath() const { return pbxProjPath_; }
    const std::optional<QString>& projectPath() const { return projectPath_; }

    bool automaticProjectSelection() const { return automaticProjectSelection_; }
    void setAutomaticProjectSelection(bool follow);
    void setAutomaticProjectSelectionItem(MenuItem* item);
    void setCurrentProjectItem(MenuItem* item) { currentProjectItem_ = item; }

    void open();
    std::optional<QString> activeProject();
    void changeProjectToPath(const std::optional<QString>& path);

    /// Selects the project that is active in the editor, where it is followed.
    void follow();
    /// A pass over the selected project, of which there must be one, begins: `projectPath` and the
    /// menu entry become its own.
    void beginPass();

    /// Whether the user is being asked for a project.
    bool isPanelShown() const { return isPanelShown_; }

private:
    UserDefaults& userDefaults_;
    Editor& editor_;
    ProjectDialogs& dialogs_;
    ProjectStore& store_;
    std::optional<QString> pbxProjPath_;
    std::optional<QString> projectPath_;
    bool automaticProjectSelection_ = true;
    MenuItem* currentProjectItem_ = nullptr;
    MenuItem* automaticProjectSelectionItem_ = nullptr;
    bool isPanelShown_ = false;
};

} // namespace navrel
