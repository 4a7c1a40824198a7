#include "support/Log.h"

#include <QByteArray>

#include <mutex>
#include <syslog.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

constexpr char kSyslogIdentifier[] = "Navrel";

struct Receiver {
    std::mutex mutex;
    LogReceiver function; // any thread, under the mutex
};

Receiver& receiver() {
    static Receiver instance;
    return instance;
}

QByteArray asOneLine(const QString& message) {
    QString line;
    line.reserve(message.size());
    for (const QChar character : message) {
        const char16_t unit = character.unicode();
        if (unit == u'\n') {
            line += QStringLiteral("\\n");
        } else if (unit == u'\r') {
            line += QStringLiteral("\\r");
        } else if (unit == u'\t') {
            line += character;
        } else if (unit < 0x20 || (unit >= 0x7F && unit <= 0x9F) || unit == 0x2028 ||
                   unit == 0x2029) {
            line += QStringLiteral("\\u%1").arg(static_cast<uint>(unit), 4, 16, QLatin1Char('0'));
        } else {
            line += character;
        }
    }
    return line.toUtf8();
}

void writeToStandardError(const QByteArray& line) {
    // One write, so that lines of several threads and processes do not mix.
    const QByteArray text = QByteArrayLiteral("Navrel: ") + line + '\n';
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, text.constData(), static_cast<size_t>(text.size()));
}

void writeToSyslog(const QByteArray& line) {
    static const bool isOpen = [] {
        ::openlog(kSyslogIdentifier, LOG_PID, LOG_USER);
        return true;
    }();
    if (isOpen) {
        ::syslog(LOG_NOTICE, "%s", line.constData());
    }
}

} // namespace

void log(const QString& message) {
    LogReceiver function;
    {
        const std::lock_guard lock(receiver().mutex);
        function = receiver().function;
    }
    if (function) {
        function(message);
        return;
    }
    const QByteArray line = asOneLine(message);
    writeToStandardError(line);
    writeToSyslog(line);
}

LogReceiver setLogReceiver(LogReceiver newReceiver) {
    const std::lock_guard lock(receiver().mutex);
    return std::exchange(receiver().function, std::move(newReceiver));
}

} // namespace navrel
