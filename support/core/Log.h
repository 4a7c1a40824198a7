#pragma once

#include <QString>

#include <functional>

namespace navrel {

/// Writes one message to the log: one line on standard error, the message last on its line, and
/// syslog(3) under the identifier "Navrel". Line breaks and other control characters in the message
/// (names from project files hold them) are written as escapes, so that a message is always one
/// line. Nothing is waited for: what standard error or the system's log does not take at once is
/// lost there, and its number is logged when lines are taken again. Any thread; never fails.
void log(const QString& message);

/// Has writes to a pipe without a reader, and beyond the largest allowed file, fail instead of
/// ending the program. To be called once, before the first message.
void surviveSignalsOfWriting();

/// Receives every message in place of the log, as passed to `log`.
using LogReceiver = std::function<void(const QString& message)>;

/// Puts a receiver in place of the log, for tests; an empty one restores the log. Returns the
/// previous one. Any thread.
LogReceiver setLogReceiver(LogReceiver receiver);

} // namespace navrel
