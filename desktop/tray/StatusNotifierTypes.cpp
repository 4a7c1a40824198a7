#include "desktop/tray/StatusNotifierTypes.h"

#include "desktop/tray/DBusStructure.h"

#include <QDBusMetaType>

namespace navrel {

QDBusArgument& operator<<(QDBusArgument& argument, const DBusPicture& picture) {
    return putStructure(argument, picture.width, picture.height, picture.bytes);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusPicture& picture) {
    return takeStructure(argument, picture.width, picture.height, picture.bytes);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusToolTip& toolTip) {
    return putStructure(argument, toolTip.iconName, toolTip.pictures, toolTip.title, toolTip.text);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusToolTip& toolTip) {
    return takeStructure(argument, toolTip.iconName, toolTip.pictures, toolTip.title, toolTip.text);
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<DBusPicture>();
    qDBusRegisterMetaType<DBusPictures>();
    qDBusRegisterMetaType<DBusToolTip>();
}

} // namespace navrel
