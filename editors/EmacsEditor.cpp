#include "editors/EmacsEditor.h"

#include "editors/EmacsExpressions.h"
#include "support/Log.h"
#include "support/ToolRunner.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <unistd.h>
#include <utility>

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

/// How `emacsclient` is run to evaluate an expression; nothing where there is no Emacs to ask.
struct Client {
    QString tool;
    QStringList arguments;
};

std::optional<Client> clientFor(const QByteArray& expression) {
    const auto tool = findTool(QStringLiteral("emacsclient"));
    const Server server = theServer();
    if (!tool || !server.mayRun) {
        return std::nullopt;
    }
    // The alternate editor that fails: otherwise, an Emacs could be started.
    return Client{*tool,
                  QStringList{QStringLiteral("-a"), QStringLiteral("false")} + server.options +
                      QStringList{QStringLiteral("--eval"), QString::fromLatin1(expression)}};
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
    : activeFileQuestion_(leftAloneFor), answers_(answerStandsFor(leftAloneFor)) {}

std::optional<ActiveFile> EmacsEditor::activeFile(const QDeadlineTimer& deadline) {
    using Kind = ToolQuestion::Answer::Kind;
    const auto client = clientFor(emacsActiveFileExpression());
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

bool EmacsEditor::open(const QByteArray& path, std::optional<int> line,
                       const QDeadlineTimer& deadline) {
    const auto client = clientFor(emacsOpenExpression(path, line));
    if (!client || deadline.hasExpired()) {
        return false;
    }
    const auto output = outputOfTool(client->tool, client->arguments,
                                     std::chrono::milliseconds(deadline.remainingTime()));
    const QByteArray value = output ? output->trimmed() : QByteArray();
    if (value.isEmpty()) {
        return false;
    }
    if (value != "opened") {
        log(QStringLiteral("Emacs did not open %1: %2")
                .arg(QString::fromUtf8(path), QString::fromUtf8(value)));
    }
    return true;
}

} // namespace navrel
