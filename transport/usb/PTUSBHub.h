#pragma once

#include "transport/usb/PTUSBChannel.h"

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace navrel {

// Notifications of the default centre, with the hub as sender and the daemon's broadcast as user
// information: "DeviceID", a number, and for an attached device its "Properties", a dictionary.
extern const QString PTUSBDeviceDidAttachNotification;
extern const QString PTUSBDeviceDidDetachNotification;

/// The devices on USB: posts a notification when one is attached or detached, and opens connections
/// to their ports. Must be used on the queue that it listens on, where its notifications are
/// posted; connections to devices are made on the main queue.
class PTUSBHub final : public std::enable_shared_from_this<PTUSBHub> {
public:
    using Callback = PTUSBChannel::Callback;
    using StartCallback = std::function<void(const std::optional<Error>& error,
                                             const std::shared_ptr<DispatchIO>& channel)>;

    /// The hub of the process, for the daemon at USBDaemonAddress::fromEnvironment. The first call
    /// makes it, and has it listen on the main queue; a failure of that is logged. Never destroyed.
    static const std::shared_ptr<PTUSBHub>& sharedHub();

    /// Makes a hub that does not listen yet.
    static std::shared_ptr<PTUSBHub> create(std::shared_ptr<USBDaemon> daemon);
    ~PTUSBHub();
    PTUSBHub(const PTUSBHub&) = delete;
    PTUSBHub& operator=(const PTUSBHub&) = delete;

    /// Listens for devices. `onStart` receives the outcome, `onEnd` the end of listening; both may
    /// be null. Deliberately, only the first call does anything: any later one reports success,
    /// even after a failure. A later call, and a first one that cannot reach the daemon, call
    /// `onStart` before they return.
    void listenOnQueue(const std::shared_ptr<DispatchQueue>& queue, const Callback& onStart,
                       const Callback& onEnd);

    /// Connects to a TCP port (in host byte order) of a device. Its identifier is sent to the
    /// daemon unchanged; none means an unknown device. `onStart` must not be null: it receives a
    /// stream of the port's bytes, or the error, before this returns if the daemon cannot be
    /// reached, otherwise later. `onEnd` (may be null) is called once the stream is closed, even if
    /// the daemon refused the attempt.
    void connectToDevice(const QVariant& deviceID, quint16 port, const StartCallback& onStart,
                         const Callback& onEnd);

    /// Whether the daemon is there, as far as is known.
    bool isDaemonThere() const { return daemon_ && daemon_->isThere(); }

    /// Posts the notification for a broadcast.
    void handleBroadcastPacket(const std::optional<QVariantMap>& packet);

private:
    explicit PTUSBHub(std::shared_ptr<USBDaemon> daemon) : daemon_(std::move(daemon)) {}

    const std::shared_ptr<USBDaemon> daemon_;
    std::shared_ptr<PTUSBChannel> channel_; ///< null until listening is started
};

} // namespace navrel
