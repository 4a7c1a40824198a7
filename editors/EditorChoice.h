#pragma once

#include "editors/ActiveProject.h"
#include "project/Editor.h"

#include <memory>

namespace navrel {

/// The editor that the environment names in `NAVREL_EDITOR` ("xcode", "neovim", "emacs", "vscode",
/// "vim", "kate", "plugin" for any editor with a plug-in, "desktop"). Where it names none: Xcode
/// where its tools are installed, else the one that the user moved in last, else the first that
/// answers of the editors with plug-ins, Neovim, Emacs, Kate, VS Code by its command and the
/// desktop's opener, asked again every time. `listing` finds the project that lists
/// a file, for all but Xcode, which names its project itself; null for none. Needs a
/// QCoreApplication. Main thread.
std::shared_ptr<Editor> chooseEditor(const ActiveProject::ListingProject& listing = nullptr);

} // namespace navrel
