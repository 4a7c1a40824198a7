#pragma once

#include <QString>

#include <functional>

namespace navrel {

/// Writes one message to the log: one line on standard error, the message last on its line, and
/// syslog(3) under the identifier "Navrel". Line breaks and other control characters in the message
/// (names from project files hold them) are written as escapes, so that a message is always one
/// line. Any thread; never fails.
void log(const QString& message);

/// Receives every message in place of the log, as passed to `log`.
using LogReceiver = std::function<void(const QString& message)>;

/// Puts a receiver in place of the log, for tests; an empty one restores the log. Returns the
/// previous one. Any thread.
LogReceiver setLogReceiver(LogReceiver receiver);

} // namespace navrel
