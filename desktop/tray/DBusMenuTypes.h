#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

/// The types of a menu over D-Bus, with their signatures.
namespace navrel {

/// (ia{sv}): an entry with properties.
struct DBusMenuItem {
    int id = 0;
    QVariantMap properties;
};

/// (ias): an entry with names of properties.
struct DBusMenuItemKeys {
    int id = 0;
    QStringList properties;
};

/// (ia{sv}av): an entry with those below it.
struct DBusMenuLayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};

/// (isvu): what the user did to an entry, and when.
struct DBusMenuEvent {
    int id = 0;
    QString eventID;
    QDBusVariant data;
    uint timestamp = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemKeys& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemKeys& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

/// Registers the types with Qt's D-Bus binding. May be called any number of times.
void registerDBusMenuTypes();

} // namespace navrel

Q_DECLARE_METATYPE(navrel::DBusMenuItem)
Q_DECLARE_METATYPE(navrel::DBusMenuItemKeys)
Q_DECLARE_METATYPE(navrel::DBusMenuLayoutItem)
Q_DECLARE_METATYPE(navrel::DBusMenuEvent)
