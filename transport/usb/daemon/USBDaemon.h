#pragma once

#include "support/files/OwnedDescriptor.h"

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

} // namespace navrel
