#pragma once

#include <QString>

#include <optional>

namespace navrel {

/// Where a daemon listens: on a Unix socket, or on a port of a host.
struct USBDaemonAddress {
    QString path; ///< empty for a host and port
    QString host; ///< a number, or a name
    QString port;

    /// Reads "UNIX:" and a path, or "host:port" ("127.0.0.1:27015", "[::1]:27015",
    /// "localhost:27015", "mac.example:27015"); nothing for any other text. Looks no name up.
    static std::optional<USBDaemonAddress> fromText(const QString& text);

    /// The address in USBMUXD_SOCKET_ADDRESS; "/var/run/usbmuxd" if that is not set or not valid,
    /// which is logged.
    static USBDaemonAddress fromEnvironment();
};

} // namespace navrel
