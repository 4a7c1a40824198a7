#pragma once

#include <string>
#include <vector>

namespace navrel {

/// `navrel-companion map`: prints the code map of a project on disk, without a running Navrel.
/// `arguments` are those after "map". Returns the exit status: 0, 1 where something was not found
/// or is unreadable, 2 for arguments that are not understood.
int runMapCommand(const std::vector<std::string>& arguments);

} // namespace navrel
