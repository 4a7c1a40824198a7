#include "editors/emacs/EmacsClient.h"

#include "support/process/ToolRunner.h"

#include <QFileInfo>

#include <algorithm>
#include <unistd.h>

namespace navrel {

namespace {

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

} // namespace

std::optional<EmacsClient> emacsClientFor(const QByteArray& expression) {
    const auto tool = findTool(QStringLiteral("emacsclient"));
    const Server server = theServer();
    if (!tool || !server.mayRun) {
        return std::nullopt;
    }
    // The alternate editor that fails: otherwise, an Emacs could be started.
    return EmacsClient{*tool,
                       QStringList{QStringLiteral("-a"), QStringLiteral("false")} + server.options +
                           QStringList{QStringLiteral("--eval"), QString::fromLatin1(expression)}};
}

} // namespace navrel
