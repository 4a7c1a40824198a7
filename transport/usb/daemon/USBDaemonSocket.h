#pragma once

#include "transport/usb/daemon/HostLookup.h"
#include "transport/usb/daemon/USBDaemon.h"
#include "transport/usb/daemon/USBDaemonAddress.h"

#include <memory>
#include <vector>

namespace navrel {

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
