#pragma once

#include <QString>
#include <QTimer>

namespace navrel {

/// Logs lines of one kind as long as they are few. Of a flood, the first lines of each second are
/// logged, and at the end of the second the number of those that were left out. Main thread.
class LogLimiter {
public:
    /// More than a user causes by plugging devices in; a daemon that makes them up fills no disk.
    static constexpr int kMostLinesASecond = 20;

    /// `kind` is what the log calls the lines: "devices attached and detached".
    explicit LogLimiter(QString kind);
    LogLimiter(const LogLimiter&) = delete;
    LogLimiter& operator=(const LogLimiter&) = delete;

    void log(const QString& line);

private:
    void secondHasPassed();

    const QString kind_;
    int lines_ = 0; ///< of the present second, logged or not
    QTimer second_; ///< runs from a second's first line on
};

} // namespace navrel
