#include "desktop/UserNotification.h"

#include "desktop/MenuText.h"
#include "support/core/MainThread.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QStringList>
#include <QVariantMap>

namespace navrel {

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
constexpr uint kNewNotification = 0;
constexpr int kDesktopsOwnTime = -1;

} // namespace

void notifyUser(const QString& summary, const QString& sentence) {
    NAVREL_ASSERT_MAIN_THREAD();
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, kPath, kService, QStringLiteral("Notify"));
    call << QStringLiteral("Navrel") << kNewNotification << QStringLiteral("nl.kelvane.Navrel")
         << titleOnOneLine(summary) << sentence << QStringList()
         << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("nl.kelvane.Navrel")}}
         << kDesktopsOwnTime;
    bus.asyncCall(call);
}

} // namespace navrel
