#pragma once

#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

namespace navrel {

/// How long a fetch may hold its caller. Start-up waits for one: long enough for a server at the
/// other end of the world on a bad line, short enough that nobody starts the program twice.
inline constexpr std::chrono::milliseconds kTextFetchLimit{3000};

/// The longest text that is taken: room for any version, and for what a line break adds. A login
/// page that a network answers with in the server's place is longer.
inline constexpr qint64 kMaximumFetchedBytes = 1024;

/// The most line breaks in a text that is taken: an alert of more lines would not fit a screen, and
/// its buttons least of all.
inline constexpr int kMaximumFetchedLineBreaks = 8;

/// Fetches a short text over HTTP, and waits for it: the caller's event loop does not run
/// meanwhile. Nil when there is none within kTextFetchLimit: no answer, another status than 200, a
/// redirection to another host, more than kMaximumFetchedBytes or kMaximumFetchedLineBreaks, bytes
/// that are not UTF-8, control characters other than white space, or characters that turn the
/// writing direction of what follows. The text is exact, line breaks included. A host below
/// ".invalid" has no address by definition, and is not looked up. Any thread.
std::optional<QString> fetchText(const QUrl& url);

} // namespace navrel
