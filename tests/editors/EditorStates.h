#pragma once

#include <QString>

#include <ostream>
#include <vector>

namespace navrel {

/// Something that a user is in the middle of when an editor is led to a line of the file "b.m". The
/// editor was started with the file "a.m"; both have 200 lines, "line 1" and so on.
struct EditorState {
    enum class End { atTheLine, inAReason };
    /// What lies at the target.
    enum class Target { plain, readOnly, openInAnotherEditor };

    const char* name;
    const char* keys; ///< separated by blanks, "_" for a blank; names as tmux has them
    const char* sign; ///< a regular expression for the screen that shows the state
    End end = End::atTheLine;
    const char* lookKeys = ""; ///< after the jump, to look for what must not be lost
    const char* kept = "";     ///< a regular expression for the screen that shows it
    Target target = Target::plain;
};

std::ostream& operator<<(std::ostream& stream, const EditorState& state);

/// Of Neovim and Vim.
const std::vector<EditorState>& viStates();
const std::vector<EditorState>& emacsStates();

} // namespace navrel
