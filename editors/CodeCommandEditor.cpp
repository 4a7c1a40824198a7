#include "editors/CodeCommandEditor.h"

#include "editors/Deadlines.h"
#include "project/EditorRefusal.h"
#include "support/process/ToolRunner.h"

#include <QDir>
#include <QLocalSocket>
#include <QStringList>

#include <algorithm>
#include <chrono>

namespace navrel {

namespace {

/// The command starts a process of the editor's own, which takes a second on a slow machine.
constexpr std::chrono::milliseconds kCommandAtMost{4000};
/// More editors than anyone runs; sockets that a crash left behind count too.
constexpr qsizetype kMaximumSockets = 16;

/// Whether one runs: each listens on a socket for further starts of its command.
bool isRunning() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty()) {
        return false;
    }
    const QStringList sockets =
        QDir(folder)
            .entryList({QStringLiteral("vscode-*-main.sock")}, QDir::System, QDir::Time)
            .mid(0, kMaximumSockets);
    return std::any_of(sockets.begin(), sockets.end(), [&](const QString& name) {
        QLocalSocket socket;
        socket.connectToServer(folder + QLatin1Char('/') + name);
        return socket.state() == QLocalSocket::ConnectedState;
    });
}

std::optional<QString> command() {
    const auto code = findTool(QStringLiteral("code"));
    return code ? code : findTool(QStringLiteral("codium"));
}

/// What the command takes: the path, and line and column where they are known.
QString targetOf(const EditorPlace& place) {
    QString target = QString::fromUtf8(place.path);
    if (place.line > 0) {
        target += QLatin1Char(':') + QString::number(place.line);
    }
    if (place.line > 0 && place.column > 0) {
        target += QLatin1Char(':') + QString::number(place.column);
    }
    return target;
}

} // namespace

std::optional<ActiveFile> CodeCommandEditor::activeFile(const QDeadlineTimer&) {
    return std::nullopt;
}

bool CodeCommandEditor::open(const QByteArray& path, std::optional<int> line,
                             const QDeadlineTimer& deadline) {
    return jump({path, line.value_or(0), 0, false}, deadline).isAnswer();
}

JumpResult CodeCommandEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    const auto tool = command();
    if (!tool || place.path.contains(':') || !isRunning()) {
        return {};
    }
    const QDeadlineTimer end = earlierOf(deadline, kCommandAtMost);
    const auto output = outputOfTool(*tool, {QStringLiteral("--goto"), targetOf(place)},
                                     std::chrono::milliseconds(end.remainingTime()));
    if (!output) {
        return {outcomeOf(EditorRefusal::answersLate, name()), {}};
    }
    return {{EditorOutcome::Kind::opened, name(), {}, {}}, {}};
}

} // namespace navrel
