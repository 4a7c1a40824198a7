#include "editors/EmacsEditor.h"

#include "editors/EmacsExpressions.h"
#include "support/Log.h"
#include "support/ToolRunner.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <unistd.h>

namespace navrel {

namespace {

constexpr char kTheServer[] = "";

/// Whether there may be a server: asking `emacsclient` costs a process, twice a second, on machines
/// where no Emacs runs too.
bool mayRun() {
    if (qEnvironmentVariableIsSet("EMACS_SOCKET_NAME") ||
        qEnvironmentVariableIsSet("EMACS_SERVER_FILE")) {
        return true;
    }
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString temporary = qEnvironmentVariable("TMPDIR", QStringLiteral("/tmp"));
    const QString home = qEnvironmentVariable("HOME");
    const QStringList servers = {
        runtime + QStringLiteral("/emacs/server"),
        temporary + QStringLiteral("/emacs%1/server").arg(::geteuid()),
        home + QStringLiteral("/.emacs.d/server/server"),
        home + QStringLiteral("/.config/emacs/server/server"),
    };
    return std::any_of(servers.begin(), servers.end(),
                       [](const QString& path) { return QFileInfo::exists(path); });
}

struct Evaluation {
    /// What Emacs printed, without the line break at its end; nil when no Emacs answered.
    std::optional<QByteArray> value;
    bool isOverdue = false;
};

Evaluation evaluate(const QByteArray& expression, const QDeadlineTimer& deadline) {
    const auto client = findTool(QStringLiteral("emacsclient"));
    if (!client || !mayRun() || deadline.hasExpired()) {
        return {};
    }
    // The alternate editor that fails: otherwise, an Emacs could be started.
    const QStringList arguments = {QStringLiteral("-a"), QStringLiteral("false"),
                                   QStringLiteral("--eval"), QString::fromLatin1(expression)};
    const auto output =
        outputOfTool(*client, arguments, std::chrono::milliseconds(deadline.remainingTime()));
    if (!output) {
        return {std::nullopt, deadline.hasExpired()};
    }
    const QByteArray value = output->trimmed();
    return {value.isEmpty() ? std::nullopt : std::optional(value), false};
}

/// What stands between the quotes of a text that Emacs printed; nil where it printed no text.
std::optional<QByteArray> unquoted(const QByteArray& printed) {
    if (printed.size() < 2 || !printed.startsWith('"') || !printed.endsWith('"')) {
        return std::nullopt;
    }
    return printed.mid(1, printed.size() - 2);
}

} // namespace

EmacsEditor::EmacsEditor(std::chrono::milliseconds leftAloneFor)
    : silent_(leftAloneFor), answers_(answerStandsFor(leftAloneFor)) {}

std::optional<ActiveFile> EmacsEditor::activeFile(const QDeadlineTimer& deadline) {
    if (silent_.contains(kTheServer)) {
        return answers_.of(kTheServer);
    }
    const Evaluation evaluation = evaluate(emacsActiveFileExpression(), deadline);
    if (evaluation.isOverdue) {
        silent_.add(kTheServer);
        return answers_.of(kTheServer);
    }
    const auto text = evaluation.value ? unquoted(*evaluation.value) : std::nullopt;
    const auto file = QByteArray::fromBase64Encoding(text.value_or(QByteArray()),
                                                     QByteArray::AbortOnBase64DecodingErrors);
    if (!text || !file) {
        answers_.forget(kTheServer);
        return std::nullopt;
    }
    answers_.add(kTheServer, *file);
    return answers_.of(kTheServer);
}

bool EmacsEditor::open(const QByteArray& path, std::optional<int> line,
                       const QDeadlineTimer& deadline) {
    const Evaluation evaluation = evaluate(emacsOpenExpression(path, line), deadline);
    if (!evaluation.value) {
        return false;
    }
    if (*evaluation.value != "opened") {
        log(QStringLiteral("Emacs did not open %1: %2")
                .arg(QString::fromUtf8(path), QString::fromUtf8(*evaluation.value)));
    }
    return true;
}

} // namespace navrel
