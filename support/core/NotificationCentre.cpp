#include "support/core/NotificationCentre.h"

#include <utility>

namespace navrel {

struct NotificationCentre::Observation {
    QString name;
    const void* sender;
    Observer observer;
};

NotificationCentre& NotificationCentre::defaultCentre() {
    static NotificationCentre& instance = *new NotificationCentre;
    return instance;
}

NotificationCentre::Token NotificationCentre::addObserver(const QString& name, const void* sender,
                                                          Observer observer) {
    const auto token =
        std::make_shared<const Observation>(Observation{name, sender, std::move(observer)});
    const std::lock_guard lock(mutex_);
    std::erase_if(observations_, [](const auto& observation) { return observation.expired(); });
    observations_.push_back(token);
    return token;
}

void NotificationCentre::post(const QString& name, const void* sender,
                              const QVariantMap& userInfo) {
    const Notification notification = {name, sender, userInfo};
    for (const auto& candidate : observersOf(name, sender)) {
        if (const auto observation = candidate.lock()) {
            observation->observer(notification);
        }
    }
}

std::vector<std::weak_ptr<const NotificationCentre::Observation>>
NotificationCentre::observersOf(const QString& name, const void* sender) {
    std::vector<std::weak_ptr<const Observation>> matching;
    const std::lock_guard lock(mutex_);
    for (const auto& candidate : observations_) {
        const auto observation = candidate.lock();
        if (observation && observation->sender == sender && observation->name == name) {
            matching.push_back(observation);
        }
    }
    return matching;
}

} // namespace navrel
