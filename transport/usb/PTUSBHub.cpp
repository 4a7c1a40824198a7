#include "transport/usb/PTUSBHub.h"

#include "support/core/Log.h"
#include "support/core/NotificationCentre.h"
#include "support/dispatch/DispatchQueue.h"
#ifdef __linux__
#include "transport/usb/daemon/USBDaemonKeeper.h"
#else
#include "transport/usb/daemon/USBDaemonSocket.h"
#endif

#include <utility>

namespace navrel {

const QString PTUSBDeviceDidAttachNotification = QStringLiteral("PTUSBDeviceDidAttachNotification");
const QString PTUSBDeviceDidDetachNotification = QStringLiteral("PTUSBDeviceDidDetachNotification");

namespace {

/// The daemon of the system: on Linux it comes and goes with the devices.
std::shared_ptr<USBDaemon> systemDaemon() {
#ifdef __linux__
    return std::make_shared<USBDaemonKeeper>(USBDaemonAddress::fromEnvironment());
#else
    return std::make_shared<USBDaemonSocket>(USBDaemonAddress::fromEnvironment());
#endif
}

/// The daemon wants the port in network byte order, read as a number of the host.
int portNumber(quint16 port) {
    return (port * 256) % 65536 + port / 256;
}

} // namespace

const std::shared_ptr<PTUSBHub>& PTUSBHub::sharedHub() {
    static const auto& instance = *new std::shared_ptr<PTUSBHub>([] {
        auto hub = create(systemDaemon());
        hub->listenOnQueue(
            DispatchQueue::mainQueue(),
            [](const std::optional<Error>& error) {
                if (error) {
                    log(QStringLiteral("PTUSBHub failed to initialize: %1")
                            .arg(error->description()));
                }
            },
            nullptr);
        return hub;
    }());
    return instance;
}

std::shared_ptr<PTUSBHub> PTUSBHub::create(std::shared_ptr<USBDaemon> daemon) {
    return std::shared_ptr<PTUSBHub>(new PTUSBHub(std::move(daemon)));
}

PTUSBHub::~PTUSBHub() {
    if (channel_) {
        channel_->stop(); // its pending read would keep the channel
    }
}

void PTUSBHub::listenOnQueue(const std::shared_ptr<DispatchQueue>& queue, const Callback& onStart,
                             const Callback& onEnd) {
    if (channel_) {
        if (onStart) {
            onStart(std::nullopt);
        }
        return;
    }
    // Deliberate: kept even if it cannot be opened, so that nobody tries a second time.
    channel_ = PTUSBChannel::create(daemon_);
    if (const auto error = channel_->openOnQueue(queue, onEnd)) {
        if (onStart) {
            onStart(error);
        }
        return;
    }
    channel_->listenWithBroadcastHandler(
        [hub = weak_from_this()](const std::optional<QVariantMap>& packet) {
            if (const auto self = hub.lock()) {
                self->handleBroadcastPacket(packet);
            }
        },
        onStart);
}

void PTUSBHub::handleBroadcastPacket(const std::optional<QVariantMap>& packet) {
    const QString type =
        packet ? packet->value(QStringLiteral("MessageType")).toString() : QString();
    auto& centre = NotificationCentre::defaultCentre();
    if (type == QStringLiteral("Attached")) {
        centre.post(PTUSBDeviceDidAttachNotification, this, *packet);
    } else if (type == QStringLiteral("Detached")) {
        centre.post(PTUSBDeviceDidDetachNotification, this, *packet);
    } else {
        log(QStringLiteral("Warning: Unhandled broadcast message: %1")
                .arg(descriptionOfMessage(packet)));
    }
}

void PTUSBHub::connectToDevice(const QVariant& deviceID, quint16 port, const StartCallback& onStart,
                               const Callback& onEnd) {
    if (!deviceID.isValid()) {
        return DispatchQueue::mainQueue()->async(
            [onStart] { onStart(errorOfPTUSBReplyCode(kPTUSBReplyBadDevice), nullptr); });
    }
    const auto channel = PTUSBChannel::create(daemon_);
    if (const auto error = channel->openOnQueue(DispatchQueue::mainQueue(), onEnd)) {
        return onStart(error, nullptr);
    }
    const QVariantMap payload = {{QStringLiteral("DeviceID"), deviceID},
                                 {QStringLiteral("PortNumber"), portNumber(port)}};
    // The channel is kept by its reading, and gone when the reply has been handled.
    channel->sendRequest(
        PTUSBChannel::packetDictionaryWithPacketType(QStringLiteral("Connect"), payload),
        [weakChannel = std::weak_ptr(channel), onStart](std::optional<Error> error,
                                                        const PTUSBChannel::Message& reply) {
            PTUSBChannel::errorFromPlistResponse(reply, error);
            const auto replied = weakChannel.lock();
            onStart(error, error || !replied ? nullptr : replied->dispatchChannel());
        });
}

} // namespace navrel
