#pragma once

#include "app/StatusMenu.h"

#include <QIcon>
#include <QListWidget>
#include <QWidget>

namespace navrel {

/// The status menu as a small window, for desktops that show no status items. Closing it only
/// minimizes it: it is all that the person has of the program, which ends by its quit entry. Main
/// thread.
class MenuWindow final : public QWidget, public StatusMenuView {
public:
    /// Hidden at first. The menu must live longer.
    MenuWindow(StatusMenu& menu, const QIcon& icon);
    ~MenuWindow() override;

    void menuDidChange() override;
    void entryDidChange(const MenuEntry& entry) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    /// Hears that the session ends, which closes all windows: then none may refuse.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show(const MenuEntry& entry, QListWidgetItem& item) const;
    void addSeparator();

    StatusMenu& menu_;
    QListWidget list_;
    bool isProgramEnding_ = false;
};

} // namespace navrel
