#pragma once

#include <QString>

namespace navrel {

/// Tells the user something by the desktop's notifications, where the session bus has them; nothing
/// happens elsewhere. Does not wait. The summary may hold foreign text: desktops show it as it is,
/// on one line of at most kMaximumTitleLength characters. The sentence must be this program's own,
/// since some take it for markup. Main thread.
void notifyUser(const QString& summary, const QString& sentence);

} // namespace navrel
