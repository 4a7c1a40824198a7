#pragma once

#include "app/DeviceID.h"

#include <QVariantMap>

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace navrel {

/// The device on USB that the link is to reach, and those that were attached while it could not
/// choose: a device becomes the wanted one on the connection queue, everything else happens on the
/// main thread. Any thread.
class WantedDevice {
public:
    /// More than anybody plugs in. Of a daemon that makes devices up, the last ones count.
    static constexpr size_t kMostAnnounced = 16;

    /// The device's ID; null while none is wanted.
    std::shared_ptr<const DeviceID> ID() const;

    /// Notes a device that was attached. True if `wantAnnounced` is to be called for it; else a
    /// call is due already.
    bool announce(std::shared_ptr<const DeviceID> deviceID, const QVariantMap& properties);

    /// Makes the device announced last the wanted one, and forgets the others. False, with the
    /// wanted one unchanged, if it is that already, or all announced have gone.
    bool wantAnnounced();

    /// A device has gone: it is not announced any more. True if it was the wanted one; then none is
    /// wanted any more.
    bool forget(const DeviceID& deviceID);

private:
    struct Device {
        std::shared_ptr<const DeviceID> ID;
        QVariantMap properties;
    };

    bool isWanted(const DeviceID& deviceID) const;
    void dropAnnounced(const DeviceID& deviceID);

    mutable std::mutex mutex_; ///< guards everything below; any thread
    std::shared_ptr<const DeviceID> connectingToDeviceID_;
    QVariantMap connectedDeviceProperties_; ///< for the debugger, not read
    std::vector<Device> announced_;         ///< in the order of their announcements
    bool isChoiceDue_ = false;
};

} // namespace navrel
