#pragma once

namespace navrel {

/// Gives the extension for VS Code that belongs to this program to the editor's own installer: of
/// `code`, `codium`, `code-server` and `cursor` those that are found in `PATH`. Prints what came of
/// each. The exit status: 0 where one took it, 1 where none did.
int runInstallExtension();

} // namespace navrel
