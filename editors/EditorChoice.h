#pragma once

#include "project/Editor.h"

#include <memory>

namespace navrel {

/// The editor that the environment names in `NAVREL_EDITOR` ("xcode", "neovim", "emacs",
/// "desktop"). Where it names none: Xcode where its tools are installed, else whichever of Neovim,
/// Emacs and the desktop's opener answers first, asked anew every time. Needs a QCoreApplication.
/// Main thread.
std::shared_ptr<Editor> chooseEditor();

} // namespace navrel
