#include "app/StatusMenu.h"

#include "support/core/Assertion.h"
#include "support/core/MainThread.h"

#include <algorithm>
#include <utility>

namespace navrel {

StatusMenu::StatusMenu() : overflow_(*this, ++lastID_, MenuEntry::Kind::Text, 0, QString(), {}) {}

MenuEntry& StatusMenu::addText(int tag, const QString& title) {
    NAVREL_ASSERT(tag < kFirstShortcutTag);
    return append(MenuEntry::Kind::Text, tag, title, {});
}

MenuEntry& StatusMenu::addAction(int tag, const QString& title, std::function<void()> action) {
    NAVREL_ASSERT(tag < kFirstShortcutTag);
    return append(MenuEntry::Kind::Action, tag, title,
                  [action = std::move(action)](const MenuEntry&) { action(); });
}

MenuEntry& StatusMenu::addSwitch(int tag, const QString& title, std::function<void()> action) {
    NAVREL_ASSERT(tag < kFirstShortcutTag);
    return append(MenuEntry::Kind::Switch, tag, title,
                  [action = std::move(action)](const MenuEntry&) { action(); });
}

void StatusMenu::addSeparator() {
    append(MenuEntry::Kind::Separator, 0, QString(), {});
}

MenuEntry& StatusMenu::append(MenuEntry::Kind kind, int tag, const QString& title,
                              MenuEntry::Action action) {
    NAVREL_ASSERT_MAIN_THREAD();
    entries_.push_back(std::unique_ptr<MenuEntry>(
        new MenuEntry(*this, ++lastID_, kind, tag, title, std::move(action))));
    return *entries_.back();
}

void StatusMenu::setShortcuts(const QStringList& titles, const MenuEntry::Action& action) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::erase_if(entries_, [](const auto& entry) { return entry->tag() >= kFirstShortcutTag; });
    int tag = kFirstShortcutTag;
    for (const QString& title : titles) {
        append(MenuEntry::Kind::Action, tag++, title, action);
    }
    overflow_.title_ =
        QStringLiteral("%1 more on the device").arg(titles.size() - kMaximumVisibleShortcuts);
    menuDidChange();
}

std::vector<const MenuEntry*> StatusMenu::visibleEntries() const {
    std::vector<const MenuEntry*> visible;
    const MenuEntry* separator = nullptr;
    for (const auto& entry : entries_) {
        if (entry->tag() >= kFirstShortcutTag + kMaximumVisibleShortcuts) {
            visible.push_back(&overflow_);
            break;
        }
        if (entry->kind() == MenuEntry::Kind::Separator) {
            separator = entry.get();
            continue;
        }
        if (separator != nullptr && !visible.empty()) {
            visible.push_back(separator);
        }
        separator = nullptr;
        visible.push_back(entry.get());
    }
    return visible;
}

const MenuEntry* StatusMenu::entryWithID(int id) const {
    if (id == overflow_.id()) {
        return &overflow_;
    }
    const auto found =
        std::lower_bound(entries_.begin(), entries_.end(), id,
                         [](const auto& entry, int wanted) { return entry->id() < wanted; });
    return found != entries_.end() && (*found)->id() == id ? found->get() : nullptr;
}

void StatusMenu::choose(int id) const {
    NAVREL_ASSERT_MAIN_THREAD();
    const MenuEntry* entry = entryWithID(id);
    if (entry != nullptr && entry->canBeChosen()) {
        // A copy, since choosing may replace the entry.
        const MenuEntry::Action action = entry->action_;
        action(*entry);
    }
}

void StatusMenu::addView(StatusMenuView& view) {
    NAVREL_ASSERT_MAIN_THREAD();
    views_.push_back(&view);
}

void StatusMenu::removeView(StatusMenuView& view) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::erase(views_, &view);
}

void StatusMenu::menuDidChange() const {
    for (StatusMenuView* view : views_) {
        view->menuDidChange();
    }
}

void StatusMenu::entryDidChange(const MenuEntry& entry) const {
    for (StatusMenuView* view : views_) {
        view->entryDidChange(entry);
    }
}

} // namespace navrel
