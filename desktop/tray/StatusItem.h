#pragma once

#include "desktop/tray/MenuWidget.h"

#include <QIcon>
#include <QObject>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>

namespace navrel {

class MenuWindow;
class StatusMenu;
class StatusNotifierItem;

/// Shows the status item, for as long as it lives: on the session bus if a panel hosts items,
/// otherwise in an X11 tray, otherwise as a small window with the same menu, so that the user can
/// always reach the program. Follows panels as they come and go. Main thread.
class StatusItem final : public QObject {
public:
    /// Without a display, only panels on the session bus can show the item. The menu must outlive
    /// this.
    StatusItem(StatusMenu& menu, const QIcon& icon, bool hasDisplay);
    ~StatusItem() override;

    /// Shows the window in front of all others, until it is closed, even where a panel or tray has
    /// the item.
    void bringToFront();

private:
    void offerOnBus(StatusMenu& menu);
    void chooseWhere();
    void showInTray(bool show);
    void showInWindow(bool show);

    QIcon icon_;
    bool hasDisplay_;
    MenuWidget menuWidget_;
    std::unique_ptr<StatusNotifierItem> busItem_;
    std::unique_ptr<QSystemTrayIcon> trayIcon_;
    std::unique_ptr<MenuWindow> window_;
    QTimer trayTimer_;
    bool isWindowWanted_ = false; ///< by the user, until it is closed
    bool hasWaited_ = false;      ///< for a panel: at login, they start beside the program
};

} // namespace navrel
