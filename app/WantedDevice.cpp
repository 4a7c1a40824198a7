#include "app/WantedDevice.h"

#include <utility>

namespace navrel {

std::shared_ptr<const DeviceID> WantedDevice::ID() const {
    const std::lock_guard lock(mutex_);
    return connectingToDeviceID_;
}

bool WantedDevice::announce(std::shared_ptr<const DeviceID> deviceID,
                            const QVariantMap& properties) {
    const std::lock_guard lock(mutex_);
    dropAnnounced(*deviceID);
    if (announced_.size() == kMostAnnounced) {
        announced_.erase(announced_.begin());
    }
    announced_.push_back({std::move(deviceID), properties});
    return !std::exchange(isChoiceDue_, true);
}

bool WantedDevice::wantAnnounced() {
    const std::lock_guard lock(mutex_);
    isChoiceDue_ = false;
    const auto announced = std::exchange(announced_, {});
    if (announced.empty() || isWanted(*announced.back().ID)) {
        return false;
    }
    connectingToDeviceID_ = announced.back().ID;
    connectedDeviceProperties_ = announced.back().properties;
    return true;
}

bool WantedDevice::forget(const DeviceID& deviceID) {
    const std::lock_guard lock(mutex_);
    dropAnnounced(deviceID);
    if (!isWanted(deviceID)) {
        return false;
    }
    connectingToDeviceID_ = nullptr;
    connectedDeviceProperties_.clear();
    return true;
}

// The rest with the mutex held.

bool WantedDevice::isWanted(const DeviceID& deviceID) const {
    return connectingToDeviceID_ && connectingToDeviceID_->value() == deviceID.value();
}

void WantedDevice::dropAnnounced(const DeviceID& deviceID) {
    std::erase_if(announced_,
                  [&](const Device& one) { return one.ID->value() == deviceID.value(); });
}

} // namespace navrel
