#pragma once

#include "project/MenuItem.h"

#include <QString>

#include <functional>

namespace navrel {

class StatusMenu;

/// An entry of the status menu. Owned by its menu.
class MenuEntry final : public MenuItem {
public:
    enum class Kind {
        Text,   ///< only read
        Action, ///< does something when chosen
        Switch, ///< an action that shows whether something is on
        Separator,
    };
    using Action = std::function<void(const MenuEntry&)>;

    /// Tells the entries of a menu apart, also those that are gone: above 0, never used again.
    int id() const { return id_; }
    int tag() const { return tag_; }
    Kind kind() const { return kind_; }
    bool canBeChosen() const { return kind_ == Kind::Action || kind_ == Kind::Switch; }
    /// As written: a view escapes and shortens it as it has to.
    const QString& title() const { return title_; }
    bool isChecked() const { return isChecked_; }

    void setTitle(const QString& title) override;
    void setChecked(bool checked) override;

private:
    friend class StatusMenu;
    MenuEntry(StatusMenu& menu, int id, Kind kind, int tag, QString title, Action action);

    StatusMenu& menu_;
    int id_;
    Kind kind_;
    int tag_;
    QString title_;
    bool isChecked_ = false;
    Action action_;
};

} // namespace navrel
