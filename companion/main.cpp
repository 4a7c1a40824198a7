// navrel-companion: Navrel at a terminal. It asks a running Navrel over its owner's socket, or
// stands in for a device, and takes commands from its arguments or from standard input.

#include "companion/InstallExtension.h"
#include "companion/MapCommand.h"
#include "companion/terminal/Arguments.h"
#include "companion/terminal/CodeSource.h"
#include "companion/terminal/CommandTable.h"
#include "companion/terminal/Session.h"

#include <QByteArray>
#include <QCoreApplication>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>

namespace {

using namespace navrel;

int usage(const QString& problem) {
    std::fprintf(stderr, "navrel-companion: %s\n", qUtf8Printable(TerminalText::harmless(problem)));
    return static_cast<int>(CommandResult::usage);
}

int printHelp() {
    std::puts("usage: navrel-companion [OPTIONS]             a session at the terminal\n"
              "       navrel-companion [OPTIONS] COMMAND …   one command, then the end\n"
              "       navrel-companion map PATH.xcodeproj …  a project on disk, without Navrel\n"
              "       navrel-companion install-extension     Navrel's extension for VS Code\n\n"
              "options:\n"
              "  --json           print what Navrel answers, as JSON\n"
              "  --device         stand in for a device, on port 2345 of this machine\n"
              "  --wait SECONDS   how long to wait for a Navrel\n"
              "  --plain          for screen readers: no colours, no drawings, no pager\n"
              "  --color=WHEN     auto, always or never\n"
              "  -h, --help       this text\n"
              "  -v, --version    the version\n\n"
              "commands:");
    for (const CommandInfo& command : commandTable()) {
        const QString line = (command.name + u' ' + command.parameters).trimmed();
        std::printf("  %-26s %s\n", qUtf8Printable(line), qUtf8Printable(command.summary));
    }
    std::puts("\nexit status: 0 done, 1 not found, 2 not understood, 3 no Navrel");
    return 0;
}

/// Qt takes UTF-8 alone, and where the user's locale has another encoding it says so and changes
/// the locale. What is shown suits the user's all the same, so it comes back.
std::unique_ptr<QCoreApplication> applicationInEveryLocale(int& argc, char** argv) {
    const std::optional<QByteArray> chosen =
        qEnvironmentVariableIsSet("LC_ALL") ? std::optional(qgetenv("LC_ALL")) : std::nullopt;
    qputenv("LC_ALL", "C.UTF-8");
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    if (chosen) {
        qputenv("LC_ALL", *chosen);
    } else {
        qunsetenv("LC_ALL");
    }
    std::setlocale(LC_ALL, "");
    return application;
}

} // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    std::signal(SIGPIPE, SIG_IGN);
    if (argc > 1 && std::string_view(argv[1]) == "map") {
        return runMapCommand({argv + 2, argv + argc});
    }
    const auto application = applicationInEveryLocale(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("navrel-companion"));
    if (argc == 2 && std::string_view(argv[1]) == "install-extension") {
        return runInstallExtension();
    }
    const auto parsed = argumentsIn({argv + 1, argv + argc});
    if (const auto* const problem = std::get_if<QString>(&parsed)) {
        return usage(*problem);
    }
    const Arguments& arguments = std::get<Arguments>(parsed);
    if (arguments.wantsHelp) {
        return printHelp();
    }
    if (arguments.wantsVersion) {
        std::puts("navrel-companion " NAVREL_VERSION);
        return 0;
    }
    return Session(arguments, QStringLiteral(NAVREL_VERSION)).run();
}
