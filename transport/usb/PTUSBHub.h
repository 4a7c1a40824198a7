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

/// The program's view of the devices on USB: tells when one is attached or detached, and opens
/// connections to their ports. Used on the queue that it listens on, where its notifications are
/// posted; connections to devices are made on the main queue.
class PTUSBHub final : public std::enable_shared_from_this<PTUSBHub> {
public:
    using Callback = PTUSBChannel::Callback;
    using StartCallback = std::function<void(const std::optional<Error>& error,
                                             const std::shared_ptr<DispatchIO>& channel)>;

    /// The hub of the process, on the daemon that USBDaemonAddress::fromEnvironment names. The
    /// first call makes it and lets it listen on the main queue; it is never destroyed. Should
    /// listening fail, that is logged.
    static const std::shared_ptr<PTUSBHub>& sharedHub();

    /// A hub that does not listen yet.
    static std::shared_ptr<PTUSBHub> create(std::shared_ptr<USBDaemon> daemon);
    ~PTUSBHub();
    PTUSBHub(const PTUSBHub&) = delete;
    PTUSBHub& operator=(const PTUSBHub&) = delete;

    /// Listens for devices; `onStart` receives the outcome, `onEnd` the end of listening; both may
    /// be null. Only the first call does anything: deliberately, any later one reports success,
    /// even after a failure. It does so before it returns, as the first one does when the daemon
    /// cannot be reached.
    void listenOnQueue(const std::shared_ptr<DispatchQueue>& queue, const Callback& onStart,
                       const Callback& onEnd);

    /// Connects to a TCP port (in host byte order) of a device, whose identifier is passed on as it
    /// came; none at all is an unknown device. `onStart` (not null) receives a stream of the port's
    /// bytes, or why there is none: before this returns when the daemon cannot be reached, else
    /// later. `onEnd` (may be null) is called once that stream is closed, also that of an attempt
    /// that the daemon refused.
    void connectToDevice(const QVariant& deviceID, quint16 port, const StartCallback& onStart,
                         const Callback& onEnd);

    /// Whether the daemon has been reached, as far as it was looked for.
    bool isDaemonThere() const { return daemon_ && daemon_->isThere(); }

    /// Tells the observers what a broadcast says.
    void handleBroadcastPacket(const std::optional<QVariantMap>& packet);

private:
    explicit PTUSBHub(std::shared_ptr<USBDaemon> daemon) : daemon_(std::move(daemon)) {}

    const std::shared_ptr<USBDaemon> daemon_;
    std::shared_ptr<PTUSBChannel> channel_; ///< null until listening is started
};

} // namespace navrel
