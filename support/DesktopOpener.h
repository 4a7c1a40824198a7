#pragma once

#include <QString>
#include <QUrl>

namespace navrel {

/// Hands a file to the desktop's default opener (`xdg-open` found in `PATH`; `open` on macOS),
/// without a shell and without waiting for it. It gets the absolute path, so that neither an option
/// ("-x") nor a URL ("https://…") can be made of what a device calls a path. False when there is no
/// opener, it could not be started, or the path is empty or holds a NUL. Any thread.
bool openWithDesktop(const QString& path);

/// Hands a web address (http or https, with a host) to the same opener. False when it is none,
/// there is no opener, or it could not be started. Any thread.
bool openURLWithDesktop(const QUrl& url);

} // namespace navrel
