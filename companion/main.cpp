// navrel-companion: stands in for the companion app at a terminal. It listens where the app in the
// simulator would, shows what Navrel serves, and takes commands from standard input.

#include "companion/Commands.h"
#include "companion/CompanionLink.h"
#include "companion/InstallExtension.h"
#include "companion/LineInput.h"
#include "companion/MapCommand.h"
#include "companion/OwnerCommands.h"
#include "protocol/CompanionProtocol.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDeadlineTimer>

#include <chrono>
#include <cstdio>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace {

using namespace navrel;

constexpr int kDefaultWaitSeconds = 60;

/// How long the first pass over a large project may take before it counts as no project.
constexpr std::chrono::seconds kFirstPass{10};
constexpr std::chrono::milliseconds kAskAgainAfter{100};

enum ExitCode { kExitSuccess = 0, kExitFailure = 1 };

void print(const QString& text) {
    const QByteArray bytes = text.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void complain(const QString& text) {
    std::fprintf(stderr, "navrel-companion: %s\n", qUtf8Printable(TerminalText::harmless(text)));
}

/// Navrel reads a project for the first time a second after its start: an overview before that
/// would be empty.
void waitForProject(CompanionLink& link) {
    if (link.ask(kFrameRootNavigator)) {
        return;
    }
    complain(QStringLiteral("waiting for Navrel to read a project"));
    const QDeadlineTimer deadline(kFirstPass);
    while (link.isConnected() && !link.ask(kFrameRootNavigator) && !deadline.hasExpired()) {
        std::this_thread::sleep_for(kAskAgainAfter);
    }
}

int runCommands(CompanionLink& link, Commands& commands, std::chrono::seconds wait) {
    LineInput input(STDIN_FILENO);
    const bool isInteractive = ::isatty(STDIN_FILENO) != 0;
    for (;;) {
        if (isInteractive) {
            std::fputs("> ", stdout);
            std::fflush(stdout);
        }
        const auto line = input.next();
        if (!line) {
            return kExitSuccess;
        }
        if (!link.isConnected() && !link.waitUntilServed(wait)) {
            complain(QStringLiteral("Navrel is gone."));
            return kExitFailure;
        }
        if (!commands.run(*line)) {
            return kExitSuccess;
        }
    }
}

int runCompanion(std::chrono::seconds wait) {
    const auto link = CompanionLink::create();
    link->didRefuse = [](const QString& sentence) { complain(sentence); };
    if (const auto error = link->listen(kCompanionPort)) {
        complain(QStringLiteral("cannot listen on 127.0.0.1:%1: %2")
                     .arg(kCompanionPort)
                     .arg(error->localizedDescription().value_or(error->description())));
        return kExitFailure;
    }
    if (!link->waitUntilServed(wait)) {
        complain(QStringLiteral("no Navrel has connected within %1 s; is it running?")
                     .arg(wait.count()));
        return kExitFailure;
    }
    const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
    Commands commands(
        [&link](quint32 type, const QVariantMap& request) { return link->ask(type, request); },
        print,
        TerminalText(isTerminal ? TerminalText::Style::coloured : TerminalText::Style::plain));
    waitForProject(*link);
    commands.showOverview();
    const int exitCode = runCommands(*link, commands, wait);
    link->stop();
    return exitCode;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "map") {
        return runMapCommand({argv + 2, argv + argc});
    }
    if (argc > 1 && isOwnerCommand(argv[1])) {
        return runOwnerCommand({argv + 1, argv + argc}, OwnerLink(ownerSocketPath()));
    }
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("navrel-companion"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NAVREL_VERSION));
    if (argc == 2 && std::string_view(argv[1]) == "install-extension") {
        return runInstallExtension();
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Stands in for the companion app: listens on 127.0.0.1:2345, shows the project that Navrel "
        "serves, and takes commands from standard input (\"help\" lists them)."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption waitOption(
        QStringLiteral("wait"), QStringLiteral("How long to wait for a Navrel, in seconds."),
        QStringLiteral("SECONDS"), QString::number(kDefaultWaitSeconds));
    parser.addOption(waitOption);
    parser.process(application);

    bool isNumber = false;
    const int wait = parser.value(waitOption).toInt(&isNumber);
    if (!isNumber || wait < 0 || !parser.positionalArguments().isEmpty()) {
        complain(QStringLiteral("usage: navrel-companion [--wait SECONDS]"));
        return kExitFailure;
    }
    return runCompanion(std::chrono::seconds(wait));
}
