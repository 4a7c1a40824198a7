#pragma once

#include "codemap/Language.h"
#include "codemap/Outline.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace navrel {

/// Names a node of the tree: the same across restarts, and on every machine with the same tree.
/// Clients see 16 hexadecimal digits.
using NodeID = std::uint64_t;

/// 16 lower-case hexadecimal digits.
std::string textOfNodeID(NodeID id);
/// Nothing for anything but 16 hexadecimal digits.
std::optional<NodeID> nodeIDFromText(std::string_view text);

enum class NodeKind : std::uint8_t {
    group,
    file,
    folder,
    variant,
    package,
    project,
    workspace,
};

/// As clients see it: "group", "file" …
std::string_view nameOf(NodeKind kind);

/// One group or file. Shared between snapshots while it stays as it is.
struct MapNode {
    NodeID id = 0;
    NodeKind kind{};
    std::string name;
    std::string path;         ///< as clients see it: relative to the project's folder
    bool outside = false;     ///< not below the project's folder; `path` is its last two parts
    std::string absolutePath; ///< where it lies on disk; empty for a group without a folder. Never
                              ///< shown to clients
    Language language = Language::none;
    std::string extension; ///< without the dot; empty for what is no file, or has none
    bool missing = false;  ///< nothing lies at its path
    std::vector<std::string> targets;
    /// What the source declares; null for what is no source, is missing, or was too large.
    std::shared_ptr<const Outline> outline;
    std::uint64_t outlineRevision = 0; ///< of the snapshot that the outline first was part of
    NodeID parent = 0;                 ///< 0 for the root
    std::vector<NodeID> children;      ///< in the order of the project
};

enum class MapState : std::uint8_t { none, loading, loaded, unreadable };

/// What the code base looked like at one moment. Immutable; any thread; what did not change is
/// shared with the snapshots before.
class CodeMapSnapshot {
public:
    virtual ~CodeMapSnapshot() = default;

    /// Grows with each snapshot of one map; 0 before the first.
    virtual std::uint64_t revision() const = 0;
    virtual MapState state() const = 0;
    /// Why a project is unreadable: one sentence; empty otherwise.
    virtual std::string_view reason() const = 0;
    /// The line (from 1) at which a project file stops being readable; 0 where that is not known.
    virtual std::uint32_t reasonLine() const = 0;
    virtual std::string_view projectName() const = 0;

    /// Null while nothing is loaded.
    virtual const MapNode* root() const = 0;
    /// Null for an identifier that names nothing in this snapshot.
    virtual const MapNode* node(NodeID id) const = 0;
    virtual std::size_t fileCount() const = 0;
    virtual std::size_t symbolCount() const = 0;

    /// Files that belong to the same unit (header and implementation, categories …), the likeliest
    /// first.
    virtual std::vector<NodeID> counterparts(NodeID file) const = 0;
    /// The file at an absolute path; null where the project has none there.
    virtual const MapNode* fileAtPath(std::string_view absolutePath) const = 0;
};

using CodeMapSnapshotPtr = std::shared_ptr<const CodeMapSnapshot>;

} // namespace navrel
