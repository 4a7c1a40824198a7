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

/// The status item on the session bus: an item of the freedesktop.org StatusNotifierItem kind,
/// whose menu stands beside it. It offers itself to whatever panel hosts such items, also to one
/// that starts later, or again. Main thread.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    struct Appearance {
        /// A name of the icon theme, where that has the icon; else empty.
        QString iconName;
        /// For panels that want a picture.
        QIcon icon;
    };

    /// `bus` is the session's. `menuAt` shows the menu at a point of the screen by other means, for
    /// panels that do not read it over the bus. `hostDidChange` is called when `hasHost` changed,
    /// or became certain.
    StatusNotifierItem(const QDBusConnection& bus, StatusMenu& menu, Appearance appearance,
                       std::function<void(QPoint)> menuAt, std::function<void()> hostDidChange);
    ~StatusNotifierItem() override;

    /// Whether a panel shows the item, as far as is known: each answer of the bus comes later.
    bool hasHost() const { return hasHost_.value_or(false); }
    /// Whether that is certain, be it that there is nobody to ask: not before the first answer, nor
    /// when the panel's watcher refuses to tell.
    bool isHostKnown() const { return hasHost_.has_value(); }

    /// Whether it stands on a bus: not after that has ended.
    bool isOnBus() const { return bus_.isConnected(); }

    const Appearance& appearance() const { return appearance_; }
    void showMenuAt(QPoint position) const { menuAt_(position); }
    /// Where the menu stands on the bus.
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
