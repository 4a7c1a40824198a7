#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace navrel {

/// A place for lines of the log that is never waited for: what it does not take at once is lost,
/// and counted; the first line that it takes afterwards is preceded by the count. One thread at a
/// time.
class LogOutput {
public:
    virtual ~LogOutput() = default;
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;

    /// Puts a line, without its line feed.
    void put(const QByteArray& line);

protected:
    LogOutput() = default;

private:
    /// Takes a line whole, or returns false.
    virtual bool take(const QByteArray& line) = 0;

    quint64 lost_ = 0;
};

} // namespace navrel
