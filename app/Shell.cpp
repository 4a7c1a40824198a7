// The status menu's shortcut entries, and what its fixed entries do.

#include "app/AppDelegate.h"
#include "app/Desktop.h"
#include "app/StatusMenu.h"
#include "project/KZDataManager.h"
#include "support/UserDefaults.h"

namespace navrel {

/// The active file is only the trigger: the entries are those of the whole project. Deliberate:
/// while the person stays in one file they stay as they are, and without an active file as well.
void AppDelegate::createMenu() {
    const auto fileID = collaborators_.dataManager.objectIDForActiveFile();
    if (fileID && fileID == activeID_) {
        return;
    }
    activeID_ = fileID;
    if (!fileID || menu_ == nullptr) {
        return;
    }
    menuItems_ =
        collaborators_.dataManager.shortcutsDictionary().value(QStringLiteral("items")).toList();
    QStringList titles;
    titles.reserve(menuItems_.size());
    for (const QVariant& item : menuItems_) {
        titles.append(item.toMap().value(QStringLiteral("shortcut")).toString());
    }
    menu_->setShortcuts(titles, [this](const MenuEntry& entry) { openFileForMenuItem(entry); });
}

void AppDelegate::openFileForMenuItem(const MenuEntry& entry) {
    // Unsigned, so that the tag of a fixed entry lies beyond every list.
    const auto index = static_cast<quint32>(entry.tag()) - quint32{kFirstShortcutTag};
    if (index >= static_cast<quint32>(menuItems_.size())) {
        return;
    }
    const QVariantMap shortcut = menuItems_.at(static_cast<qsizetype>(index)).toMap();
    collaborators_.dataManager.openFile(shortcut.value(QStringLiteral("path")).toString(),
                                        shortcut.value(QStringLiteral("line")));
}

void AppDelegate::quit() {
    collaborators_.userDefaults.setBool(QStringLiteral("automaticProjectSelection"),
                                        collaborators_.dataManager.automaticProjectSelection());
    collaborators_.desktop.terminate();
}

} // namespace navrel
