#include "app/LogLimiter.h"

#include "support/Log.h"

#include <chrono>
#include <utility>

namespace navrel {

LogLimiter::LogLimiter(QString kind) : kind_(std::move(kind)) {
    second_.setSingleShot(true);
    second_.setInterval(std::chrono::seconds(1));
    QObject::connect(&second_, &QTimer::timeout, &second_, [this] { secondHasPassed(); });
}

void LogLimiter::log(const QString& line) {
    if (!second_.isActive()) {
        second_.start();
    }
    if (++lines_ <= kMostLinesASecond) {
        navrel::log(line);
    }
}

void LogLimiter::secondHasPassed() {
    const int leftOut = std::exchange(lines_, 0) - kMostLinesASecond;
    if (leftOut > 0) {
        navrel::log(QStringLiteral("%1 more lines about %2 were left out").arg(leftOut).arg(kind_));
    }
}

} // namespace navrel
