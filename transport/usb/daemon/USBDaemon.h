#pragma once

#include "support/files/OwnedDescriptor.h"
#include "transport/usb/daemon/HostLookup.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace navrel {

/// Where streams to the USB multiplexing daemon come from. Main thread.
class USBDaemon {
public:
    virtual ~USBDaemon() = default;

    /// A connected stream socket, closed in the programs that this one starts; invalid, with errno
    /// set, on failure. Never waits for a daemon to accept. The caller must keep this object as
    /// long as it uses the stream.
    virtual OwnedDescriptor openStream() = 0;

    /// False while no stream that listens reaches it; true where that is not known.
    virtual bool isThere() const { return true; }

protected:
    USBDaemon() = default;
    USBDaemon(const USBDaemon&) = default;
    USBDaemon& operator=(const USBDaemon&) = default;
};

/// Where a daemon listens: a socket of the file system, or a port of a host.
struct USBDaemonAddress {
    QString path; ///< empty for a host and port
    QString host; ///< a number, or a name
    QString port;

    /// Reads "UNIX:" and a path, or "host:port" ("127.0.0.1:27015", "[::1]:27015",
    /// "localhost:27015", "mac.example:27015"); nothing for any other text. Looks no name up.
    static std::optional<USBDaemonAddress> fromText(const QString& text);

    /// The one that USBMUXD_SOCKET_ADDRESS names; "/var/run/usbmuxd" where it is not set, or cannot
    /// be read, which is logged.
    static USBDaemonAddress fromEnvironment();
};

/// The daemon itself: each stream is a connection to its socket. A host's name is looked up for
/// each stream (HostLookup.h); while it has no address, opening fails with EHOSTUNREACH. Of several
/// addresses the first counts that does not refuse; each but the last has 100 ms to do that.
class USBDaemonSocket final : public USBDaemon {
public:
    explicit USBDaemonSocket(USBDaemonAddress address);

    const USBDaemonAddress& address() const { return address_; }
    OwnedDescriptor openStream() override;

private:
    OwnedDescriptor connectToHost();
    std::vector<SocketAddress> hostAddresses();

    USBDaemonAddress address_;
    std::unique_ptr<HostLookup> lookup_; ///< null for paths, numbers and "localhost"
};

} // namespace navrel
