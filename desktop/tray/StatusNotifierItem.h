#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QIcon>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <optional>

namespace navrel {

class StatusMenu;

/// The status item on the session bus: a freedesktop.org StatusNotifierItem, with its menu. Offers
/// itself to any panel that hosts such items, even one that starts later, or again. Main thread.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    struct Appearance {
        /// A name of the icon theme, where that has the icon; else empty.
        QString iconName;
        /// For panels that want a picture.
        QIcon icon;
    };

    /// `bus` is the session's. `menuAt` must show the menu at a point of the screen, for panels
    /// that do not read it over the bus. `hostDidChange` is called when `hasHost` or `isHostKnown`
    /// has changed. The menu must outlive this.
    StatusNotifierItem(const QDBusConnection& bus, StatusMenu& menu, Appearance appearance,
                       std::function<void(QPoint)> menuAt, std::function<void()> hostDidChange);
    ~StatusNotifierItem() override;

    /// Whether a panel shows the item, as far as is known: the bus answers later.
    bool hasHost() const { return hasHost_.value_or(false); }
    /// Whether `hasHost` is certain: not before the first answer, nor if the panel's watcher
    /// refuses to answer. Certain also if there is no watcher.
    bool isHostKnown() const { return hasHost_.has_value(); }

    /// Whether the bus is connected.
    bool isOnBus() const { return bus_.isConnected(); }

    const Appearance& appearance() const { return appearance_; }
    void showMenuAt(QPoint position) const { menuAt_(position); }
    /// The object path of the menu on the bus.
    QString menuPath() const;

private Q_SLOTS:
    void askForHost();

private:
    void offer();
    void setHasHost(std::optional<bool> hasHost);
    void watchHosts();

    QDBusConnection bus_;
    Appearance appearance_;
    std::function<void(QPoint)> menuAt_;
    std::function<void()> hostDidChange_;
    QString serviceName_;
    QDBusServiceWatcher watcher_;
    std::optional<bool> hasHost_; ///< nil while it is not known
};

} // namespace navrel
