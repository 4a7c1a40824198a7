#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// Running other programs: always by path, with their arguments as a list, never through a shell.
namespace navrel {

/// The path of an executable found in `PATH`, or nothing.
std::optional<QString> findTool(const QString& name);

/// Runs a program to its end, however long that takes; its output goes nowhere. It leads its own
/// process session, and lives on when we end. Its exit status, -1 where a signal ended it; nothing
/// when it could not be started. Blocks the calling thread. Any thread.
std::optional<int> runTool(const QString& path, const QStringList& arguments);

/// Runs a program and gives what it wrote on standard output, whatever its exit status. Nothing
/// when it could not be started, did not end in time (it is killed then), or wrote more than
/// `kMaximumToolOutput` bytes. Blocks the calling thread. Any thread.
std::optional<QByteArray> outputOfTool(const QString& path, const QStringList& arguments,
                                       std::chrono::milliseconds atMost);

/// An answer of a tool is a line or a page; a tool that writes for ever must not fill the memory.
inline constexpr qint64 kMaximumToolOutput = 1024 * 1024;

} // namespace navrel
