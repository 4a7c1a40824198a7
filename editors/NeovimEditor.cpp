#include "editors/NeovimEditor.h"

#include "editors/Deadlines.h"
#include "editors/NeovimConnection.h"
#include "editors/NeovimScripts.h"
#include "editors/NeovimServers.h"
#include "support/Log.h"

#include <QVariantMap>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

namespace navrel {

namespace {

using Reply = NeovimConnection::Reply;

/// The keys that leave a mode are read by the editor's own loop, soon after the script that gave
/// them.
constexpr std::chrono::milliseconds kReadinessPause{5};
/// An editor that runs answers in a few milliseconds; the next one is worth trying after this.
constexpr std::chrono::milliseconds kFirstAnswerAtMost{1000};
/// Less than this is no fair chance on a busy machine: who would be left less waits for the next
/// question, when those that kept silent now are left alone.
constexpr std::chrono::milliseconds kLeastShare{100};

Reply runScript(NeovimConnection& editor, const char* script, const QVariantList& arguments,
                const QDeadlineTimer& deadline) {
    return editor.call("nvim_exec_lua", {QByteArray(script), QVariant(arguments)}, deadline);
}

enum class Readiness { Ready, WaitsForAKey, Silent };

/// Asks what an editor answers even in the middle of a command: any other question would wait for
/// the person's next key.
Readiness readinessOf(NeovimConnection& editor, const QDeadlineTimer& deadline) {
    const Reply mode = editor.call("nvim_get_mode", {}, deadline);
    if (mode.kind != Reply::Kind::Result || mode.value.typeId() != QMetaType::QVariantMap) {
        return Readiness::Silent;
    }
    const QVariant blocking = mode.value.toMap().value(QStringLiteral("blocking"));
    return blocking == false ? Readiness::Ready : Readiness::WaitsForAKey;
}

/// Why a call did not succeed.
QString failureText(const Reply& reply) {
    if (reply.kind == Reply::Kind::None) {
        return QStringLiteral("no answer");
    }
    const QVariantList error = reply.value.toList(); // [kind, text]
    return QString::fromUtf8(error.isEmpty() ? QByteArray() : error.last().toByteArray());
}

/// Brings the editor to where a file can be opened, from any mode. What kept it from that; nothing
/// when it is there.
std::optional<QString> leaveMode(NeovimConnection& editor, const QDeadlineTimer& deadline) {
    bool keysGiven = false;
    QString obstacle = failureText(Reply());
    while (!deadline.hasExpired()) {
        const Readiness readiness = readinessOf(editor, deadline);
        if (readiness == Readiness::Silent) {
            break;
        }
        if (readiness == Readiness::WaitsForAKey) {
            obstacle = QStringLiteral("it waits for a key");
        } else {
            const Reply ready = runScript(editor, kNeovimIsReadyScript, {}, deadline);
            if (ready.kind != Reply::Kind::Result) {
                return failureText(ready);
            }
            if (ready.value == true) {
                return std::nullopt;
            }
            obstacle = QStringLiteral("it stays in its mode");
            if (!keysGiven) {
                runScript(editor, kNeovimLeaveModeScript, {}, deadline);
                keysGiven = true;
            }
        }
        std::this_thread::sleep_for(kReadinessPause);
    }
    return obstacle;
}

/// Opens a file and selects a line. What kept the editor from that; nothing when it did.
std::optional<QString> openIn(NeovimConnection& editor, const QByteArray& path,
                              std::optional<int> line, const QDeadlineTimer& deadline) {
    if (auto obstacle = leaveMode(editor, deadline)) {
        return obstacle;
    }
    const QVariant lineOrNil = line ? QVariant(*line) : QVariant();
    const Reply opened = runScript(editor, kNeovimOpenScript, {path, lineOrNil}, deadline);
    return opened.kind == Reply::Kind::Result ? std::nullopt : std::optional(failureText(opened));
}

/// How long a server may take while others wait behind it: half of what is left, so that one that
/// is stopped leaves them their chance.
QDeadlineTimer shareOfNext(const QDeadlineTimer& deadline, bool isLast) {
    if (isLast) {
        return deadline;
    }
    const std::chrono::milliseconds left(deadline.remainingTime());
    return earlierOf(deadline, std::max(left / 2, kLeastShare));
}

} // namespace

NeovimEditor::NeovimEditor(std::chrono::milliseconds leftAloneFor)
    : silent_(leftAloneFor), answers_(answerStandsFor(leftAloneFor)) {}

std::optional<ActiveFile> NeovimEditor::activeFile(const QDeadlineTimer& deadline) {
    const QByteArrayList sockets = neovimServerSockets(shareOf(deadline, 2));
    answers_.forgetAllBut(sockets);
    std::optional<ActiveFile> lastKnown;
    bool isFirst = true;
    for (const QByteArray& socket : sockets) {
        std::optional<ActiveFile> file;
        const bool isTimeLeft =
            isFirst || std::chrono::milliseconds(deadline.remainingTime()) >= kLeastShare;
        if (silent_.contains(socket) || !isTimeLeft) {
            file = answers_.of(socket);
        } else {
            file = activeFileOf(socket, shareOfNext(deadline, socket == sockets.back()));
            isFirst = false;
        }
        if (file && file->isCurrent) {
            return file;
        }
        lastKnown = lastKnown ? lastKnown : file;
    }
    return lastKnown;
}

/// Asks one server. One that is busy or silent stands by its last answer; one that is gone, or no
/// Neovim, has none.
std::optional<ActiveFile> NeovimEditor::activeFileOf(const QByteArray& socket,
                                                     const QDeadlineTimer& deadline) {
    bool isOverdue = false;
    const auto editor = NeovimConnection::open(socket, isOverdue);
    if (editor == nullptr && !isOverdue) {
        answers_.forget(socket);
        return std::nullopt;
    }
    Reply file;
    if (editor != nullptr) {
        const Readiness readiness = readinessOf(*editor, deadline);
        if (readiness == Readiness::WaitsForAKey) {
            return answers_.of(socket); // which cost next to nothing: it may be asked again at once
        }
        if (readiness == Readiness::Ready) {
            file = runScript(*editor, kNeovimActiveFileScript, {}, deadline);
        }
        isOverdue = file.kind == Reply::Kind::None && deadline.hasExpired();
    }
    if (file.kind == Reply::Kind::None) {
        silent_.add(socket);
    }
    if (isOverdue) {
        return answers_.of(socket);
    }
    if (file.kind != Reply::Kind::Result || file.value.typeId() != QMetaType::QByteArray) {
        answers_.forget(socket);
        return std::nullopt;
    }
    answers_.add(socket, file.value.toByteArray());
    return answers_.of(socket);
}

bool NeovimEditor::open(const QByteArray& path, std::optional<int> line,
                        const QDeadlineTimer& deadline) {
    // The other half is for opening, or for an editor of another kind.
    const QDeadlineTimer search = shareOf(deadline, 2);
    for (const QByteArray& socket : neovimServerSockets(search)) {
        bool isOverdue = false;
        const auto editor = NeovimConnection::open(socket, isOverdue);
        const auto soon = earlierOf(search, kFirstAnswerAtMost);
        if (editor == nullptr || readinessOf(*editor, soon) != Readiness::Ready) {
            continue;
        }
        if (const auto obstacle = openIn(*editor, path, line, deadline)) {
            log(QStringLiteral("Neovim did not open %1: %2")
                    .arg(QString::fromUtf8(path), *obstacle));
        }
        return true;
    }
    return false;
}

} // namespace navrel
