#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

/// The types of a status item on the session bus, with their signatures.
namespace navrel {

/// (iiay): a picture as ARGB32 in network byte order.
struct DBusPicture {
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
using DBusPictures = QList<DBusPicture>;

/// (sa(iiay)ss): icon name, pictures, title, text.
struct DBusToolTip {
    QString iconName;
    DBusPictures pictures;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusPicture& picture);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusPicture& picture);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusToolTip& toolTip);

/// Registers the types with Qt's D-Bus binding. May be called any number of times.
void registerStatusNotifierTypes();

} // namespace navrel

Q_DECLARE_METATYPE(navrel::DBusPicture)
Q_DECLARE_METATYPE(navrel::DBusToolTip)
