#include "support/core/Log.h"

#include "support/core/StandardError.h"
#include "support/core/SystemLog.h"

#include <QByteArray>

#include <csignal>
#include <mutex>
#include <utility>

namespace navrel {

namespace {

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

struct Outputs {
    std::mutex mutex;
    StandardError standardError; // any thread, under the mutex
    SystemLog systemLog;         // any thread, under the mutex
};

/// Never destroyed: other threads may log until the end of the process.
Outputs& outputs() {
    static Outputs& instance = *new Outputs;
    return instance;
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
    const std::lock_guard lock(outputs().mutex);
    outputs().standardError.put(line);
    outputs().systemLog.put(line);
}

void surviveSignalsOfWriting() {
    std::signal(SIGPIPE, SIG_IGN);
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

LogReceiver setLogReceiver(LogReceiver newReceiver) {
    const std::lock_guard lock(receiver().mutex);
    return std::exchange(receiver().function, std::move(newReceiver));
}

} // namespace navrel
