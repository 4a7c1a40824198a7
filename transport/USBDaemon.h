#pragma once

#include "transport/OwnedDescriptor.h"

#include <QString>

#include <optional>

namespace navrel {

/// Where streams to the USB multiplexing daemon come from. Main thread.
class USBDaemon {
public:
    virtual ~USBDaemon() = default;

    /// A connected stream socket, closed in the programs that this one starts; invalid, with errno
    /// set, on failure. Never waits for the daemon. Whoever uses the stream keeps this object as
    /// long.
    virtual OwnedDescriptor openStream() = 0;

protected:
    USBDaemon() = default;
    USBDaemon(const USBDaemon&) = default;
    USBDaemon& operator=(const USBDaemon&) = default;
};

/// Where a daemon listens: a socket of the file system, or a port of a host.
struct USBDaemonAddress {
    QString path; ///< empty for a host and port
    QString host; ///< a number, or "localhost" for 127.0.0.1
    QString port;

    /// Reads "UNIX:" and a path, or "host:port" ("127.0.0.1:27015", "[::1]:27015",
    /// "localhost:27015"); nothing for any other text. Hosts are numbers: a name would have to be
    /// looked up, which may hold the caller for long; "localhost" alone needs no looking up.
    static std::optional<USBDaemonAddress> fromText(const QString& text);

    /// The one that USBMUXD_SOCKET_ADDRESS names; "/var/run/usbmuxd" where it is not set, or cannot
    /// be read, which is logged.
    static USBDaemonAddress fromEnvironment();
};

/// The daemon itself: each stream is a connection to its socket.
class USBDaemonSocket final : public USBDaemon {
public:
    explicit USBDaemonSocket(USBDaemonAddress address) : address_(std::move(address)) {}

    const USBDaemonAddress& address() const { return address_; }
    OwnedDescriptor openStream() override;

private:
    USBDaemonAddress address_;
};

} // namespace navrel
