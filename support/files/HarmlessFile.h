#pragma once

#include <string>

namespace navrel {

/// Whether the desktop's opener may be given a file because a browser asked for it: a regular file
/// without an execute bit, and no entry of the applications menu (.desktop), which openers start.
/// A link is judged by what it leads to, name and all. False for a file that cannot be looked at.
/// Any thread.
bool isHarmlessToOpen(const std::string& path);

} // namespace navrel
