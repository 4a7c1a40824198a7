// Finding the companion app and keeping one connection to it: over USB to a device that the hub has
// announced, or on 127.0.0.1 to the simulator.
//
// Every attempt goes through the connection queue, which is suspended while a channel is connected:
// an attempt that comes up meanwhile is parked there, and runs when the connection is gone. So the
// poll of 127.0.0.1 schedules its next attempt after a success as well as after a failure: that one
// is the reconnection. A device that is attached meanwhile is parked there, too. What runs on the
// queue itself is the hop back to the main thread, and the choice of the wanted device.

#include "app/AppDelegate.h"
#include "app/WantedDevice.h"
#include "support/Log.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/CompanionProtocol.h"
#include "transport/PTAddress.h"
#include "transport/PTUSBPacket.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace navrel {

const QString kConnectedDeviceIDDidChange = QStringLiteral("connectedDeviceID");

namespace {

constexpr quint32 kLoopbackAddress = 0x7F000001; // 127.0.0.1
constexpr std::chrono::milliseconds kReconnectDelay{1000};
constexpr qint64 kUnknownUser = -1;
/// More users than share a machine; names of users can be made up by root alone.
constexpr size_t kMostRefusalsLogged = 64;

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

// Devices on USB.

void AppDelegate::startListeningForDevices() {
    hub_ = collaborators_.hub();
    auto& centre = NotificationCentre::defaultCentre();
    deviceObservers_ = {
        centre.addObserver(PTUSBDeviceDidAttachNotification, hub_.get(),
                           [this](const Notification& it) { deviceDidAttach(it.userInfo); }),
        centre.addObserver(PTUSBDeviceDidDetachNotification, hub_.get(),
                           [this](const Notification& it) { deviceDidDetach(it.userInfo); })};
}

void AppDelegate::deviceDidAttach(const QVariantMap& userInfo) {
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
            if (const auto delegate = self.lock()) {
                --delegate->waitingForDevice_;
                if (isNew) {
                    delegate->reachWantedDevice();
                }
            }
        });
    });
}

// A device may have been connected since the connection queue let this through.
void AppDelegate::reachWantedDevice() {
    if (connectedChannel_ && connectedChannel_->userInfo() == wantedDevice_->ID()) {
        return; // it is this one, which an attempt that waited has reached
    }
    disconnectFromCurrentChannel();
    enqueueConnectToUSBDevice();
}

void AppDelegate::deviceDidDetach(const QVariantMap& userInfo) {
    const auto deviceID = deviceIDOf(userInfo);
    deviceLog_.log(
        QStringLiteral("PTUSBDeviceDidDetachNotification: %1").arg(descriptionOf(deviceID)));
    // Deliberate: whatever channel is connected is closed, be it the device's or not.
    if (deviceID && wantedDevice_->forget(*deviceID) && connectedChannel_) {
        connectedChannel_->close();
    }
}

// Only one attempt waits at a time, be it in the queue or for its second to pass: were the retry
// that was parked while the simulator was connected to run beside the one that its end enqueues,
// each would go on being repeated, and every simulator would leave one more behind.
void AppDelegate::enqueueConnectToUSBDevice() {
    usbRetryTimer_.stop();
    ++waitingForDevice_;
    enqueueAttempt([number = ++lastUSBAttempt_](AppDelegate& delegate) {
        --delegate.waitingForDevice_;
        if (number == delegate.lastUSBAttempt_) {
            delegate.connectToUSBDevice();
        }
    });
}

// Deliberate: an attempt whose device has gone meanwhile runs all the same, for no device. It
// fails, and since none is what it was for and none is wanted, it repeats until a device is
// attached.
void AppDelegate::connectToUSBDevice() {
    const auto deviceID = wantedDevice_->ID();
    const auto underWay = usbAttempt_.lock();
    if (underWay && underWay->userInfo() == deviceID) {
        return; // if both succeeded, one of the connections would be left over
    }
    const auto channel = PTChannel::channelWithDelegate(shared_from_this());
    channel->setUserInfo(deviceID);
    usbAttempt_ = channel;
    channel->connectToPort(kCompanionPort, hub_,
                           deviceID ? QVariant(deviceID->value()) : QVariant(),
                           [self = weak_from_this(), channel](const std::optional<Error>& error) {
                               if (const auto delegate = self.lock()) {
                                   delegate->connectedToUSBDevice(channel, error);
                               }
                           });
}

void AppDelegate::connectedToUSBDevice(const std::shared_ptr<PTChannel>& channel,
                                       const std::optional<Error>& error) {
    const auto wanted = wantedDevice_->ID();
    if (usbAttempt_.lock() == channel) {
        usbAttempt_.reset();
    }
    if (!error) {
        connectedDeviceID_ = wanted;
        return setConnectedChannel(channel);
    }
    // The same object, not the same number: a device that was attached anew has its own attempt.
    if (channel->userInfo() == wanted) {
        usbRetryTimer_.start(kReconnectDelay);
    }
}

