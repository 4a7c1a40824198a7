#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// Runs other programs: always by path, with their arguments as a list, never through a shell.
namespace navrel {

/// The absolute path of an executable found in `PATH`, or nil.
std::optional<QString> findTool(const QString& name);

/// Runs a program to its end, however long that takes, and discards its output. Returns its exit
/// status, -1 if a signal ended it, or nil if it could not be started. It leads a process session,
/// so it goes on if Navrel ends first. Blocks the calling thread. Any thread.
std::optional<int> runTool(const QString& path, const QStringList& arguments);

/// Runs a program and returns what it wrote to standard output, whatever its exit status. Nil if it
/// could not be started, did not end in time (then it is killed), or wrote more than
/// `kMaximumToolOutput` bytes. Blocks the calling thread. Any thread.
std::optional<QByteArray> outputOfTool(const QString& path, const QStringList& arguments,
                                       std::chrono::milliseconds atMost);

/// The most output in bytes that is read of a tool: an answer is a line or a page, and a tool that
/// writes forever must not fill the memory.
inline constexpr qint64 kMaximumToolOutput = 1024 * 1024;

} // namespace navrel
