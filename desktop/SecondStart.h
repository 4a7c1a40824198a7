#pragma once

#include <QLocalServer>
#include <QString>

#include <functional>

namespace navrel {

/// Hears of a second start of the program, which ends at once: the user looks for the first one.
/// Main thread.
class SecondStart {
public:
    /// Listens at a socket's path, which must be this program's alone: what is there is replaced.
    /// Only this user may connect. Where it cannot listen, which is logged, a second start changes
    /// nothing. `didStart` is called by the event loop.
    SecondStart(const QString& socketPath, std::function<void()> didStart);
    SecondStart(const SecondStart&) = delete;
    SecondStart& operator=(const SecondStart&) = delete;

    /// What the second start calls. False when nobody listens.
    static bool tellFirst(const QString& socketPath);

private:
    QLocalServer server_;
};

} // namespace navrel
