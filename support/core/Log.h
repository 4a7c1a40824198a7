#pragma once

#include <QString>

#include <functional>

namespace navrel {

/// Writes one message to the log: a line on standard error that ends with the message, and an entry
/// in the system's log under the identifier "Navrel". Line breaks and other control characters in
/// the message (names from project files may have them) are escaped, so a message is always one
/// line. Never blocks: lines that standard error or the system's log does not take at once are lost
/// there, and their number is logged when it takes lines again. Any thread; never fails.
void log(const QString& message);

/// Ignores SIGPIPE and SIGXFSZ: writes to a pipe without a reader, or beyond the limit of a file's
/// size, then fail instead of ending the program. Must be called once, before the first message.
void surviveSignalsOfWriting();

/// Receives every message in place of the log, as passed to `log`.
using LogReceiver = std::function<void(const QString& message)>;

/// Replaces the log by a receiver, for tests; an empty one restores the log. Returns the previous
/// receiver. Any thread.
LogReceiver setLogReceiver(LogReceiver receiver);

} // namespace navrel
