#include "desktop/tray/StatusNotifierItem.h"

#include "app/StatusMenu.h"
#include "desktop/tray/DBusMenu.h"
#include "desktop/tray/StatusNotifierItemAdaptor.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace navrel {

namespace {

const QString kWatcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString kItemPath = QStringLiteral("/StatusNotifierItem");
const QString kMenuPath = QStringLiteral("/MenuBar");

/// Whether a call failed because nobody has the name that it was for.
bool isAbsence(const QDBusError& error) {
    return error.type() == QDBusError::ServiceUnknown ||
           error.name() == QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& bus, StatusMenu& menu,
                                       Appearance appearance, std::function<void(QPoint)> menuAt,
                                       std::function<void()> hostDidChange)
    : bus_(bus), appearance_(std::move(appearance)), menuAt_(std::move(menuAt)),
      hostDidChange_(std::move(hostDidChange)),
      serviceName_(QStringLiteral("org.kde.StatusNotifierItem-%1-1")
                       .arg(QCoreApplication::applicationPid())),
      watcher_(kWatcherService, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    auto* exportedMenu = new QObject(this);
    new StatusNotifierItemAdaptor(*this);
    new DBusMenu(menu, *exportedMenu);
    if (!bus_.registerObject(kItemPath, this) || !bus_.registerObject(kMenuPath, exportedMenu) ||
        !bus_.registerService(serviceName_)) {
        log(QStringLiteral("The status item cannot be on the session bus: %1")
                .arg(bus_.lastError().message()));
        hasHost_ = false;
        return;
    }
    watchHosts();
    offer();
}

StatusNotifierItem::~StatusNotifierItem() {
    bus_.unregisterService(serviceName_);
    bus_.unregisterObject(kItemPath);
    bus_.unregisterObject(kMenuPath);
}

QString StatusNotifierItem::menuPath() const {
    return kMenuPath;
}

void StatusNotifierItem::watchHosts() {
    NAVREL_ASSERT_MAIN_THREAD();
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                if (owner.isEmpty()) {
                    setHasHost(false);
                } else {
                    offer();
                }
            });
    for (const char* const signal :
         {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.connect(kWatcherService, kWatcherPath, kWatcherService, QLatin1String(signal), this,
                     SLOT(askForHost()));
    }
}

/// Offers the item to the panel's watcher, whether or not there is one.
void StatusNotifierItem::offer() {
    NAVREL_ASSERT_MAIN_THREAD();
    QDBusMessage call =
        QDBusMessage::createMethodCall(kWatcherService, kWatcherPath, kWatcherService,
                                       QStringLiteral("RegisterStatusNotifierItem"));
    call.setAutoStartService(false);
    call << serviceName_;
    auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        if (!answer->isError()) {
            askForHost();
        } else if (isAbsence(answer->error())) {
            setHasHost(false);
        } else {
            setHasHost(std::nullopt);
        }
    });
}

void StatusNotifierItem::askForHost() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        kWatcherService, kWatcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    call.setAutoStartService(false);
    call << kWatcherService << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QVariant> reply = *answer;
        // A watcher that cannot say took the item all the same.
        setHasHost(reply.isError() ? !isAbsence(reply.error()) : reply.value().toBool());
    });
}

void StatusNotifierItem::setHasHost(std::optional<bool> hasHost) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (hasHost_ != hasHost) {
        hasHost_ = hasHost;
        hostDidChange_();
    }
}

} // namespace navrel
