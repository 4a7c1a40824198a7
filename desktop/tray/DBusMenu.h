#pragma once

#include "app/StatusMenu.h"
#include "desktop/tray/DBusMenuTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>

namespace navrel {

/// The status menu on the session bus, by the interface "com.canonical.dbusmenu". It has one level
/// of entries below the root, whose id is 0. The action of an entry runs after the panel has its
/// reply, since the action may show a dialog. Main thread.
class DBusMenu final : public QDBusAbstractAdaptor, public StatusMenuView {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

public:
    /// Serves the menu at the path where `exported` is registered. The menu must outlive this.
    DBusMenu(StatusMenu& menu, QObject& exported);
    ~DBusMenu() override;

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

    void menuDidChange() override;
    void entryDidChange(const MenuEntry& entry) override;

public Q_SLOTS:
    /// An entry's properties (all, or those named) and, unless the depth is 0, the entries below
    /// it. Returns the revision of the menu. An unknown entry has no properties.
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   navrel::DBusMenuLayoutItem& layout);
    /// The properties of these entries; of all for an empty list.
    QList<navrel::DBusMenuItem> GetGroupProperties(const QList<int>& ids,
                                                   const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    /// Returns the ids that are unknown.
    QList<int> EventGroup(const QList<navrel::DBusMenuEvent>& events);
    /// Whether the panel must read the layout again: never, since each change has been announced.
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const QList<navrel::DBusMenuItem>& updatedProps,
                                const QList<navrel::DBusMenuItemKeys>& removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    bool isKnown(int id) const;

    StatusMenu& menu_;
    uint revision_ = 1;
};

} // namespace navrel