void AppDelegate::didDisconnectFromDevice(const DeviceID& deviceID) {
    log(QStringLiteral("Disconnected from device"));
    if (connectedDeviceID_ && connectedDeviceID_->value() == deviceID.value()) {
        connectedDeviceID_ = nullptr;
        NotificationCentre::defaultCentre().post(kConnectedDeviceIDDidChange, this, {});
    }
}

// The simulator.

// Behind whatever waits for a device: a simulator that listens on would be connected again at once,
// and the device's turn would not come however often that connection ends. With its attempt under
// way, the device takes the simulator's place.
void AppDelegate::enqueueConnectToLocalIPv4Port() {
    enqueueAttempt([](AppDelegate& delegate) {
        if (delegate.waitingForDevice_ > 0) {
            return delegate.enqueueConnectToLocalIPv4Port();
        }
        delegate.connectToLocalIPv4Port();
    });
}

void AppDelegate::connectToLocalIPv4Port() {
    const auto channel = PTChannel::channelWithDelegate(shared_from_this());
    channel->setUserInfo(
        std::make_shared<DescribedText>(QStringLiteral("127.0.0.1:%1").arg(kCompanionPort)));
    channel->connectToPort(kCompanionPort, kLoopbackAddress,
                           [this, channel](const std::optional<Error>& error,
                                           const std::shared_ptr<const PTAddress>& address) {
                               connectedToLocalIPv4Port(channel, error, address);
                           });
    QTimer::singleShot(kReconnectDelay, Qt::PreciseTimer, this,
                       [this] { enqueueConnectToLocalIPv4Port(); });
}

void AppDelegate::connectedToLocalIPv4Port(const std::shared_ptr<PTChannel>& channel,
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
    const PeerTrust trust = trustIn(*channel);
    if (trust == PeerTrust::none) {
        return channel->close();
    }
    disconnectFromCurrentChannel();
    setConnectedChannel(channel);
    channel->setUserInfo(address);
    log(QStringLiteral("Connected to %1").arg(descriptionOf(address)));
    if (trust == PeerTrust::gone) {
        channel->close(); // as it ends by itself, but with nothing read and nothing answered
    }
}

// Any local user may listen on the companion app's port; the project is shown to its owner alone.
// One whose owner is not known is not served. Where it has ended the connection, nobody need be
// refused: the connection ends as any other does, and says nothing about the next one.
AppDelegate::PeerTrust AppDelegate::trustIn(const PTChannel& channel) {
    const auto stream = channel.dispatchChannel();
    const LoopbackPeer peer =
        stream ? collaborators_.loopbackPeer(stream->descriptor()) : LoopbackPeer{{}, true};
    if (isOfThisUser(peer)) {
        loggedRefusedUsers_.clear();
        return PeerTrust::full;
    }
    if (!peer.owner && peer.hasEnded) {
        return PeerTrust::gone;
    }
    const qint64 user = peer.owner ? qint64{*peer.owner} : kUnknownUser;
    if (loggedRefusedUsers_.size() < kMostRefusalsLogged &&
        loggedRefusedUsers_.insert(user).second) {
        log(QStringLiteral("Refused to serve 127.0.0.1:%1: it belongs to another user (%2)")
                .arg(kCompanionPort)
                .arg(peer.owner ? QString::number(*peer.owner) : QStringLiteral("unknown")));
    }
    return PeerTrust::none;
}

// The connected channel.

// Two hops: the first waits for the queue, the second brings the attempt to the main thread. A
// channel that was connected between the two parks the attempt again.
void AppDelegate::enqueueAttempt(const std::function<void(AppDelegate&)>& attempt) {
    notConnectedQueue_->async([self = weak_from_this(), attempt] {
        DispatchQueue::mainQueue()->async([self, attempt] {
            const auto delegate = self.lock();
            if (!delegate) {
                return;
            }
            if (delegate->connectedChannel_) {
                return delegate->enqueueAttempt(attempt);
            }
            attempt(*delegate);
        });
    });
}

void AppDelegate::setConnectedChannel(std::shared_ptr<PTChannel> channel) {
    connectedChannel_ = std::move(channel);
    const bool isConnected = connectedChannel_ != nullptr;
    if (isConnected && !notConnectedQueueSuspended_) {
        notConnectedQueue_->suspend();
        notConnectedQueueSuspended_ = true;
    } else if (!isConnected && notConnectedQueueSuspended_) {
        notConnectedQueue_->resume();
        notConnectedQueueSuspended_ = false;
    }
    if (!isConnected && wantedDevice_->ID()) {
        enqueueConnectToUSBDevice();
    }
}

void AppDelegate::disconnectFromCurrentChannel() {
    if (connectedDeviceID_ && connectedChannel_) {
        connectedChannel_->close();
        setConnectedChannel(nullptr);
    }
}

void AppDelegate::ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                                const std::optional<Error>&) {
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
