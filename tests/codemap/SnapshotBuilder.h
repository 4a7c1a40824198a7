#pragma once

#include "codemap/CodeMapSnapshot.h"
#include "codemap/OutlineBuilder.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace navrel {

/// Puts a snapshot together by hand: a project "App" in /home/App, to which files are added by
/// path.
class SnapshotBuilder {
public:
    SnapshotBuilder() {
        MapNode root;
        root.id = 1;
        root.kind = NodeKind::project;
        root.name = "App";
        nodes_.push_back(root);
    }

    /// Adds a file to the root, and has its outline written.
    NodeID addFile(const std::string& path,
                   const std::function<void(OutlineBuilder& outline)>& write = nullptr) {
        MapNode file;
        file.id = nodes_.size() + 1;
        file.kind = NodeKind::file;
        file.path = path;
        file.name = path.substr(path.rfind('/') + 1);
        file.extension = file.name.substr(file.name.rfind('.') + 1);
        file.language = languageOfExtension(file.extension);
        file.absolutePath = "/home/App/" + path;
        file.parent = 1;
        if (write) {
            OutlineBuilder outline(file.language);
            write(outline);
            file.outline = std::make_shared<Outline>(outline.finish(kLines));
            file.outlineRevision = 1;
        }
        nodes_.front().children.push_back(file.id);
        nodes_.push_back(file);
        return file.id;
    }

    MapNode& node(NodeID id) { return nodes_[id - 1]; }

    CodeMapSnapshot build(std::uint64_t revision = 1) const {
        CodeMapSnapshot::Content content;
        content.revision = revision;
        content.state = MapState::loaded;
        content.projectName = "App";
        content.folder = "/home/App";
        for (const MapNode& node : nodes_) {
            content.nodes.push_back(std::make_shared<MapNode>(node));
        }
        return CodeMapSnapshot(std::move(content));
    }

    static constexpr std::uint32_t kLines = 100;

private:
    std::vector<MapNode> nodes_;
};

inline OutlineBuilder::Declaration declaration(SymbolKind kind, std::uint32_t line,
                                               std::string_view name,
                                               std::string_view inherits = {}) {
    OutlineBuilder::Declaration result;
    result.kind = kind;
    result.line = line;
    result.name = name;
    result.inherits = inherits;
    return result;
}

} // namespace navrel
