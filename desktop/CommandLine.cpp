#include "desktop/CommandLine.h"

#include "app/ProgramVersion.h"

#include <cstdio>
#include <string_view>

namespace navrel {

namespace {

constexpr std::string_view kHelp = R"(Usage: navrel
Shows an Xcode project on a phone or tablet, and opens files from there.

Navrel puts an icon with a menu into the tray, or shows the menu in a small
window, and runs until "Quit" is chosen there.

  -h, --help     print this help and exit
  -v, --version  print the version and exit

"man navrel" has the environment variables and the files.
)";

} // namespace

std::optional<CommandLineAnswer> answerCommandLine(std::span<const char* const> arguments) {
    if (arguments.empty()) {
        return std::nullopt;
    }
    const std::string_view argument = arguments.front();
    if (argument == "--help" || argument == "-h") {
        return CommandLineAnswer{std::string(kHelp)};
    }
    if (argument == "--version" || argument == "-v") {
        return CommandLineAnswer{"navrel " + programVersion().toStdString() + "\n"};
    }
    return CommandLineAnswer{
        "navrel: unknown argument: " + std::string(argument) + "\nTry \"navrel --help\".\n", 2};
}

int CommandLineAnswer::print() const {
    std::fputs(text.c_str(), exitStatus == 0 ? stdout : stderr);
    return exitStatus;
}

} // namespace navrel
