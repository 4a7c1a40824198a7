#pragma once

#include "support/files/OwnedDescriptor.h"

namespace navrel {

/// Opens streams to the USB multiplexing daemon. Main thread.
class USBDaemon {
public:
    virtual ~USBDaemon() = default;

    /// Returns a connected stream socket, which programs that this one starts do not inherit;
    /// invalid, with errno set, on failure. Does not wait until a daemon accepts. This object must
    /// outlive the stream.
    virtual OwnedDescriptor openStream() = 0;

    /// False while a listening stream cannot reach the daemon; true if that is not known.
    virtual bool isThere() const { return true; }

protected:
    USBDaemon() = default;
    USBDaemon(const USBDaemon&) = default;
    USBDaemon& operator=(const USBDaemon&) = default;
};

} // namespace navrel
