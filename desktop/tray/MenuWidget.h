#pragma once

#include "app/StatusMenu.h"

#include <QAction>
#include <QHash>
#include <QMenu>

namespace navrel {

/// The status menu as a QMenu, for an X11 tray and for panels that have the program show it. Main
/// thread.
class MenuWidget final : public QMenu, public StatusMenuView {
public:
    /// The menu must outlive this.
    explicit MenuWidget(StatusMenu& menu);
    ~MenuWidget() override;

    void menuDidChange() override;
    void entryDidChange(const MenuEntry& entry) override;

private:
    void choose(int id);
    void show(const MenuEntry& entry, QAction& action) const;

    StatusMenu& menu_;
    QHash<int, QAction*> actions_; ///< by the entry's id; owned by the widget
};

} // namespace navrel
