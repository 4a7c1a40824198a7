#pragma once

#include <QString>

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace navrel {

/// What `navrel-companion` was started with.
struct Arguments {
    enum class Colour { automatic, always, never };

    QString command;                          ///< a line as it would be typed; empty for a session
    std::optional<std::chrono::seconds> wait; ///< for a Navrel; nothing for what suits the command
    bool isJSON = false;
    bool isDevice = false; ///< stand in for a device, also where Navrel's own socket answers
    bool isPlain = false;  ///< for screen readers
    Colour colour = Colour::automatic;
    bool wantsCompletion = false; ///< the command is a line to complete, for shells
    bool wantsHelp = false;
    bool wantsVersion = false;

    bool operator==(const Arguments&) const = default;
};

/// The arguments of the program, without its name; or why they are not understood, in one sentence.
std::variant<Arguments, QString> argumentsIn(const std::vector<std::string>& words);

} // namespace navrel
