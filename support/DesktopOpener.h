#pragma once

#include <QString>

namespace navrel {

/// Hands a file's path or a URL to the desktop's default opener (`xdg-open` found in `PATH`; `open`
/// on macOS), without a shell and without waiting for it. A path that begins with "-" is never
/// taken for an option. False when there is no opener or it could not be started. Any thread.
bool openWithDesktop(const QString& pathOrURL);

} // namespace navrel
