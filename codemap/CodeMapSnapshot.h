#pragma once

#include "codemap/Language.h"
#include "codemap/Outline.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace navrel {

/// Names a node of the tree: the same across restarts, and on every machine with the same tree.
/// Clients see 16 hexadecimal digits. 0 names nothing.
using NodeID = std::uint64_t;

/// 16 lower-case hexadecimal digits.
std::string textOfNodeID(NodeID id);
/// Nothing for anything but 16 lower-case hexadecimal digits.
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
    std::string path;         ///< as clients see it: relative to the project's folder; empty for a
                              ///< group without a folder
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
    std::int64_t modified = 0;         ///< a source's date, in nanoseconds since 1970
    NodeID parent = 0;                 ///< 0 for the root
    std::vector<NodeID> children;      ///< in the order of the project
};

using MapNodePtr = std::shared_ptr<const MapNode>;

enum class MapState : std::uint8_t { none, loading, loaded, unreadable };

class CodeMapSnapshot;
using CodeMapSnapshotPtr = std::shared_ptr<const CodeMapSnapshot>;

/// What the code base looked like at one moment. Immutable; any thread; what did not change is
/// shared with the snapshots before.
class CodeMapSnapshot {
public:
    /// What a snapshot is made of.
    struct Content {
        std::uint64_t revision = 0;
        MapState state = MapState::none;
        std::string reason;
        std::uint32_t reasonLine = 0;
        std::string projectName;
        std::string folder; ///< absolute path of the folder that the nodes' paths are relative to
        /// The root first, each node before its children, which come in their order. Identifiers
        /// must differ, and parents and children agree.
        std::vector<MapNodePtr> nodes;
    };

    CodeMapSnapshot() : CodeMapSnapshot(Content()) {}
    /// `before` must have the same identifiers and absolute paths at the same places, if it is
    /// given: its look-up tables are shared then.
    explicit CodeMapSnapshot(Content content, const CodeMapSnapshot* before = nullptr);

    /// Grows with each snapshot of one map; 0 before the first.
    std::uint64_t revision() const { return content_.revision; }
    MapState state() const { return content_.state; }
    /// Why a project is unreadable: one sentence; empty otherwise.
    std::string_view reason() const { return content_.reason; }
    /// The line (from 1) at which a project file stops being readable; 0 where that is not known.
    std::uint32_t reasonLine() const { return content_.reasonLine; }
    std::string_view projectName() const { return content_.projectName; }
    /// Absolute path of the project's folder; empty while nothing is loaded. Never shown to
    /// clients.
    std::string_view folder() const { return content_.folder; }

    /// Null while nothing is loaded.
    const MapNode* root() const { return nodes().empty() ? nullptr : nodes().front().get(); }
    /// Null for an identifier that names nothing in this snapshot.
    const MapNode* node(NodeID id) const { return nodePointer(id).get(); }
    /// The same, to be shared.
    const MapNodePtr& nodePointer(NodeID id) const;
    /// All nodes: the root first, each node before its children, in the order of the project.
    const std::vector<MapNodePtr>& nodes() const { return content_.nodes; }
    /// Files that are there.
    std::size_t fileCount() const { return fileCount_; }
    std::size_t symbolCount() const { return symbolCount_; }

    /// Files that belong to the same unit (header and implementation, categories …), the likeliest
    /// first.
    std::vector<NodeID> counterparts(NodeID file) const;
    /// The file at an absolute path; null where the project has none there.
    const MapNode* fileAtPath(std::string_view absolutePath) const;

private:
    struct LookUp {
        using Table = std::vector<std::pair<std::uint64_t, std::uint32_t>>; // sorted
        Table ids;                                                          // to places in nodes()
        Table paths; // hashes of files' absolute paths, to places in nodes()
    };

    std::shared_ptr<const LookUp> makeLookUp() const;
    void count();

    Content content_;
    std::shared_ptr<const LookUp> lookUp_;
    std::size_t fileCount_ = 0;
    std::size_t symbolCount_ = 0;
};

} // namespace navrel
