#pragma once

#include "app/StatusMenu.h"

#include <QIcon>
#include <QListWidget>
#include <QWidget>

namespace navrel {

/// The status menu as a small window, for desktops that show no status items. Closing it only
/// minimizes it: it is all that the user has of the program, which ends by its quit entry. It is as
/// high as its rows, or as many of them as the screen has room for, and cuts none. Main thread.
class MenuWindow final : public QWidget, public StatusMenuView {
public:
    /// Hidden at first. The menu must live longer.
    MenuWindow(StatusMenu& menu, const QIcon& icon);
    ~MenuWindow() override;

    void menuDidChange() override;
    void entryDidChange(const MenuEntry& entry) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Hears that the session ends, which closes all windows: then none may refuse.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show(const MenuEntry& entry, QListWidgetItem& item) const;
    void addSeparator();
    void fitRows();

    StatusMenu& menu_;
    QListWidget list_;
    bool isProgramEnding_ = false;
    QSize fittedSize_;          ///< the last size that the window gave itself
    bool hasUsersSize_ = false; ///< it keeps that, once the user or the desktop has resized it
};

} // namespace navrel
