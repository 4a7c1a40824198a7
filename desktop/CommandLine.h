#pragma once

#include <optional>
#include <span>
#include <string>

namespace navrel {

/// The answer to a command line that does not start the program.
struct CommandLineAnswer {
    std::string text; ///< whole lines
    int exitStatus = 0;

    /// Prints the text, to standard error if the exit status is not 0. Returns the exit status.
    int print() const;
};

/// The answer to a command line: the help, the version, or what is wrong with it, with exit status
/// 2. Nil if `arguments`, which are those after the program's name, are empty: then the program
/// starts. Pure.
std::optional<CommandLineAnswer> answerCommandLine(std::span<const char* const> arguments);

} // namespace navrel
