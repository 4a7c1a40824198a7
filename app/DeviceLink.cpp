#include "app/DeviceLink.h"

#include "protocol/CompanionProtocol.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/frames/PTAddress.h"
#include "transport/usb/PTUSBPacket.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace navrel {

namespace {

constexpr quint32 kLoopbackAddress = 0x7F000001; // 127.0.0.1
constexpr std::chrono::milliseconds kReconnectDelay{1000};

/// No companion app listening is the normal case.
bool isNobodyThere(const Error& error) {
    return error.isPOSIX(ECONNREFUSED) || error.isPOSIX(ETIMEDOUT);
}

/// The device that a notification is about; null when it names none.
std::shared_ptr<const DeviceID> deviceIDOf(const QVariantMap& userInfo) {
    const auto number = numberInMessage(userInfo, QStringLiteral("DeviceID"));
    return number ? std::make_shared<const DeviceID>(*number) : nullptr;
}

QString descriptionOf(const std::shared_ptr<const Described>& object) {
    return object ? object->description() : QStringLiteral("(null)");
}

bool isSameDevice(const DeviceID& deviceID, const std::shared_ptr<const Described>& userInfo) {
    const auto other = std::dynamic_pointer_cast<const DeviceID>(userInfo);
    return other && other->value() == deviceID.value();
}

} // namespace

std::shared_ptr<DeviceLink> DeviceLink::create(World world) {
    return std::shared_ptr<DeviceLink>(new DeviceLink(std::move(world)));
}

DeviceLink::DeviceLink(World world)
    : world_(std::move(world)), gate_(world_.loopbackPeer),
      notConnectedQueue_(DispatchQueue::serialQueue(QStringLiteral("PTExample.notConnectedQueue"))),
      deviceLog_(world_.clock, QStringLiteral("devices attached and detached")) {}

DeviceLink::~DeviceLink() = default;

// The suspensions of the queue stay balanced, since they follow the state alone.
void DeviceLink::happen(LinkEvent event) {
    NAVREL_ASSERT_MAIN_THREAD();
    const bool wasConnected = isConnected(state_);
    state_ = nextLinkState(state_, event);
    if (isConnected(state_) && !wasConnected) {
        notConnectedQueue_->suspend();
    } else if (!isConnected(state_) && wasConnected) {
        notConnectedQueue_->resume();
    }
}

// Devices on USB.

void DeviceLink::startListeningForDevices() {
    NAVREL_ASSERT_MAIN_THREAD();
    hub_ = world_.hub();
    auto& centre = NotificationCentre::defaultCentre();
    deviceObservers_ = {
        centre.addObserver(PTUSBDeviceDidAttachNotification, hub_.get(),
                           [this](const Notification& it) { deviceDidAttach(it.userInfo); }),
        centre.addObserver(PTUSBDeviceDidDetachNotification, hub_.get(),
                           [this](const Notification& it) { deviceDidDetach(it.userInfo); })};
}

void DeviceLink::deviceDidAttach(const QVariantMap& userInfo) {
    const auto deviceID = deviceIDOf(userInfo);
    deviceLog_.log(
        QStringLiteral("PTUSBDeviceDidAttachNotification: %1").arg(descriptionOf(deviceID)));
    if (!deviceID) {
        return;
    }
    // One job waits, however often devices come and go while a channel is connected.
    if (!wantedDevice_->announce(deviceID, userInfo.value(QStringLiteral("Properties")).toMap())) {
        return;
    }
    ++waitingForDevice_;
    notConnectedQueue_->async([self = weak_from_this(), wanted = wantedDevice_] {
        const bool isNew = wanted->wantAnnounced(); // else it is being reached already, or has gone
        DispatchQueue::mainQueue()->async([self, isNew] {
            if (const auto link = self.lock()) {
                --link->waitingForDevice_;
                if (isNew) {
                    link->reachWantedDevice();
                }
            }
        });
    });
}

// A device may have been connected since the connection queue let this through.
void DeviceLink::reachWantedDevice() {
    if (connectedChannel_ && connectedChannel_->userInfo() == wantedDevice_->ID()) {
        return; // it is this one, which an attempt that waited has reached
    }
    disconnectFromCurrentChannel();
    enqueueConnectToUSBDevice();
}

void DeviceLink::deviceDidDetach(const QVariantMap& userInfo) {
    const auto deviceID = deviceIDOf(userInfo);
    deviceLog_.log(
        QStringLiteral("PTUSBDeviceDidDetachNotification: %1").arg(descriptionOf(deviceID)));
    // Deliberate: whatever channel is connected is closed, be it the device's or not.
    if (!deviceID || !wantedDevice_->forget(*deviceID)) {
        return;
    }
    happen(LinkEvent::wantedDeviceGone);
    if (connectedChannel_) {
        connectedChannel_->close();
    }
}

// Only one attempt waits at a time, be it in the queue or for its second to pass: were the retry
// that was parked while the simulator was connected to run beside the one that its end enqueues,
// each would go on being repeated, and every simulator would leave one more behind.
void DeviceLink::enqueueConnectToUSBDevice() {
    NAVREL_ASSERT_MAIN_THREAD();
    usbRetry_.reset();
    if (wantedDevice_->ID()) {
        happen(LinkEvent::deviceWanted);
    }
    ++waitingForDevice_;
    enqueueAttempt([number = ++lastUSBAttempt_](DeviceLink& link) {
        --link.waitingForDevice_;
        if (number == link.lastUSBAttempt_) {
            link.connectToUSBDevice();
        }
    });
}

