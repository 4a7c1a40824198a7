#pragma once

#include "app/StateSentences.h"
#include "app/StatusMenu.h"

#include <QIcon>
#include <QList>
#include <QListWidget>
#include <QTimer>
#include <QWidget>

#include <vector>

namespace navrel {

/// The status menu as a small window, below sentences on the program's state, for desktops without
/// status items. Closing it only minimizes it, since it is the only way to reach the program; the
/// quit entry ends that. It is as high as its rows, or as many whole rows as fit on the screen.
/// Main thread.
class MenuWindow final : public QWidget, public StatusMenuView {
public:
    /// Hidden at first. The menu must outlive this; it is asked for the sentences once a second
    /// while the window is shown.
    MenuWindow(StatusMenu& menu, const QIcon& icon);
    ~MenuWindow() override;

    void menuDidChange() override;
    void entryDidChange(const MenuEntry& entry) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// Notices the end of the session, which closes all windows: then this one must not refuse.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show(const MenuEntry& entry, QListWidgetItem& item) const;
    void addSeparator();
    void addState();
    void showState();
    void fitRows();

    StatusMenu& menu_;
    std::vector<StateSentence> sentences_; ///< in the first rows
    QTimer stateTimer_;                    ///< runs while the window shows
    QListWidget list_;
    bool isProgramEnding_ = false;
    /// The last sizes that the window gave itself: X11 confirms each in its own time.
    QList<QSize> fittedSizes_;
    bool hasUsersSize_ = false; ///< it keeps that, once the user or the desktop has resized it
};

} // namespace navrel
