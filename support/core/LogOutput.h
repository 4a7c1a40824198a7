#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <sys/types.h>

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

/// Standard error, each line behind "Navrel: ". A pipe or a terminal that nobody reads takes
/// nothing; where there is no standard error, nothing is lost.
class StandardError final : public LogOutput {
public:
    /// Another descriptor is for tests. It stays the caller's.
    explicit StandardError(int descriptor = 2) : descriptor_(descriptor) {}
    ~StandardError() override;

private:
    bool take(const QByteArray& line) override;
    bool write(const QByteArray& text);
    int unblockedDescriptor(dev_t device, ino_t inode);

    int descriptor_;
    // A second way to the same pipe or terminal, of which alone it is known that it does not block:
    // other programs share the first.
    int own_ = -1;
    dev_t ownDevice_ = 0;
    ino_t ownInode_ = 0;
    bool isInLine_ = false; ///< a line was cut short
};

/// The system's log, under the identifier "Navrel". Where there is none, nothing is lost.
class SystemLog final : public LogOutput {
public:
    /// Another socket than the system's is for tests.
    explicit SystemLog(QByteArray socketPath = QByteArrayLiteral("/dev/log"));
    ~SystemLog() override;

private:
    bool take(const QByteArray& line) override;
    bool connectAgain();

    QByteArray socketPath_;
    int socket_ = -1;
};

} // namespace navrel
