#include "codemap/CodeMapSnapshot.h"

#include "codemap/Counterparts.h"

#include <algorithm>
#include <functional>

namespace navrel {

namespace {

std::uint64_t hashOf(std::string_view path) {
    return std::hash<std::string_view>()(path);
}

auto firstOf(const std::vector<std::pair<std::uint64_t, std::uint32_t>>& table, std::uint64_t key) {
    return std::lower_bound(table.begin(), table.end(),
                            std::pair<std::uint64_t, std::uint32_t>(key, 0));
}

} // namespace

CodeMapSnapshot::CodeMapSnapshot(Content content, const CodeMapSnapshot* before)
    : content_(std::move(content)), lookUp_(before != nullptr ? before->lookUp_ : makeLookUp()) {
    count();
}

const MapNodePtr& CodeMapSnapshot::nodePointer(NodeID id) const {
    static const MapNodePtr kNothing;
    const auto found = firstOf(lookUp_->ids, id);
    return found != lookUp_->ids.end() && found->first == id ? nodes()[found->second] : kNothing;
}

std::vector<NodeID> CodeMapSnapshot::counterparts(NodeID file) const {
    const MapNode* const found = node(file);
    return found != nullptr ? counterpartsOf(*found, nodes()) : std::vector<NodeID>();
}

const MapNode* CodeMapSnapshot::fileAtPath(std::string_view absolutePath) const {
    const std::uint64_t hash = hashOf(absolutePath);
    for (auto found = firstOf(lookUp_->paths, hash);
         found != lookUp_->paths.end() && found->first == hash; ++found) {
        const MapNode* const candidate = nodes()[found->second].get();
        if (candidate->absolutePath == absolutePath) {
            return candidate;
        }
    }
    return nullptr;
}

std::shared_ptr<const CodeMapSnapshot::LookUp> CodeMapSnapshot::makeLookUp() const {
    auto lookUp = std::make_shared<LookUp>();
    lookUp->ids.reserve(nodes().size());
    for (std::uint32_t place = 0; place < nodes().size(); ++place) {
        const MapNode& node = *nodes()[place];
        lookUp->ids.emplace_back(node.id, place);
        if (node.kind == NodeKind::file && !node.absolutePath.empty()) {
            lookUp->paths.emplace_back(hashOf(node.absolutePath), place);
        }
    }
    std::sort(lookUp->ids.begin(), lookUp->ids.end());
    std::sort(lookUp->paths.begin(), lookUp->paths.end());
    return lookUp;
}

void CodeMapSnapshot::count() {
    for (const MapNodePtr& node : nodes()) {
        fileCount_ += node->kind == NodeKind::file && !node->missing ? 1 : 0;
        symbolCount_ += node->outline ? node->outline->symbols().size() : 0;
    }
}

} // namespace navrel
