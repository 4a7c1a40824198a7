#include "editors/emacs/EmacsEditor.h"

#include "editors/Deadlines.h"
#include "editors/StoppedPeer.h"
#include "editors/emacs/EmacsClient.h"
#include "editors/emacs/EmacsExpressions.h"
#include "editors/emacs/EmacsFollower.h"
#include "project/EditorRefusal.h"
#include "support/core/Log.h"
#include "support/process/ToolRunner.h"

#include <utility>

namespace navrel {

namespace {

constexpr char kTheServer[] = "";

/// What stands between the quotes of a text that Emacs printed; nil where it printed no text.
std::optional<QByteArray> unquoted(const QByteArray& printed) {
    if (printed.size() < 2 || !printed.startsWith('"') || !printed.endsWith('"')) {
        return std::nullopt;
    }
    return printed.mid(1, printed.size() - 2);
}

struct Showing {
    qint64 process = 0;
    QByteArray file;
};

/// What Emacs printed for `emacsActiveFileExpression`; nil where it printed something else.
std::optional<Showing> showingFrom(const QByteArray& printed) {
    const QByteArray text = unquoted(printed).value_or(QByteArray());
    const qsizetype space = text.indexOf(' ');
    if (space < 0) {
        return std::nullopt;
    }
    const auto file = QByteArray::fromBase64Encoding(text.mid(space + 1),
                                                     QByteArray::AbortOnBase64DecodingErrors);
    return file ? std::optional(Showing{text.left(space).toLongLong(), *file}) : std::nullopt;
}

/// What Emacs printed for an expression; nil when no Emacs answered.
std::optional<QByteArray> valueOf(const QByteArray& expression, const QDeadlineTimer& deadline) {
    const auto client = emacsClientFor(expression);
    if (!client || deadline.hasExpired()) {
        return std::nullopt;
    }
    const auto output = outputOfTool(client->tool, client->arguments,
                                     std::chrono::milliseconds(deadline.remainingTime()));
    const QByteArray value = output ? output->trimmed() : QByteArray();
    return value.isEmpty() ? std::nullopt : std::optional(value);
}

} // namespace

EmacsEditor::EmacsEditor(std::chrono::milliseconds leftAloneFor,
                         std::chrono::milliseconds jumpAtMost)
    : jumpAtMost_(jumpAtMost), silent_(leftAloneFor), activeFileQuestion_(leftAloneFor),
      answers_(answerStandsFor(leftAloneFor)) {}

std::optional<ActiveFile> EmacsEditor::activeFile(const QDeadlineTimer& deadline) {
    using Kind = ToolQuestion::Answer::Kind;
    const auto client = emacsClientFor(emacsActiveFileExpression());
    if (!client) {
        answers_.forget(kTheServer);
        return std::nullopt;
    }
    const auto answer = activeFileQuestion_.ask(client->tool, client->arguments, deadline);
    if (answer.kind == Kind::Late) {
        wasLate_ = true;
        return answers_.of(kTheServer);
    }
    const bool wasLate = std::exchange(wasLate_, false);
    const auto showing = showingFrom(answer.output.trimmed());
    if (answer.kind == Kind::Output && showing) {
        silent_.remove(kTheServer);
        process_ = showing->process;
        answers_.add(kTheServer, showing->file);
    } else if (!wasLate || answer.kind == Kind::Output) {
        answers_.forget(kTheServer);
    }
    // One that was ended in the middle of its wait says nothing of whether Emacs is still there.
    return answers_.of(kTheServer);
}

EmacsEditor::~EmacsEditor() = default;

bool EmacsEditor::isSuspended() const {
    return isProcessStopped(process_);
}

/// What Emacs says of where its user is; nil when it says nothing. One that is there and keeps
/// silent until the deadline is left alone for a while then; without one, its client fails at once.
std::optional<QByteArray> EmacsEditor::askForPlace(const QDeadlineTimer& deadline) {
    auto value =
        silent_.contains(kTheServer) ? std::nullopt : valueOf(emacsPlaceExpression(), deadline);
    if (!value && deadline.hasExpired()) {
        silent_.add(kTheServer);
    }
    return value;
}

bool EmacsEditor::open(const QByteArray& path, std::optional<int> line,
                       const QDeadlineTimer& deadline) {
    const QString name = QString::fromUtf8(path);
    // The other half is for opening, or for an editor of another kind.
    if (!askForPlace(shareOf(deadline, 2))) {
        if (silent_.contains(kTheServer)) {
            log(QStringLiteral("Emacs does not answer: %1 was not opened in it").arg(name));
        }
        return false;
    }
    const auto value = valueOf(emacsOpenExpression(path, line), deadline);
    if (!value) {
        log(QStringLiteral("Emacs did not say in time whether it opened %1").arg(name));
    } else if (*value != "opened") {
        log(QStringLiteral("Emacs did not open %1: %2").arg(name, QString::fromUtf8(*value)));
    }
    return true;
}

JumpResult EmacsEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    const QDeadlineTimer end = earlierOf(deadline, jumpAtMost_);
    const auto before = askForPlace(end);
    if (!before) {
        return silent_.contains(kTheServer)
                   ? JumpResult{outcomeOf(EditorRefusal::doesNotAnswer, name()), {}}
                   : JumpResult();
    }
    const auto line = place.line > 0 ? std::optional(place.line) : std::nullopt;
    const auto value = valueOf(emacsJumpExpression(place.path, line, place.column), end);
    if (!value) {
        return {outcomeOf(EditorRefusal::answersLate, name()), {}};
    }
    if (*value != "opened") {
        return {outcomeOf(EditorRefusal::saysWhy, name(),
                          QString::fromUtf8(unquoted(*value).value_or(*value))),
                {}};
    }
    return {{EditorOutcome::Kind::opened, name(), {}, {}}, emacsPlaceFrom(*before)};
}

void EmacsEditor::follow(PlaceObserver observer) {
    follower_ =
        observer == nullptr ? nullptr : std::make_unique<EmacsFollower>(std::move(observer));
}

} // namespace navrel
