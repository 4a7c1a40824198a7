#pragma once

#include <string>

namespace navrel {

/// Whether a file may be handed to the desktop's opener because a browser asked for that: it must
/// be a regular file without an execute bit, and not a ".desktop" file, which openers start. A link
/// is judged by its target, including the name. False for a file that cannot be examined. Any
/// thread.
bool isHarmlessToOpen(const std::string& path);

} // namespace navrel
