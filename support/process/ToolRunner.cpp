#include "support/process/ToolRunner.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QStandardPaths>

#include <cstdlib>
#include <mutex>
#include <unistd.h>

namespace navrel {

namespace {

/// Held while a program is started, and from the end of `main` on. A process that QProcess forks
/// waits for a word of its parent before it becomes the program. Without this lock, a process that
/// ends on one thread while another starts a program could leave such a child waiting forever.
std::mutex& starting() {
    // Never destroyed, since threads may still wait for it while static objects are destroyed.
    static std::mutex& mutex = []() -> std::mutex& {
        std::atexit([] { starting().lock(); });
        return *new std::mutex;
    }();
    return mutex;
}

void start(QProcess& process, const QString& path, const QStringList& arguments,
           QIODevice::OpenMode mode) {
    const std::lock_guard lock(starting());
    process.start(path, arguments, mode);
}

void stop(QProcess& process) {
    process.kill();
    process.waitForFinished();
}

} // namespace

std::optional<QString> findTool(const QString& name) {
    const QString path = QStandardPaths::findExecutable(name);
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

std::optional<int> runTool(const QString& path, const QStringList& arguments) {
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { ::setsid(); });
    start(process, path, arguments, QIODevice::ReadWrite);
    constexpr int kHoweverLong = -1;
    process.waitForFinished(kHoweverLong);
    if (process.error() == QProcess::FailedToStart) {
        return std::nullopt;
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

std::optional<QByteArray> outputOfTool(const QString& path, const QStringList& arguments,
                                       std::chrono::milliseconds atMost) {
    const QDeadlineTimer deadline(atMost);
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    start(process, path, arguments, QIODevice::ReadOnly);
    QByteArray output;
    while (process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        output += process.readAllStandardOutput();
        if (deadline.hasExpired() || output.size() > kMaximumToolOutput) {
            stop(process);
            return std::nullopt;
        }
    }
    if (process.error() == QProcess::FailedToStart) {
        return std::nullopt;
    }
    return output + process.readAllStandardOutput();
}

} // namespace navrel
