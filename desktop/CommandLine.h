#pragma once

#include <optional>
#include <span>
#include <string>

namespace navrel {

/// What a command line gets instead of a running program.
struct CommandLineAnswer {
    std::string text; ///< whole lines
    int exitStatus = 0;

    /// Prints the text, to standard error where the status is a failure.
    /// \return the exit status
    int print() const;
};

/// Nothing for an empty command line, which starts the program. Any other gets an answer: the help,
/// the version, or what is wrong with it, with exit status 2.
/// \param arguments what follows the program's name
std::optional<CommandLineAnswer> answerCommandLine(std::span<const char* const> arguments);

} // namespace navrel
