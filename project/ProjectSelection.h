#pragma once

#include <QString>

#include <optional>

namespace navrel {

class Editor;
class MenuItem;
class ProjectDialogs;
class ProjectStore;
class UserDefaults;

/// Selects the project that is shown: the last one, one that the user picks, or the one that is
/// active in the editor. Functions without a comment are operations of KZDataManager of that name,
/// described there. Main thread.
class ProjectSelection {
public:
    /// All references must outlive the selection.
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

    /// Selects the project that is active in the editor, if automatic selection is on. Blocks while
    /// the editor answers.
    void follow();
    /// Notes that a pass begins: `projectPath` and the menu entry become those of the selected
    /// project. There must be one.
    void beginPass();

    /// Whether the open panel is shown.
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
