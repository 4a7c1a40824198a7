#include "app/ShortcutMenu.h"

#include "app/StatusMenu.h"
#include "project/KZDataManager.h"
#include "protocol/CompanionKeys.h"
#include "support/core/MainThread.h"

namespace navrel {

ShortcutMenu::ShortcutMenu(KZDataManager& dataManager) : dataManager_(dataManager) {}

// The active file is only the trigger: the entries are those of the whole project. Deliberate:
// while the user stays in one file they stay as they are, and without an active file as well.
void ShortcutMenu::update() {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto fileID = dataManager_.objectIDForActiveFile();
    if (fileID && fileID == activeID_) {
        return;
    }
    activeID_ = fileID;
    if (!fileID || menu_ == nullptr) {
        return;
    }
    menuItems_ = dataManager_.shortcutsDictionary().value(key::items).toList();
    QStringList titles;
    titles.reserve(menuItems_.size());
    for (const QVariant& item : menuItems_) {
        titles.append(item.toMap().value(key::shortcut).toString());
    }
    menu_->setShortcuts(titles, [this](const MenuEntry& entry) { open(entry); });
}

void ShortcutMenu::open(const MenuEntry& entry) const {
    NAVREL_ASSERT_MAIN_THREAD();
    // Unsigned, so that the tag of a fixed entry lies beyond every list.
    const auto index = static_cast<quint32>(entry.tag()) - quint32{kFirstShortcutTag};
    if (index >= static_cast<quint32>(menuItems_.size())) {
        return;
    }
    const QVariantMap shortcut = menuItems_.at(static_cast<qsizetype>(index)).toMap();
    dataManager_.openFile(shortcut.value(key::path).toString(), shortcut.value(key::line));
}

} // namespace navrel
