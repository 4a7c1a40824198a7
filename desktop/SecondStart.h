#pragma once

#include <QLocalServer>
#include <QString>

#include <functional>

namespace navrel {

/// Receives a call from a second instance of the program, which then ends: the user is looking for
/// the first one. Main thread.
class SecondStart {
public:
    /// Listens on a Unix socket at a path that only this program may use: what is there is
    /// replaced. Only this user may connect. If it cannot listen, that is logged, and second
    /// instances are not noticed. `didStart` is called from the event loop.
    SecondStart(const QString& socketPath, std::function<void()> didStart);
    SecondStart(const SecondStart&) = delete;
    SecondStart& operator=(const SecondStart&) = delete;

    /// Called by the second instance. False if no first one listens.
    static bool tellFirst(const QString& socketPath);

private:
    QLocalServer server_;
};

} // namespace navrel
