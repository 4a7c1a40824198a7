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

/// How `emacsclient` is told which server is meant.
struct Server {
    /// Whether there may be one: asking costs a process, twice a second, on machines where no Emacs
    /// runs too.
    bool mayRun = false;
    QStringList options;
};

Server theServer() {
    if (qEnvironmentVariableIsSet("EMACS_SOCKET_NAME") ||
        qEnvironmentVariableIsSet("EMACS_SERVER_FILE")) {
        return {true, {}};
    }
    const QString inTemporary = QStringLiteral("emacs%1/server").arg(::geteuid());
    const QString temporary = qEnvironmentVariable("TMPDIR");
    const QString folder = temporary.isEmpty() ? QStringLiteral("/tmp") : temporary;
    const QString home = qEnvironmentVariable("HOME");
    const QStringList found = {
        qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/emacs/server"),
        home + QStringLiteral("/.emacs.d/server/server"),
        home + QStringLiteral("/.config/emacs/server/server"),
    };
    const auto exists = [](const QString& path) { return QFileInfo::exists(path); };
    if (std::any_of(found.begin(), found.end(), exists)) {
        return {true, {}};
    }
    const QString socket = folder + QLatin1Char('/') + inTemporary;
    if (!exists(socket)) {
        return {};
    }
    // A TMPDIR that is set to nothing counts as unset, but not for the client.
    const bool isHidden = qEnvironmentVariableIsSet("TMPDIR") && temporary.isEmpty();
    return {true, isHidden ? QStringList{QStringLiteral("-s"), socket} : QStringList()};
}

struct Evaluation {
    /// What Emacs printed, without the line break at its end; nil when no Emacs answered.
    std::optional<QByteArray> value;
    bool isOverdue = false;
};

Evaluation evaluate(const QByteArray& expression, const QDeadlineTimer& deadline) {
    const auto client = findTool(QStringLiteral("emacsclient"));
    const Server server = theServer();
    if (!client || !server.mayRun || deadline.hasExpired()) {
        return {};
    }
    // The alternate editor that fails: otherwise, an Emacs could be started.
    const QStringList arguments =
        QStringList{QStringLiteral("-a"), QStringLiteral("false")} + server.options +
        QStringList{QStringLiteral("--eval"), QString::fromLatin1(expression)};
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
