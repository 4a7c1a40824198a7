#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

class DiskView;
class ProjectFiles;

/// Groups and files of one tree: what is beyond is left out.
inline constexpr std::size_t kMaximumTreeNodes = 500'000;
/// How deep groups and folders nest: what lies deeper is left out. Real trees have 11 levels.
inline constexpr std::size_t kMaximumTreeDepth = 256;

/// The files of a project or workspace, resolved as its own tools do.
struct ProjectTree {
    bool isReadable = false;
    std::string reason;           ///< why it is not: one sentence
    std::uint32_t reasonLine = 0; ///< from 1; 0 where that is not known
    std::string name;
    std::string folder; ///< absolute path of the folder that holds the bundle
    /// The root first, each node before its children; without outlines.
    std::vector<MapNode> nodes;
    /// Absolute paths of the files that the tree was read from.
    std::set<std::string> sources;
};

/// Builds the tree of a bundle (an absolute path to an .xcodeproj or .xcworkspace).
///
/// - A project's groups and files come in its order, each object once. Folder-synchronised groups,
///   folder references and local packages show what is on disk, ordered by name; hidden files are
///   left out, and bundles (.xcassets and the like) are files.
/// - A sub-project is a node of its own, with its files where it comes first.
/// - A project that a workspace in its folder or the two folders above lists has that workspace as
///   its last node, with the workspace's other projects. Their files come only for the bundles in
///   `wanted`. A workspace that is opened itself shows all files.
ProjectTree buildProjectTree(const std::string& bundlePath, DiskView& disk, ProjectFiles& files,
                             const std::set<std::string>& wanted = {});

/// The node of a file in a folder as a tree shows it, also where none lists it.
MapNode unlistedFile(const std::string& absolutePath, std::string_view folder);

} // namespace navrel
