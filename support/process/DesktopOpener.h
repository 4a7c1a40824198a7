#pragma once

#include <QString>
#include <QUrl>

#include <functional>

namespace navrel {

/// Hands a file to the desktop's default opener (`xdg-open` found in `PATH`; `open` on macOS),
/// without a shell and without waiting for it. It gets the absolute path, so that neither an option
/// ("-x") nor a URL ("https://…") can be made of what a device calls a path. False when there is no
/// opener, too many run already, or the path can name no file. Any thread.
bool openWithDesktop(const QString& path);

/// Hands a web address (http or https, with a host) to the same opener. False when it is none,
/// there is no opener, or too many run already. `didFail` (may be null) is called later, on another
/// thread, when the opener ends with an exit status other than 0, or could not be started. Any
/// thread.
bool openURLWithDesktop(const QUrl& url, std::function<void()> didFail = nullptr);

/// An opener hands on and ends, except where no desktop environment runs: there it lives as long as
/// the program that it starts. No one has more open at a time; a device that asks without end must
/// not fill the machine with them.
inline constexpr int kMaximumRunningOpeners = 32;

} // namespace navrel
