#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace navrel {

/// Something that happened, as observers of the sender learn it.
struct Notification {
    QString name;
    const void* sender = nullptr; ///< for comparison only
    QVariantMap userInfo;
};

/// Passes notifications from senders to observers that do not know each other. Any thread.
class NotificationCentre {
    struct Observation;

public:
    using Observer = std::function<void(const Notification& notification)>;

    /// Keeps an observer registered. When its last copy is destroyed, the observer is removed and
    /// destroyed; a call to it that has begun on another thread may still be running.
    using Token = std::shared_ptr<const Observation>;

    /// The centre of the process. Never destroyed.
    static NotificationCentre& defaultCentre();

    NotificationCentre() = default;
    NotificationCentre(const NotificationCentre&) = delete;
    NotificationCentre& operator=(const NotificationCentre&) = delete;

    /// Has `observer` called for the notifications of that name that this sender posts.
    [[nodiscard]] Token addObserver(const QString& name, const void* sender, Observer observer);

    /// Calls the observers one after another, in the order of their registration, and returns after
    /// the last. They may add and remove observers: added ones are not called for this
    /// notification, and neither are removed ones that were still to come.
    void post(const QString& name, const void* sender, const QVariantMap& userInfo);

private:
    std::vector<std::weak_ptr<const Observation>> observersOf(const QString& name,
                                                              const void* sender);

    std::mutex mutex_;
    std::vector<std::weak_ptr<const Observation>> observations_; ///< any thread, under the mutex
};

} // namespace navrel
