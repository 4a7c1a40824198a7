#include "codemap/MapBuilder.h"

#include "codemap/SourceOutline.h"
#include "codemap/tree/Paths.h"

#include <functional>
#include <string_view>
#include <utility>

namespace navrel {

namespace {

bool isSource(const MapNode& node) {
    return node.kind == NodeKind::file && node.language != Language::none && !node.missing &&
           !node.absolutePath.empty();
}

/// All but the revision of the outline.
bool isSame(const MapNode& left, const MapNode& right) {
    return left.outline == right.outline && left.modified == right.modified &&
           left.children == right.children && left.parent == right.parent &&
           left.missing == right.missing && left.name == right.name && left.kind == right.kind &&
           left.targets == right.targets && left.absolutePath == right.absolutePath &&
           left.path == right.path && left.outside == right.outside &&
           left.language == right.language && left.extension == right.extension;
}

bool isSameInTree(const MapNode& left, const MapNode& right) {
    return left.children == right.children && left.parent == right.parent &&
           left.missing == right.missing && left.name == right.name && left.kind == right.kind &&
           left.targets == right.targets && left.path == right.path &&
           left.absolutePath == right.absolutePath;
}

bool haveSamePlaces(const std::vector<MapNodePtr>& left, const std::vector<MapNodePtr>& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const MapNodePtr& a, const MapNodePtr& b) {
                          return a == b || (a->id == b->id && a->kind == b->kind &&
                                            a->absolutePath == b->absolutePath);
                      });
}

bool isSame(const CodeMapSnapshot& left, const CodeMapSnapshot::Content& right) {
    return left.state() == right.state && left.reason() == right.reason &&
           left.reasonLine() == right.reasonLine && left.nodes() == right.nodes;
}

} // namespace

MapBuilder::MapBuilder(std::string bundlePath, FolderWatch* watch,
                       std::atomic<std::size_t>* filesMapped)
    : bundlePath_(std::move(bundlePath)), disk_(watch, std::string(parentFolder(bundlePath_))),
      last_(std::make_shared<CodeMapSnapshot>()), filesMapped_(filesMapped) {}

MapBuilder::Update MapBuilder::build(std::uint64_t revision) {
    std::optional<Update> update = rebuild({}, revision);
    return update ? *std::move(update) : Update{last_, {revision, {}, false}};
}

std::optional<MapBuilder::Update> MapBuilder::take(const std::vector<FolderEvent>& events,
                                                   std::uint64_t revision) {
    return apply(disk_.take(events), revision);
}

std::optional<MapBuilder::Update> MapBuilder::lookAgain(std::uint64_t revision) {
    return apply(disk_.lookAgain(), revision);
}

std::optional<MapBuilder::Update> MapBuilder::lookAtLinks(std::uint64_t revision) {
    return apply(disk_.lookAtLinks(), revision);
}

std::optional<MapBuilder::Update> MapBuilder::include(const std::string& bundlePath,
                                                      std::uint64_t revision) {
    return included_.insert(bundlePath).second ? rebuild({}, revision) : std::nullopt;
}

std::optional<MapBuilder::Update> MapBuilder::apply(const DiskView::Changes& changes,
                                                    std::uint64_t revision) {
    const Paths changed(changes.contents.begin(), changes.contents.end());
    bool isTreeAnother = changes.tree;
    for (const std::string& path : changed) {
        if (treeSources_.contains(path)) {
            files_.invalidate(path);
            isTreeAnother = true;
        }
    }
    if (isTreeAnother) {
        return rebuild(changed, revision);
    }
    return changed.empty() ? std::nullopt : readAgain(changed, revision);
}

std::optional<MapBuilder::Update> MapBuilder::rebuild(const Paths& changed,
                                                      std::uint64_t revision) {
    ProjectTree tree = buildProjectTree(bundlePath_, disk_, files_, included_);
    treeSources_ = std::move(tree.sources);
    CodeMapSnapshot::Content content = contentOf(std::move(tree), changed, revision);
    std::erase_if(sources_, [](const auto& item) { return !item.second.isUsed; });
    endUse();
    return isSame(*last_, content) ? std::nullopt : std::optional(publish(std::move(content)));
}

std::optional<MapBuilder::Update> MapBuilder::readAgain(const Paths& changed,
                                                        std::uint64_t revision) {
    CodeMapSnapshot::Content content;
    content.revision = revision;
    content.state = last_->state();
    content.reason = last_->reason();
    content.reasonLine = last_->reasonLine();
    content.projectName = last_->projectName();
    content.folder = last_->folder();
    content.nodes = last_->nodes();
    std::size_t symbols = last_->symbolCount();
    for (MapNodePtr& node : content.nodes) {
        if (isSource(*node) && changed.contains(node->absolutePath)) {
            MapNode copy = *node;
            symbols -= copy.outline ? copy.outline->symbols().size() : 0;
            attachOutline(copy, changed, symbols);
            node = shared(std::move(copy), revision);
        }
    }
    endUse();
    return isSame(*last_, content) ? std::nullopt : std::optional(publish(std::move(content)));
}

