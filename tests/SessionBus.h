#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariantList>

#include <optional>

namespace navrel {

/// A session bus of its own: the real daemon, knowing no services to start.
class SessionBus {
public:
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Whether there is a daemon to test with.
    static bool isAvailable();

    /// What clients find in DBUS_SESSION_BUS_ADDRESS.
    const QString& address() const { return address_; }
    /// A new connection, closed with the bus.
    QDBusConnection connect();
    /// Ends the daemon, as at the end of a session: every connection is lost.
    void end();

private:
    QTemporaryDir folder_;
    QProcess daemon_;
    QString address_;
    QStringList connectionNames_;
};

/// Calls a method and runs the event loop until the answer is there: the one called may live in
/// this process. An invalid message when there is none.
QDBusMessage callOverBus(const QDBusConnection& bus, const QString& service, const QString& path,
                         const QString& interface, const QString& method,
                         const QVariantList& arguments = {});

/// A property, or an invalid value.
QVariant propertyOverBus(const QDBusConnection& bus, const QString& service, const QString& path,
                         const QString& interface, const QString& name);

/// A panel as far as status items see one: the watcher that they register with, and its host.
class FakePanel final : public QDBusVirtualObject {
public:
    /// Not on the bus yet.
    explicit FakePanel(const QDBusConnection& bus);
    ~FakePanel() override;

    [[nodiscard]] bool appear();
    void disappear();
    /// A host comes to the watcher, or goes.
    void setHasHost(bool hasHost);

    /// How it answers calls: well, with errors, or never.
    enum class Manners { Good, Refuses, Mute };
    void setManners(Manners manners) { manners_ = manners; }

    /// The service names of the items that were offered since the panel's last appearance.
    QStringList items;
    /// How many calls were refused, or are left without an answer.
    int refusals = 0;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QDBusConnection bus_;
    bool hasHost_ = true;
    Manners manners_ = Manners::Good;
};

} // namespace navrel
