#pragma once

#include "app/MenuEntry.h"
#include "app/StateSentences.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace navrel {

/// Entries that stand for a shortcut comment are tagged from here on, in their order; the tags of
/// the fixed entries are lower.
inline constexpr int kFirstShortcutTag = 100;

/// How many shortcuts a menu shows; the last entry tells of the others. More than any project of
/// people has, and no more than panels take at once.
inline constexpr int kMaximumVisibleShortcuts = 10'000;

/// Shows a status menu to the user, and hears of its changes.
class StatusMenuView {
public:
    virtual ~StatusMenuView() = default;

    /// Entries came or went.
    virtual void menuDidChange() = 0;
    /// An entry's title or state changed.
    virtual void entryDidChange(const MenuEntry& entry) = 0;

protected:
    StatusMenuView() = default;
    StatusMenuView(const StatusMenuView&) = default;
    StatusMenuView& operator=(const StatusMenuView&) = default;
};

/// The menu of the status item: fixed entries, and below them one for each shortcut comment of the
/// project. Only the content: views draw it. Main thread.
class StatusMenu {
public:
    using Entries = std::vector<std::unique_ptr<MenuEntry>>;

    StatusMenu();
    StatusMenu(const StatusMenu&) = delete;
    StatusMenu& operator=(const StatusMenu&) = delete;

    /// Appends a fixed entry; the reference is good as long as the menu.
    MenuEntry& addText(int tag, const QString& title);
    MenuEntry& addAction(int tag, const QString& title, std::function<void()> action);
    MenuEntry& addSwitch(int tag, const QString& title, std::function<void()> action);
    void addSeparator();

    /// Replaces the shortcut entries by one for each title, tagged in order.
    void setShortcuts(const QStringList& titles, const MenuEntry::Action& action);

    /// Every entry, top to bottom.
    const Entries& entries() const { return entries_; }
    /// Those to show: no separator at either end, nor beside another one, and not more shortcuts
    /// than kMaximumVisibleShortcuts. Good until the menu changes.
    std::vector<const MenuEntry*> visibleEntries() const;
    /// Null when there is none, or no longer.
    const MenuEntry* entryWithID(int id) const;

    /// The user chose an entry. Nothing happens for one that is gone, or only read.
    void choose(int id) const;

    /// How the program stands, for views with room for that: asked whenever one shows it. Null, as
    /// at first, for nothing to show.
    void setState(std::function<std::vector<StateSentence>()> state) { state_ = std::move(state); }
    std::vector<StateSentence> state() const {
        return state_ ? state_() : std::vector<StateSentence>();
    }

    /// Views are not owned; each must be removed before it ends.
    void addView(StatusMenuView& view);
    void removeView(StatusMenuView& view);

private:
    friend class MenuEntry;

    MenuEntry& append(MenuEntry::Kind kind, int tag, const QString& title,
                      MenuEntry::Action action);
    void menuDidChange() const;
    void entryDidChange(const MenuEntry& entry) const;

    int lastID_ = 0;
    /// Stands for the shortcuts that are not shown; no part of `entries`.
    MenuEntry overflow_;
    Entries entries_;
    std::vector<StatusMenuView*> views_;
    std::function<std::vector<StateSentence>()> state_;
};

} // namespace navrel