void MapBuilder::endUse() {
    for (auto& [path, source] : sources_) {
        source.isUsed = false;
    }
}

CodeMapSnapshot::Content MapBuilder::contentOf(ProjectTree&& tree, const Paths& changed,
                                               std::uint64_t revision) {
    CodeMapSnapshot::Content content;
    content.revision = revision;
    content.state = tree.isReadable ? MapState::loaded : MapState::unreadable;
    content.reason = std::move(tree.reason);
    content.reasonLine = tree.reasonLine;
    content.projectName = std::move(tree.name);
    content.folder = std::move(tree.folder);
    content.nodes.reserve(tree.nodes.size());
    std::size_t symbols = 0;
    for (MapNode& node : tree.nodes) {
        if (isSource(node)) {
            attachOutline(node, changed, symbols);
        }
        if (node.kind == NodeKind::file && !node.missing && filesMapped_ != nullptr &&
            last_->state() == MapState::none) {
            ++*filesMapped_;
        }
        content.nodes.push_back(shared(std::move(node), revision));
    }
    return content;
}

/// The node as it was before, where it stayed the same.
MapNodePtr MapBuilder::shared(MapNode&& node, std::uint64_t revision) const {
    const MapNode* const before = last_->node(node.id);
    const bool isOutlineSame = before != nullptr && before->outline == node.outline;
    node.outlineRevision = !node.outline ? 0 : isOutlineSame ? before->outlineRevision : revision;
    if (before != nullptr && isSame(*before, node)) {
        return last_->nodePointer(node.id);
    }
    return std::make_shared<const MapNode>(std::move(node));
}

void MapBuilder::attachOutline(MapNode& node, const Paths& changed, std::size_t& symbols) {
    const Source& source = sourceAt(node, changed.contains(node.absolutePath));
    node.modified = source.status.stamp.modified;
    node.outline = source.outline;
    const std::size_t count = node.outline ? node.outline->symbols().size() : 0;
    if (symbols + count > kMaximumMapSymbols) {
        node.outline = nullptr;
        return;
    }
    symbols += count;
}

const MapBuilder::Source& MapBuilder::sourceAt(const MapNode& node, bool isChanged) {
    Source& source = sources_[node.absolutePath];
    // Another node may name the same file: it is read once.
    if (std::exchange(source.isUsed, true)) {
        return source;
    }
    const DiskStatus status = disk_.status(node.absolutePath);
    const bool isKept = !isChanged && source.status.kind == status.kind &&
                        source.status.stamp == status.stamp && source.status.isSettled;
    if (!isKept) {
        source.status = diskStatusOf(node.absolutePath);
        read(node, source);
    }
    return source;
}

void MapBuilder::read(const MapNode& node, Source& source) {
    const auto file = contentOfFile(node.absolutePath, kMaximumSourceSize);
    if (!file) {
        source.outline = nullptr;
        source.content = 0;
        return;
    }
    const std::string_view bytes(file->data(), static_cast<std::size_t>(file->size()));
    // Only what may change again unnoticed is read again without cause.
    const std::uint64_t content =
        source.status.isSettled && source.content == 0 ? 0 : std::hash<std::string_view>()(bytes);
    if (!source.outline || content == 0 || source.content != content) {
        const auto decoded = decodedSource(bytes);
        source.outline = std::make_shared<const Outline>(
            outlineOfSource(node.language, decoded ? std::string_view(*decoded) : bytes));
    }
    source.content = source.status.isSettled ? 0 : content;
}

MapBuilder::Update MapBuilder::publish(CodeMapSnapshot::Content content) {
    const bool sharesLookUp = haveSamePlaces(last_->nodes(), content.nodes);
    const auto snapshot = std::make_shared<const CodeMapSnapshot>(
        std::move(content), sharesLookUp ? last_.get() : nullptr);
    Update update{snapshot, changeTo(*snapshot)};
    last_ = snapshot;
    return update;
}

CodeMap::Change MapBuilder::changeTo(const CodeMapSnapshot& snapshot) const {
    CodeMap::Change change;
    change.revision = snapshot.revision();
    change.tree = last_->state() != snapshot.state();
    for (const MapNodePtr& node : snapshot.nodes()) {
        const MapNode* const before = last_->node(node->id);
        if (before == node.get()) {
            continue;
        }
        change.tree |= before == nullptr || !isSameInTree(*before, *node);
        const bool isFile = node->kind == NodeKind::file;
        if (isFile && (before == nullptr || before->outline != node->outline)) {
            change.files.push_back(node->id);
        }
    }
    for (const MapNodePtr& node : last_->nodes()) {
        if (snapshot.node(node->id) == nullptr) {
            change.tree = true;
            if (node->kind == NodeKind::file) {
                change.files.push_back(node->id);
            }
        }
    }
    return change;
}

} // namespace navrel
