#pragma once

#include <optional>
#include <string>
#include <vector>

namespace navrel {

/// No larger list of a workspace is read: real ones take some kilobytes.
inline constexpr std::size_t kMaximumWorkspaceFileSize = std::size_t{4} * 1024 * 1024;

/// An entry of a workspace's list.
struct WorkspaceItem {
    bool isGroup = false;
    std::string name; ///< a group's
    std::string path; ///< absolute; empty for a group without a folder, and for what has no known
                      ///< place
    std::vector<WorkspaceItem> items; ///< a group's
};

/// The list of a workspace (an absolute path to an .xcworkspace), by its contents.xcworkspacedata.
/// Nothing where that is missing or not readable.
std::optional<std::vector<WorkspaceItem>> readWorkspace(const std::string& bundlePath);

/// The absolute paths of all projects in a list, groups included.
std::vector<std::string> projectsIn(const std::vector<WorkspaceItem>& items);

} // namespace navrel
