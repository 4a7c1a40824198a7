#include "editors/emacs/EmacsEditor.h"

#include "editors/Deadlines.h"
#include "editors/emacs/EmacsClient.h"
#include "editors/emacs/EmacsExpressions.h"
#include "editors/emacs/EmacsFollower.h"
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
    : jumpAtMost_(jumpAtMost), activeFileQuestion_(leftAloneFor),
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
    const auto text = unquoted(answer.output.trimmed());
    const auto file = QByteArray::fromBase64Encoding(text.value_or(QByteArray()),
                                                     QByteArray::AbortOnBase64DecodingErrors);
    if (answer.kind == Kind::Output && text && file) {
        answers_.add(kTheServer, *file);
    } else if (!wasLate || answer.kind == Kind::Output) {
        answers_.forget(kTheServer);
    }
    // One that was ended in the middle of its wait says nothing of whether Emacs is still there.
    return answers_.of(kTheServer);
}

EmacsEditor::~EmacsEditor() = default;

bool EmacsEditor::open(const QByteArray& path, std::optional<int> line,
                       const QDeadlineTimer& deadline) {
    const auto value = valueOf(emacsOpenExpression(path, line), deadline);
    if (!value) {
        return false;
    }
    if (*value != "opened") {
        log(QStringLiteral("Emacs did not open %1: %2")
                .arg(QString::fromUtf8(path), QString::fromUtf8(*value)));
    }
    return true;
}

JumpResult EmacsEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    const auto line = place.line > 0 ? std::optional(place.line) : std::nullopt;
    const QDeadlineTimer end = earlierOf(deadline, jumpAtMost_);
    const JumpResult late = {
        EditorOutcome::Kind::asksUser, QStringLiteral("Emacs did not answer in time."), {}};
    const auto before = valueOf(emacsPlaceExpression(), end);
    if (!before) {
        // Without an Emacs its client fails at once.
        return end.hasExpired() && !deadline.hasExpired() ? late : JumpResult();
    }
    const auto value = valueOf(emacsJumpExpression(place.path, line, place.column), end);
    if (!value) {
        return late;
    }
    if (*value != "opened") {
        return {
            EditorOutcome::Kind::refused,
            QStringLiteral("Emacs: %1").arg(QString::fromUtf8(unquoted(*value).value_or(*value))),
            {}};
    }
    return {EditorOutcome::Kind::opened, {}, emacsPlaceFrom(*before)};
}

void EmacsEditor::follow(PlaceObserver observer) {
    follower_ =
        observer == nullptr ? nullptr : std::make_unique<EmacsFollower>(std::move(observer));
}

} // namespace navrel
