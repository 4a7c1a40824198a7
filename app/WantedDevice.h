#pragma once

#include "app/DeviceID.h"

#include <QVariantMap>

#include <memory>
#include <mutex>

namespace navrel {

/// The device on USB that the link is to reach. A device that is attached becomes the wanted one on
/// the connection queue, everything else happens on the main thread. Any thread.
class WantedDevice {
public:
    /// The device's ID; null while none is wanted.
    std::shared_ptr<const DeviceID> ID() const;

    /// Makes a device the wanted one. False, with nothing changed, if it is that already.
    bool want(std::shared_ptr<const DeviceID> deviceID, const QVariantMap& properties);

    /// Wants none any more, if it was this one; else false.
    bool forget(const DeviceID& deviceID);

private:
    bool isWanted(const DeviceID& deviceID) const;

    mutable std::mutex mutex_; ///< guards everything below; any thread
    std::shared_ptr<const DeviceID> connectingToDeviceID_;
    QVariantMap connectedDeviceProperties_; ///< kept for whoever debugs, not read
};

} // namespace navrel
