#pragma once

#include <QString>
#include <QUrl>

#include <functional>

namespace navrel {

/// Hands a file to the desktop's default opener (`xdg-open` found in `PATH`; `open` on macOS),
/// without a shell, and does not wait for it. The opener gets an absolute path, so what a device
/// sent as a path cannot become an option ("-x") or a URL ("https://…"). False if there is no
/// opener, too many run already, or the path can name no file. Any thread.
bool openWithDesktop(const QString& path);

/// Hands a web address (http or https, with a host) to the same opener. False if it is not one,
/// there is no opener, or too many run already. Otherwise `didFail` (may be null) is called later
/// on another thread if the opener could not be started or ends with an exit status other than 0.
/// Any thread.
bool openURLWithDesktop(const QUrl& url, std::function<void()> didFail = nullptr);

/// How many openers may run at a time. Mostly an opener ends at once; without a desktop environment
/// it lives as long as the program that it starts. No user has this many open, and a device that
/// sends requests without end must not fill the machine with them.
inline constexpr int kMaximumRunningOpeners = 32;

} // namespace navrel
