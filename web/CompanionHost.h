#pragma once

#include "web/ProgramState.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace navrel {

/// How a request to the program ended.
struct OpenOutcome {
    bool opened = false;
    std::string editor; ///< its name for users, "Neovim"; empty where there is none
    std::string reason; ///< why it was not opened: one sentence; empty where it was
    std::string hint;   ///< what to do about it: one sentence; empty where it was
};

/// What the server for browsers asks of the program. Its functions are called on the server's
/// thread and must return at once: what takes longer, or belongs to the main thread, is handed on
/// to it. All texts are UTF-8.
class CompanionHost {
public:
    /// Told once how a request ended; from any thread, also after the server is gone.
    using Reply = std::function<void(const OpenOutcome& outcome)>;

    virtual ~CompanionHost() = default;

    /// Opens a file of the project (an absolute path, not looked at by the server) at a line and a
    /// column in characters, each from 1; 0 for none. Where the editor would be the desktop's
    /// opener, files that `isHarmlessToOpen` (support/files/HarmlessFile.h) refuses must not be
    /// opened.
    virtual void openFile(const std::string& absolutePath, std::uint32_t line, std::uint32_t column,
                          Reply reply) = 0;

    /// Takes the editor back to where it was before the last file that a browser had opened.
    virtual void goBack(Reply reply) = 0;

    /// Shows or hides the files of some types, which are among those that were published. The
    /// program publishes the types again when it is done, and then replies: "opened", without an
    /// editor.
    virtual void switchFileTypes(std::vector<FileTypeSwitch> switches, Reply reply) = 0;

    /// A device was paired: a word to the user is due.
    virtual void devicePaired(const std::string& label) = 0;

    /// Whether any client listens to events from now on: where none does, no client could see where
    /// the editor is. Called on every change of that.
    virtual void followingChanged(bool anyClientFollows) { static_cast<void>(anyClientFollows); }

    /// What `BrowserAccess` answers about its status, its devices or its pairing is another now.
    virtual void accessChanged() = 0;
};

} // namespace navrel
