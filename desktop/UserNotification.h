#pragma once

#include <QString>

namespace navrel {

/// Shows a notification of the desktop, if the session bus has that service; otherwise does
/// nothing. Never blocks. The summary may be foreign text: it is shown literally, on one line of at
/// most kMaximumTitleLength characters. The sentence must be Navrel's own, since some desktops take
/// it for markup. Main thread.
void notifyUser(const QString& summary, const QString& sentence);

} // namespace navrel
