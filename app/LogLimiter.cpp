#include "app/LogLimiter.h"

#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <chrono>
#include <utility>

namespace navrel {

LogLimiter::LogLimiter(Clock& clock, QString kind) : clock_(clock), kind_(std::move(kind)) {}

void LogLimiter::log(const QString& line) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!second_) {
        second_ = clock_.after(std::chrono::seconds(1), [this] { secondHasPassed(); });
    }
    if (++lines_ <= kMostLinesASecond) {
        navrel::log(line);
    }
}

void LogLimiter::secondHasPassed() {
    NAVREL_ASSERT_MAIN_THREAD();
    second_.reset();
    const int leftOut = std::exchange(lines_, 0) - kMostLinesASecond;
    if (leftOut > 0) {
        navrel::log(QStringLiteral("%1 more lines about %2 were left out").arg(leftOut).arg(kind_));
    }
}

} // namespace navrel
