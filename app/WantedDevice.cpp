#include "app/WantedDevice.h"

#include <utility>

namespace navrel {

std::shared_ptr<const DeviceID> WantedDevice::ID() const {
    const std::lock_guard lock(mutex_);
    return connectingToDeviceID_;
}

bool WantedDevice::want(std::shared_ptr<const DeviceID> deviceID, const QVariantMap& properties) {
    const std::lock_guard lock(mutex_);
    if (isWanted(*deviceID)) {
        return false;
    }
    connectingToDeviceID_ = std::move(deviceID);
    connectedDeviceProperties_ = properties;
    return true;
}

bool WantedDevice::forget(const DeviceID& deviceID) {
    const std::lock_guard lock(mutex_);
    if (!isWanted(deviceID)) {
        return false;
    }
    connectingToDeviceID_ = nullptr;
    connectedDeviceProperties_.clear();
    return true;
}

// With the mutex held.
bool WantedDevice::isWanted(const DeviceID& deviceID) const {
    return connectingToDeviceID_ && connectingToDeviceID_->value() == deviceID.value();
}

} // namespace navrel
