#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace navrel {

/// A destination of the log that never blocks: a line that it does not take at once is lost. The
/// first line that it takes after that is preceded by the number of those lost. One thread at a
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
    /// Writes the whole line without blocking. False if that was not possible.
    virtual bool take(const QByteArray& line) = 0;

    quint64 lost_ = 0;
};

} // namespace navrel
