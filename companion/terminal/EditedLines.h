#pragma once

#include "companion/terminal/Completion.h"

#include <QString>

#include <memory>
#include <optional>
#include <string>

namespace navrel {

/// Where the history of the companion's lines is kept, below XDG_STATE_HOME; empty where the user
/// has no home.
std::string historyPath();

/// Lines that a user types at a terminal: with editing, a history and completion. One at a time,
/// since the library keeps the terminal's state. One thread.
class EditedLines {
public:
    struct Settings {
        QString prompt;
        std::string historyFile; ///< read now, and written after each line; empty for none
        CompletionWords words;
    };

    explicit EditedLines(Settings settings);
    /// Puts the terminal back as it was.
    ~EditedLines();
    EditedLines(const EditedLines&) = delete;
    EditedLines& operator=(const EditedLines&) = delete;

    /// The next line, without its line break; empty where it was given up by Ctrl-C; nothing at the
    /// end of the input.
    std::optional<QString> next();

private:
    struct Library;

    const std::unique_ptr<Library> library_;
};

} // namespace navrel
