#pragma once

#include <QByteArray>

namespace navrel {

/// While one lives, a session bus that does not greet within two seconds is hidden from this
/// process, which starts as without one, and says so in the log. Programs that it starts
/// afterwards find the environment as it was. Main thread, before the application object is made.
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
