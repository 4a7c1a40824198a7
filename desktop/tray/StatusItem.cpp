#include "desktop/tray/StatusItem.h"

#include "desktop/tray/StatusNotifierItem.h"
#include "desktop/windows/MenuWindow.h"
#include "support/core/MainThread.h"

#include <QCursor>
#include <QDBusConnection>
#include <QStandardPaths>

#include <chrono>

namespace navrel {

namespace {

/// X11 does not tell when a tray appears, at least not through Qt.
constexpr std::chrono::milliseconds kTrayInterval{1000};
constexpr std::chrono::milliseconds kPatienceWithPanels{2000};

/// One colour, which panels replace by their own: only by name, and only once it is installed.
QString installedSymbolicIcon() {
    const QString name = QStringLiteral("nl.kelvane.Navrel-symbolic");
    const QString file = QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name);
    const bool isInstalled =
        !QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty();
    return isInstalled ? name : QString();
}

} // namespace

StatusItem::StatusItem(StatusMenu& menu, const QIcon& icon, bool hasDisplay)
    : icon_(icon), hasDisplay_(hasDisplay), menuWidget_(menu),
      window_(std::make_unique<MenuWindow>(menu, icon)) {
    NAVREL_ASSERT_MAIN_THREAD();
    offerOnBus(menu);
    connect(&trayTimer_, &QTimer::timeout, this, [this] {
        if (busItem_ != nullptr && !busItem_->isOnBus()) {
            busItem_.reset(); // nobody tells of that
        }
        chooseWhere();
    });
    trayTimer_.start(kTrayInterval);
    QTimer::singleShot(kPatienceWithPanels, this, [this] {
        hasWaited_ = true;
        chooseWhere();
    });
    chooseWhere();
}

StatusItem::~StatusItem() = default;

void StatusItem::offerOnBus(StatusMenu& menu) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    busItem_ = std::make_unique<StatusNotifierItem>(
        bus, menu, StatusNotifierItem::Appearance{installedSymbolicIcon(), icon_},
        [this](QPoint position) {
            if (hasDisplay_) {
                menuWidget_.popup(position);
            }
        },
        [this] { chooseWhere(); });
}

void StatusItem::chooseWhere() {
    const bool isOnPanel = busItem_ != nullptr && busItem_->hasHost();
    const bool isPanelKnown = busItem_ == nullptr || busItem_->isHostKnown();
    // Qt must not be asked before: where it meets a panel on the bus it takes that for the tray,
    // now and ever after, and offers it an item of its own. One that never answers would block it.
    const bool isInTray =
        hasDisplay_ && isPanelKnown && !isOnPanel && QSystemTrayIcon::isSystemTrayAvailable();
    showInTray(isInTray);
    isWindowWanted_ = isWindowWanted_ && !window_->isMinimized(); // closing it minimizes it
    showInWindow(hasDisplay_ && (isWindowWanted_ || (hasWaited_ && !isOnPanel && !isInTray)));
}

void StatusItem::bringToFront() {
    window_->showNormal();
    window_->raise();
    window_->activateWindow();
    isWindowWanted_ = true;
}

void StatusItem::showInTray(bool show) {
    if (show == (trayIcon_ != nullptr)) {
        return;
    }
    if (!show) {
        trayIcon_.reset();
        return;
    }
    trayIcon_ = std::make_unique<QSystemTrayIcon>(icon_);
    trayIcon_->setContextMenu(&menuWidget_);
    connect(trayIcon_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger) {
                    menuWidget_.popup(QCursor::pos());
                }
            });
    trayIcon_->show();
}

void StatusItem::showInWindow(bool show) {
    if (show != window_->isVisible()) {
        window_->setVisible(show);
    }
}

} // namespace navrel
