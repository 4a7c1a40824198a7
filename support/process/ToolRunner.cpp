#include "support/process/ToolRunner.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QStandardPaths>

#include <unistd.h>

namespace navrel {

namespace {

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
    process.start(path, arguments);
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
    process.start(path, arguments, QIODevice::ReadOnly);
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
