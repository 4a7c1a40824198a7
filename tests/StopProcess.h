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

/// Stops a process with SIGSTOP and waits until each of its threads stands: the signal only asks
/// for that, and a thread may answer one more request first. False when there is no such process.
inline bool stopProcess(qint64 process) {
    const QDir threads(QStringLiteral("/proc/%1/task").arg(process));
    return ::kill(static_cast<pid_t>(process), SIGSTOP) == 0 && waitUntil([&] {
               const QStringList names = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
               return std::all_of(names.begin(), names.end(), [&](const QString& name) {
                   return isStopped(threads.filePath(name));
               });
           });
}

} // namespace navrel
