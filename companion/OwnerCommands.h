#pragma once

#include "companion/OwnerLink.h"

#include <boost/json/object.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// Whether `navrel-companion NAME …` is one of the commands that ask a running Navrel.
bool isOwnerCommand(std::string_view name);

/// Runs `navrel-companion pair | devices | forget N | state | search TEXT | outline FILE |
/// open FILE:LINE [--json]`. Returns the exit status: 0, 1 where something was not found or refused
/// or no Navrel answers, 2 for arguments that are not understood.
int runOwnerCommand(const std::vector<std::string>& arguments, const OwnerLink& link);

/// The identifier of a file in a tree, as it may be named at a terminal: by its path in the
/// project, by its absolute path (`absolute`), or by a name that one file alone has.
std::optional<std::string> identifierOfFile(const boost::json::object& tree, std::string_view name,
                                            std::string_view absolute);

/// "View.m:12" as file and line; line 0 where none is given.
std::pair<std::string, std::uint32_t> fileAndLine(const std::string& text);

} // namespace navrel
