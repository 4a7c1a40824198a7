#pragma once

#include "support/core/Clock.h"

#include <QString>

#include <memory>

namespace navrel {

/// Logs lines of one kind as long as they are few. Of a flood, the first lines of each second are
/// logged, and at the end of the second the number of those that were left out. Main thread.
class LogLimiter {
public:
    /// More than a user causes by plugging devices in; a daemon that invents devices fills no disk.
    static constexpr int kMostLinesASecond = 20;

    /// `kind` is what the log calls the lines: "devices attached and detached". The clock must
    /// outlive this.
    LogLimiter(Clock& clock, QString kind);
    LogLimiter(const LogLimiter&) = delete;
    LogLimiter& operator=(const LogLimiter&) = delete;

    void log(const QString& line);

private:
    void secondHasPassed();

    Clock& clock_;
    const QString kind_;
    int lines_ = 0;                         ///< of the present second, logged or not
    std::unique_ptr<ScheduledCall> second_; ///< runs from a second's first line on
};

} // namespace navrel
