#pragma once

#include <QString>
#include <QVariantList>

#include <optional>

namespace navrel {

class KZDataManager;
class MenuEntry;
class StatusMenu;

/// Keeps the status menu's shortcut entries: those of the whole project, taken again each time that
/// another file becomes active in the editor. Main thread.
class ShortcutMenu {
public:
    /// The data manager must outlive this.
    explicit ShortcutMenu(KZDataManager& dataManager);
    ShortcutMenu(const ShortcutMenu&) = delete;
    ShortcutMenu& operator=(const ShortcutMenu&) = delete;

    /// The menu that has the entries. Not owned; null, as at first, is allowed: then there are
    /// none.
    void setMenu(StatusMenu* menu) { menu_ = menu; }
    StatusMenu* menu() const { return menu_; }

    /// Replaces the entries if another file has become active.
    void update();
    /// Shows an entry's file in the editor, at its line. Nothing for another entry, or one that the
    /// shortcuts have been replaced under.
    void open(const MenuEntry& entry) const;

private:
    KZDataManager& dataManager_;
    StatusMenu* menu_ = nullptr;
    QVariantList menuItems_;          ///< the shortcuts that the menu shows
    std::optional<QString> activeID_; ///< of the file that was active when they were taken
};

} // namespace navrel
