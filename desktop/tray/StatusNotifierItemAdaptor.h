#pragma once

#include "desktop/tray/StatusNotifierItem.h"
#include "desktop/tray/StatusNotifierTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QString>

namespace navrel {

/// The D-Bus interface of the item: "org.kde.StatusNotifierItem", the name that all desktops use.
class StatusNotifierItemAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(QString IconThemePath READ none CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QString IconName READ iconName CONSTANT)
    Q_PROPERTY(navrel::DBusPictures IconPixmap READ iconPixmap CONSTANT)
    Q_PROPERTY(QString OverlayIconName READ none CONSTANT)
    Q_PROPERTY(navrel::DBusPictures OverlayIconPixmap READ noPictures CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ none CONSTANT)
    Q_PROPERTY(navrel::DBusPictures AttentionIconPixmap READ noPictures CONSTANT)
    Q_PROPERTY(QString AttentionMovieName READ none CONSTANT)
    Q_PROPERTY(navrel::DBusToolTip ToolTip READ toolTip CONSTANT)

public:
    explicit StatusNotifierItemAdaptor(StatusNotifierItem& item);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("nl.kelvane.Navrel"); }
    /// For screen readers and lists of items: panels show only the icon.
    QString title() const { return QStringLiteral("Navrel"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QDBusObjectPath menu() const;
    bool itemIsMenu() const { return true; }
    QString iconName() const { return item_.appearance().iconName; }
    DBusPictures iconPixmap() const;
    DBusToolTip toolTip() const { return {}; }
    QString none() const { return {}; }
    DBusPictures noPictures() const { return {}; }

public Q_SLOTS:
    void ContextMenu(int x, int y);
    void Activate(int x, int y);
    void SecondaryActivate(int, int) {}
    void Scroll(int, const QString&) {}

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);

private:
    StatusNotifierItem& item_;
};

} // namespace navrel
