#pragma once

#include "tests/transport/RawPeer.h"
#include "transport/usb/daemon/USBDaemon.h"

#include <QString>
#include <QtEndian>

#include <cerrno>
#include <sys/socket.h>
#include <vector>

namespace navrel {

/// Words of the daemon's messages.
inline const QString kDeviceID = QStringLiteral("DeviceID");
inline const QString kListen = QStringLiteral("Listen");
inline const QString kConnect = QStringLiteral("Connect");

/// A daemon whose end of each stream is the test's, as plain bytes.
class PairedUSBDaemon final : public USBDaemon {
public:
    /// The other ends, in the order of opening.
    std::vector<RawPeer> peers;
    int errnoValue = 0; ///< what opening fails with, when not 0

    OwnedDescriptor openStream() override {
        int ends[2];
        if (errnoValue != 0 || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            errno = errnoValue;
            return {};
        }
        peers.emplace_back(ends[1]);
        return OwnedDescriptor(ends[0]);
    }
};

/// The bytes of a packet.
inline QByteArray packetBytes(quint32 tag, const QByteArray& payload, quint32 protocol = 1,
                              quint32 type = 8) {
    QByteArray bytes(16, '\0');
    qToLittleEndian(static_cast<quint32>(16 + payload.size()), bytes.data());
    qToLittleEndian(protocol, bytes.data() + 4);
    qToLittleEndian(type, bytes.data() + 8);
    qToLittleEndian(tag, bytes.data() + 12);
    return bytes + payload;
}

} // namespace navrel
