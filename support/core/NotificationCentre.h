#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace navrel {

/// Something that happened to its sender, told to those that observe it.
struct Notification {
    QString name;
    const void* sender = nullptr; ///< for comparison only
    QVariantMap userInfo;
};

/// Carries notifications from senders to observers that do not know each other. Any thread.
class NotificationCentre {
    struct Observation;

public:
    using Observer = std::function<void(const Notification& notification)>;

    /// Keeps an observer registered: it is removed, together with what it holds, when the last copy
    /// of its token goes. A call that has begun is not waited for.
    using Token = std::shared_ptr<const Observation>;

    /// The centre of the process. Never destroyed.
    static NotificationCentre& defaultCentre();

    NotificationCentre() = default;
    NotificationCentre(const NotificationCentre&) = delete;
    NotificationCentre& operator=(const NotificationCentre&) = delete;

    /// Observes the notifications of that name by that very sender.
    [[nodiscard]] Token addObserver(const QString& name, const void* sender, Observer observer);

    /// Calls the observers one after the other, in the order of their registration, before this
    /// returns. They may add and remove observers: an added one is not called for this notification
    /// any more, nor is a removed one.
    void post(const QString& name, const void* sender, const QVariantMap& userInfo);

private:
    std::vector<std::weak_ptr<const Observation>> observersOf(const QString& name,
                                                              const void* sender);

    std::mutex mutex_;
    std::vector<std::weak_ptr<const Observation>> observations_; ///< any thread, under the mutex
};

} // namespace navrel
