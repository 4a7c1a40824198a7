#include "tests/SessionBus.h"

#include "tests/WaitUntil.h"

#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QFile>
#include <QStandardPaths>
#include <QUuid>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/prctl.h>

namespace navrel {

namespace {

const QString kDaemon = QStringLiteral("dbus-daemon");
const QString kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kWatcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

constexpr char kConfiguration[] = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

SessionBus::SessionBus() {
    const QString configuration = folder_.filePath(QStringLiteral("bus.conf"));
    QFile file(configuration);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QString::fromLatin1(kConfiguration).arg(folder_.path()).toUtf8());
    }
    file.close();
    // With the test that started it, however that ends.
    daemon_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    daemon_.start(kDaemon, {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                            QStringLiteral("--config-file=") + configuration});
    EXPECT_TRUE(waitUntil([this] { return daemon_.canReadLine(); }));
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
}

SessionBus::~SessionBus() {
    for (const QString& name : connectionNames_) {
        QDBusConnection::disconnectFromBus(name);
    }
    end();
}

void SessionBus::end() {
    daemon_.kill();
    daemon_.waitForFinished();
}

bool SessionBus::isAvailable() {
    return !QStandardPaths::findExecutable(kDaemon).isEmpty();
}

QDBusConnection SessionBus::connect() {
    connectionNames_.append(QUuid::createUuid().toString());
    const auto connection = QDBusConnection::connectToBus(address_, connectionNames_.last());
    EXPECT_TRUE(connection.isConnected());
    return connection;
}

QDBusMessage callOverBus(const QDBusConnection& bus, const QString& service, const QString& path,
                         const QString& interface, const QString& method,
                         const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setArguments(arguments);
    const QDBusPendingCall pending = bus.asyncCall(call);
    return waitUntil([&] { return pending.isFinished(); }) ? pending.reply() : QDBusMessage();
}

QVariant propertyOverBus(const QDBusConnection& bus, const QString& service, const QString& path,
                         const QString& interface, const QString& name) {
    const QDBusMessage reply =
        callOverBus(bus, service, path, kProperties, QStringLiteral("Get"), {interface, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

FakePanel::FakePanel(const QDBusConnection& bus) : bus_(bus) {}

FakePanel::~FakePanel() {
    bus_.unregisterObject(kWatcherPath);
}

bool FakePanel::appear() {
    items.clear();
    bus_.registerVirtualObject(kWatcherPath, this);
    return bus_.registerService(kWatcher);
}

void FakePanel::disappear() {
    bus_.unregisterService(kWatcher);
}

void FakePanel::setHasHost(bool hasHost) {
    hasHost_ = hasHost;
    bus_.send(QDBusMessage::createSignal(kWatcherPath, kWatcher,
                                         hasHost
                                             ? QStringLiteral("StatusNotifierHostRegistered")
                                             : QStringLiteral("StatusNotifierHostUnregistered")));
}

QString FakePanel::introspect(const QString&) const {
    return QStringLiteral(R"(<interface name="org.kde.StatusNotifierWatcher">
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <method name="RegisterStatusNotifierItem"><arg name="service" type="s" direction="in"/></method>
</interface>
)");
}

bool FakePanel::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (manners_ != Manners::Good) {
        ++refusals;
        return manners_ == Manners::Mute ||
               connection.send(message.createErrorReply(QDBusError::Failed, QString()));
    }
    if (message.member() == QStringLiteral("RegisterStatusNotifierItem")) {
        items.append(message.arguments().value(0).toString());
        return connection.send(message.createReply());
    }
    if (message.member() == QStringLiteral("Get")) {
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusVariant(QVariant(hasHost_)))));
    }
    return false;
}

} // namespace navrel
