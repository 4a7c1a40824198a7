#pragma once

#include "app/DeviceID.h"
#include "app/LinkState.h"
#include "app/LogLimiter.h"
#include "app/LoopbackGate.h"
#include "app/WantedDevice.h"
#include "support/core/Clock.h"
#include "support/core/NotificationCentre.h"
#include "transport/frames/PTChannel.h"
#include "transport/usb/PTUSBHub.h"

#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace navrel {

class DispatchQueue;

/// Finds the companion app and keeps one connection to it: over USB to a device that the hub has
/// announced, or on 127.0.0.1 to the simulator. LinkState.h has its states and their transitions.
///
/// Every attempt goes through the connection queue, which is suspended while a channel is
/// connected: an attempt that comes up meanwhile is parked there, and runs when the connection is
/// gone. So the poll of 127.0.0.1 schedules its next attempt after a success as well as after a
/// failure: that one is the reconnection. A device that is attached meanwhile is parked there, too.
/// What runs on the queue itself is the hop back to the main thread, and the choice of the wanted
/// device. Main thread.
class DeviceLink final : public std::enable_shared_from_this<DeviceLink> {
public:
    /// The world as the link sees it. The clock must outlive the link.
    struct World {
        Clock& clock;
        /// Gives the hub that devices on USB are reached through; asked once, at start.
        std::function<std::shared_ptr<PTUSBHub>()> hub;
        /// Says who is at the other end of a socket that is connected on the loopback address.
        std::function<LoopbackPeer(int socket)> loopbackPeer;
        /// Gives the delegate of every channel, which must pass on their ends by
        /// `channelDidEnd`.
        std::function<std::shared_ptr<PTChannelDelegate>()> channelDelegate;
        /// Called when the connected device has gone.
        std::function<void()> connectedDeviceIDDidChange;
    };

    /// A link that does nothing until it is started.
    static std::shared_ptr<DeviceLink> create(World world);
    ~DeviceLink();
    DeviceLink(const DeviceLink&) = delete;
    DeviceLink& operator=(const DeviceLink&) = delete;

    LinkState state() const { return state_; }
    /// Whether something answers that knows the devices on USB; also before the link is started.
    bool isUSBDaemonThere() const { return !hub_ || hub_->isDaemonThere(); }
    /// As LoopbackGate has them.
    const std::set<qint64>& refusedUsers() const { return gate_.refusedUsers(); }

    /// Observes the devices that the hub announces; the last one attached is reached, as soon as no
    /// channel is connected. Once.
    void startListeningForDevices();
    /// Puts an attempt to reach the companion app on a device on the connection queue: it waits
    /// while a channel is connected, and runs on the main thread, for the device that is wanted by
    /// then, or for none. It takes the place of any that still waits, and is dropped if that device
    /// is being reached already.
    void enqueueConnectToUSBDevice();
    /// Puts an attempt to reach the companion app on 127.0.0.1 on the connection queue: it waits
    /// while a channel is connected, and runs on the main thread.
    void enqueueConnectToLocalIPv4Port();

    /// The one connected channel, or null.
    const std::shared_ptr<PTChannel>& connectedChannel() const { return connectedChannel_; }
    /// Makes a channel (or null, for none) the connected one. The former channel is released, not
    /// closed.
    void setConnectedChannel(std::shared_ptr<PTChannel> channel);
    /// The device whose channel is connected; null for none, and for the simulator.
    const std::shared_ptr<const DeviceID>& connectedDeviceID() const { return connectedDeviceID_; }

    /// Closes the connected channel if it is a device's.
    void disconnectFromCurrentChannel();
    /// Logs that a device is gone, and forgets it if it is the connected one.
    void didDisconnectFromDevice(const DeviceID& deviceID);
    /// A channel has ended, whether it is the connected one or not.
    void channelDidEnd(const std::shared_ptr<PTChannel>& channel);

private:
    explicit DeviceLink(World world);

    void happen(LinkEvent event);
    void deviceDidAttach(const QVariantMap& userInfo);
    void deviceDidDetach(const QVariantMap& userInfo);
    void reachWantedDevice();
    void connectToUSBDevice();
    void connectedToUSBDevice(const std::shared_ptr<PTChannel>& channel,
                              const std::optional<Error>& error);
    void connectToLocalIPv4Port();
    void connectedToLocalIPv4Port(const std::shared_ptr<PTChannel>& channel,
                                  const std::optional<Error>& error,
                                  const std::shared_ptr<const PTAddress>& address);
    void enqueueAttempt(const std::function<void(DeviceLink&)>& attempt);

    World world_;
    LinkState state_ = LinkState::idle;
    LoopbackGate gate_;
    const std::shared_ptr<DispatchQueue> notConnectedQueue_; ///< "PTExample.notConnectedQueue"
    std::shared_ptr<PTUSBHub> hub_;
    std::vector<NotificationCentre::Token> deviceObservers_;
    LogLimiter deviceLog_;
    /// Shared with the jobs of the connection queue, which may outlive the link.
    const std::shared_ptr<WantedDevice> wantedDevice_ = std::make_shared<WantedDevice>();
    quint64 lastUSBAttempt_ = 0; ///< number of the attempt enqueued last; any other is dropped
    int waitingForDevice_ = 0;   ///< announcements and attempts that the connection queue still has
    std::weak_ptr<PTChannel> usbAttempt_;      ///< of the attempt under way that began last
    std::unique_ptr<ScheduledCall> usbRetry_;  ///< a failed attempt, to be repeated
    std::unique_ptr<ScheduledCall> localPoll_; ///< the next attempt on 127.0.0.1
    std::shared_ptr<const DeviceID> connectedDeviceID_;
    std::shared_ptr<PTChannel> connectedChannel_;
};

} // namespace navrel
