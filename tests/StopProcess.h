#pragma once

#include "tests/WaitUntil.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <csignal>

namespace navrel {

/// Whether a thread has come to a stand, by what the kernel says of it: "PID (NAME) T ...".
inline bool isStopped(const QString& thread) {
    QFile file(thread + QStringLiteral("/stat"));
    if (!file.open(QIODevice::ReadOnly)) {
        return true; // it has ended
    }
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "T";
}

/// Sends a signal to one process. False when there is none: a QProcess that does not run has the
/// identifier 0, which would stand for every process of the group, those of other tests included.
inline bool signalProcess(qint64 process, int signal) {
    return process > 0 && ::kill(static_cast<pid_t>(process), signal) == 0;
}

/// Lets a process that was stopped go on. False when there is none.
inline bool continueProcess(qint64 process) {
    return signalProcess(process, SIGCONT);
}

/// Stops a process with SIGSTOP and waits until each of its threads stands: the signal only asks
/// for that, and a thread may answer one more request first. False when there is no such process.
inline bool stopProcess(qint64 process) {
    const QDir threads(QStringLiteral("/proc/%1/task").arg(process));
    return signalProcess(process, SIGSTOP) && waitUntil([&] {
               const QStringList names = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
               return std::all_of(names.begin(), names.end(), [&](const QString& name) {
                   return isStopped(threads.filePath(name));
               });
           });
}

} // namespace navrel
