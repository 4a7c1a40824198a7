#include "desktop/tray/DBusMenuTypes.h"

#include "desktop/tray/DBusStructure.h"

#include <QDBusMetaType>

namespace navrel {

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItem& item) {
    return putStructure(argument, item.id, item.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItem& item) {
    return takeStructure(argument, item.id, item.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemKeys& item) {
    return putStructure(argument, item.id, item.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemKeys& item) {
    return takeStructure(argument, item.id, item.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item) {
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const DBusMenuLayoutItem& child : item.children) {
        argument << QDBusVariant(QVariant::fromValue(child));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item) {
    argument.beginStructure();
    argument >> item.id >> item.properties;
    item.children.clear();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant variant;
        argument >> variant;
        const auto childArgument = qvariant_cast<QDBusArgument>(variant.variant());
        DBusMenuLayoutItem child;
        childArgument >> child;
        item.children.append(child);
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event) {
    return putStructure(argument, event.id, event.eventID, event.data, event.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event) {
    return takeStructure(argument, event.id, event.eventID, event.data, event.timestamp);
}

void registerDBusMenuTypes() {
    qDBusRegisterMetaType<DBusMenuItem>();
    qDBusRegisterMetaType<QList<DBusMenuItem>>();
    qDBusRegisterMetaType<DBusMenuItemKeys>();
    qDBusRegisterMetaType<QList<DBusMenuItemKeys>>();
    qDBusRegisterMetaType<DBusMenuLayoutItem>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
}

} // namespace navrel
