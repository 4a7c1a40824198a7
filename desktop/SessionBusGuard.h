#pragma once

#include <QByteArray>

namespace navrel {

/// While one lives, a session bus that does not answer within two seconds is hidden from this
/// process: it starts as if there were no bus, which is logged. The destructor restores the
/// environment for programs that it starts. Must be made on the main thread, before the application
/// object.
class SessionBusGuard {
public:
    SessionBusGuard();
    ~SessionBusGuard();
    SessionBusGuard(const SessionBusGuard&) = delete;
    SessionBusGuard& operator=(const SessionBusGuard&) = delete;

    bool hidesBus() const { return hidesBus_; }

private:
    bool hidesBus_ = false;
    bool wasSet_ = false;
    QByteArray address_;
};

} // namespace navrel