// Deliberate: an attempt whose device has gone meanwhile runs all the same, for no device. It
// fails, and since none is what it was for and none is wanted, it repeats until a device is
// attached.
void DeviceLink::connectToUSBDevice() {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto deviceID = wantedDevice_->ID();
    const auto underWay = usbAttempt_.lock();
    if (underWay && underWay->userInfo() == deviceID) {
        return; // if both succeeded, one of the connections would be left over
    }
    const auto channel = PTChannel::channelWithDelegate(world_.channelDelegate());
    channel->setUserInfo(deviceID);
    usbAttempt_ = channel;
    channel->connectToPort(kCompanionPort, hub_,
                           deviceID ? QVariant(deviceID->value()) : QVariant(),
                           [self = weak_from_this(), channel](const std::optional<Error>& error) {
                               if (const auto link = self.lock()) {
                                   link->connectedToUSBDevice(channel, error);
                               }
                           });
}

void DeviceLink::connectedToUSBDevice(const std::shared_ptr<PTChannel>& channel,
                                      const std::optional<Error>& error) {
    const auto wanted = wantedDevice_->ID();
    if (usbAttempt_.lock() == channel) {
        usbAttempt_.reset();
    }
    if (!error) {
        connectedDeviceID_ = wanted;
        return setConnectedChannel(channel);
    }
    // The same object, not the same number: a device that was attached again has its own attempt.
    if (channel->userInfo() == wanted) {
        usbRetry_ = world_.clock.after(kReconnectDelay, [this] { enqueueConnectToUSBDevice(); });
    }
}

void DeviceLink::didDisconnectFromDevice(const DeviceID& deviceID) {
    NAVREL_ASSERT_MAIN_THREAD();
    log(QStringLiteral("Disconnected from device"));
    if (connectedDeviceID_ && connectedDeviceID_->value() == deviceID.value()) {
        connectedDeviceID_ = nullptr;
        happen(LinkEvent::deviceForgotten);
        world_.connectedDeviceIDDidChange();
    }
}

// The simulator.

// Behind whatever waits for a device: a simulator that listens on would be connected again at once,
// and the device's turn would not come however often that connection ends. With its attempt under
// way, the device takes the simulator's place.
void DeviceLink::enqueueConnectToLocalIPv4Port() {
    NAVREL_ASSERT_MAIN_THREAD();
    enqueueAttempt([](DeviceLink& link) {
        if (link.waitingForDevice_ > 0) {
            return link.enqueueConnectToLocalIPv4Port();
        }
        link.connectToLocalIPv4Port();
    });
}

void DeviceLink::connectToLocalIPv4Port() {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto channel = PTChannel::channelWithDelegate(world_.channelDelegate());
    channel->setUserInfo(
        std::make_shared<DescribedText>(QStringLiteral("127.0.0.1:%1").arg(kCompanionPort)));
    channel->connectToPort(kCompanionPort, kLoopbackAddress,
                           [this, channel](const std::optional<Error>& error,
                                           const std::shared_ptr<const PTAddress>& address) {
                               connectedToLocalIPv4Port(channel, error, address);
                           });
    localPoll_ = world_.clock.after(kReconnectDelay, [this] { enqueueConnectToLocalIPv4Port(); });
}

void DeviceLink::connectedToLocalIPv4Port(const std::shared_ptr<PTChannel>& channel,
                                          const std::optional<Error>& error,
                                          const std::shared_ptr<const PTAddress>& address) {
    if (error) {
        if (!isNobodyThere(*error)) {
            log(QStringLiteral("Failed to connect to 127.0.0.1:%1: %2")
                    .arg(kCompanionPort)
                    .arg(error->description()));
        }
        return;
    }
    const LoopbackGate::Trust trust = gate_.trustIn(*channel);
    if (trust == LoopbackGate::Trust::none) {
        return channel->close();
    }
    disconnectFromCurrentChannel();
    setConnectedChannel(channel);
    channel->setUserInfo(address);
    log(QStringLiteral("Connected to %1").arg(descriptionOf(address)));
    if (trust == LoopbackGate::Trust::gone) {
        channel->close(); // as it ends by itself, but with nothing read and nothing answered
    }
}

// The connected channel.

// Two hops: the first waits for the queue, the second brings the attempt to the main thread. A
// channel that was connected between the two parks the attempt again.
void DeviceLink::enqueueAttempt(const std::function<void(DeviceLink&)>& attempt) {
    notConnectedQueue_->async([self = weak_from_this(), attempt] {
        DispatchQueue::mainQueue()->async([self, attempt] {
            const auto link = self.lock();
            if (!link) {
                return;
            }
            if (link->connectedChannel_) {
                return link->enqueueAttempt(attempt);
            }
            attempt(*link);
        });
    });
}

void DeviceLink::setConnectedChannel(std::shared_ptr<PTChannel> channel) {
    NAVREL_ASSERT_MAIN_THREAD();
    connectedChannel_ = std::move(channel);
    if (connectedChannel_) {
        return happen(connectedDeviceID_ ? LinkEvent::deviceConnected
                                         : LinkEvent::simulatorConnected);
    }
    happen(LinkEvent::channelGone);
    if (wantedDevice_->ID()) {
        enqueueConnectToUSBDevice();
    }
}

void DeviceLink::disconnectFromCurrentChannel() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (connectedDeviceID_ && connectedChannel_) {
        connectedChannel_->close();
        setConnectedChannel(nullptr);
    }
}

void DeviceLink::channelDidEnd(const std::shared_ptr<PTChannel>& channel) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (connectedDeviceID_ && isSameDevice(*connectedDeviceID_, channel->userInfo())) {
        const auto deviceID = connectedDeviceID_;
        didDisconnectFromDevice(*deviceID);
    }
    if (channel == connectedChannel_) {
        log(QStringLiteral("Disconnected from %1").arg(descriptionOf(channel->userInfo())));
        setConnectedChannel(nullptr);
    }
}

} // namespace navrel
