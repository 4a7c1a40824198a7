#pragma once

#include "transport/usb/daemon/HostLookup.h"
#include "transport/usb/daemon/USBDaemon.h"
#include "transport/usb/daemon/USBDaemonAddress.h"

#include <memory>
#include <vector>

namespace navrel {

/// The real daemon: each stream is a connection to its socket. A host name is looked up for each
/// stream (HostLookup.h); while it has no address, opening fails with EHOSTUNREACH. Several
/// addresses are tried in order, until one does not refuse; each except the last has 100 ms to
/// refuse.
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
