#include "codemap/CodeMapViews.h"

#include "codemap/BranchChanges.h"
#include "codemap/TypeIndex.h"
#include "codemap/tree/ProjectTree.h"
#include "support/text/UTF8.h"

#include <array>
#include <boost/json/array.hpp>
#include <unordered_map>

namespace navrel {

namespace json = boost::json;

namespace {

json::string textOf(std::string_view text) {
    return json::string(text.data(), text.size());
}

json::array arrayOf(const std::vector<std::string_view>& texts) {
    json::array array;
    array.reserve(texts.size());
    for (const std::string_view text : texts) {
        array.emplace_back(textOf(text));
    }
    return array;
}

/// A text that was not checked where it came from.
json::string shownText(std::string_view text) {
    const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
    return isValidUTF8(bytes) ? textOf(text) : textOf(shownUTF8(bytes).toStdString());
}

/// Everything about a node but its place in the tree.
json::object describe(const MapNode& node) {
    json::object object;
    object["id"] = textOfNodeID(node.id);
    object["name"] = node.name;
    object["kind"] = textOf(nameOf(node.kind));
    if (!node.path.empty()) {
        object["path"] = node.path;
    }
    if (node.outside) {
        object["outside"] = true;
    }
    if (node.language != Language::none) {
        object["language"] = textOf(nameOf(node.language));
    }
    if (!node.extension.empty()) {
        object["extension"] = node.extension;
    }
    if (node.outline) {
        object["symbols"] = node.outline->symbols().size();
    }
    if (!node.targets.empty()) {
        object["targets"] = arrayOf({node.targets.begin(), node.targets.end()});
    }
    if (node.missing) {
        object["missing"] = true;
    }
    return object;
}

/// The tree grows no deeper than kMaximumTreeDepth, which bounds the recursion.
json::object nodeWithChildren(const CodeMapSnapshot& snapshot, const MapNode& node) {
    json::object object = describe(node);
    if (node.kind == NodeKind::file) {
        return object;
    }
    json::array children;
    children.reserve(node.children.size());
    for (const NodeID id : node.children) {
        if (const MapNode* const child = snapshot.node(id)) {
            children.emplace_back(nodeWithChildren(snapshot, *child));
        }
    }
    object["children"] = std::move(children);
    return object;
}

/// Where each node is among its parent's children.
std::unordered_map<NodeID, std::size_t> placesOf(const CodeMapSnapshot& snapshot) {
    std::unordered_map<NodeID, std::size_t> places;
    for (const MapNodePtr& node : snapshot.nodes()) {
        std::size_t place = 0;
        for (const NodeID child : node->children) {
            places.emplace(child, place++);
        }
    }
    return places;
}

bool isShownAlike(const MapNode& left, const MapNode& right) {
    const auto symbols = [](const MapNode& node) {
        return node.outline ? node.outline->symbols().size() + 1 : 0;
    };
    return left.name == right.name && left.kind == right.kind && left.path == right.path &&
           left.outside == right.outside && left.language == right.language &&
           left.extension == right.extension && left.missing == right.missing &&
           left.targets == right.targets && left.parent == right.parent &&
           symbols(left) == symbols(right);
}

json::object changedNode(const MapNode& node, std::size_t place) {
    json::object object = describe(node);
    if (node.parent != 0) {
        object["parent"] = textOfNodeID(node.parent);
        object["index"] = place;
    }
    return object;
}

json::array childSymbols(const Outline& outline, std::uint32_t first, std::uint32_t end);

json::object symbolObject(const Outline& outline, std::uint32_t index) {
    const Symbol& symbol = outline.symbols()[index];
    json::object object;
    object["kind"] = textOf(nameOf(symbol.kind));
    object["name"] = textOf(outline.text(symbol.name));
    if (symbol.signature.length > 0) {
        object["signature"] = textOf(outline.text(symbol.signature));
    }
    object["line"] = symbol.line;
    object["endLine"] = symbol.endLine;
    if (symbol.access != Access::unstated) {
        object["access"] = textOf(nameOf(symbol.access));
    }
    if (symbol.inherits.length > 0) {
        object["inherits"] = arrayOf(namesIn(outline.text(symbol.inherits)));
    }
    if (symbol.end > index + 1) {
        object["children"] = childSymbols(outline, index + 1, symbol.end);
    }
    return object;
}

/// Declarations nest no deeper than kMaximumOutlineDepth, which bounds the recursion.
json::array childSymbols(const Outline& outline, std::uint32_t first, std::uint32_t end) {
    json::array items;
    for (std::uint32_t index = first; index < end; index = outline.symbols()[index].end) {
        items.emplace_back(symbolObject(outline, index));
    }
    return items;
}

json::array headingsOf(const Outline& outline) {
    json::array items;
    for (const Heading& heading : outline.headings()) {
        json::object object;
        object["line"] = heading.line;
        object["text"] = textOf(outline.text(heading.text));
        if (heading.separator) {
            object["separator"] = true;
        }
        items.emplace_back(std::move(object));
    }
    return items;
}

void appendNotes(const MapNode& file, json::array& items) {
    for (const Note& note : file.outline->notes()) {
        json::object object;
        object["kind"] = textOf(nameOf(note.kind));
        object["text"] = textOf(file.outline->text(note.text));
        object["line"] = note.line;
        object["file"] = fileReference(file);
        items.emplace_back(std::move(object));
    }
}

json::array counterpartReferences(const CodeMapSnapshot& snapshot, NodeID file) {
    json::array items;
    for (const NodeID id : snapshot.counterparts(file)) {
        items.emplace_back(fileReference(*snapshot.node(id)));
    }
    return items;
}

json::object typeObject(const TypeEntry& type) {
    json::object object;
    object["name"] = textOf(type.name);
    if (type.symbol != nullptr) {
        object["kind"] = textOf(nameOf(type.symbol->kind));
        if (type.symbol->inherits.length > 0) {
            object["inherits"] = arrayOf(type.inherits());
        }
        object["file"] = fileReference(*type.file);
        object["line"] = type.symbol->line;
    }
    object["known"] = type.symbol != nullptr;
    return object;
}

json::object resultObject(const SearchResult& result) {
    json::object object;
    object["kind"] = textOf(result.kind);
    object["name"] = textOf(result.name);
    if (!result.container.empty()) {
        object["container"] = textOf(result.container);
    }
    object["file"] = fileReference(*result.file);
    if (result.line > 0) {
        object["line"] = result.line;
    }
    object["positions"] = json::array(result.positions.begin(), result.positions.end());
    return object;
}

std::string_view nameOf(ChangesState state) {
    constexpr std::array<std::string_view, 3> kNames = {"ok", "noRepository", "unavailable"};
    return kNames[static_cast<std::size_t>(state)];
}

std::string_view nameOf(ChangeStatus status) {
    constexpr std::array<std::string_view, 4> kNames = {"added", "modified", "deleted", "renamed"};
    return kNames[static_cast<std::size_t>(status)];
}

json::object changedFileObject(const CodeMapSnapshot& snapshot, const ChangedFile& changed) {
    json::object object;
    object["file"] = changed.file != nullptr
                         ? fileReference(*changed.file)
                         : fileReference(unlistedFile(changed.absolutePath, snapshot.folder()));
    object["status"] = textOf(nameOf(changed.status));
    json::array symbols;
    for (const ChangedSymbol& symbol : changed.symbols) {
        json::object item;
        item["name"] = symbol.name;
        item["line"] = symbol.line;
        symbols.emplace_back(std::move(item));
    }
    object["symbols"] = std::move(symbols);
    return object;
}

} // namespace

json::object fileReference(const MapNode& file, std::uint32_t line) {
    json::object object;
    object["id"] = textOfNodeID(file.id);
    object["name"] = file.name;
    object["path"] = file.path;
    if (file.outside) {
        object["outside"] = true;
    }
    if (line > 0) {
        object["line"] = line;
    }
    return object;
}

json::object treeView(const CodeMapSnapshot& snapshot) {
    json::object view;
    view["revision"] = snapshot.revision();
    if (const MapNode* const root = snapshot.root()) {
        view["root"] = nodeWithChildren(snapshot, *root);
    }
    return view;
}

json::object treeChangesView(const CodeMapSnapshot& since, const CodeMapSnapshot& snapshot) {
    json::array changed;
    json::array removed;
    const auto before = placesOf(since);
    const auto places = placesOf(snapshot);
    for (const MapNodePtr& node : snapshot.nodes()) {
        const MapNode* const old = since.node(node->id);
        const std::size_t place = node->parent != 0 ? places.at(node->id) : 0;
        const bool isNew = old == nullptr;
        if (isNew || (old != node.get() && !isShownAlike(*old, *node)) ||
            (old->parent != 0 && before.at(node->id) != place)) {
            changed.emplace_back(changedNode(*node, place));
        }
    }
    for (const MapNodePtr& node : since.nodes()) {
        if (snapshot.node(node->id) == nullptr) {
            removed.emplace_back(textOfNodeID(node->id));
        }
    }
    const bool isRootAnother = since.root() == nullptr || snapshot.root() == nullptr ||
                               since.root()->id != snapshot.root()->id;
    if (isRootAnother || changed.size() + removed.size() >= snapshot.nodes().size()) {
        return treeView(snapshot);
    }
    json::object view;
    view["revision"] = snapshot.revision();
    view["since"] = since.revision();
    view["changed"] = std::move(changed);
    view["removed"] = std::move(removed);
    return view;
}

std::optional<json::object> outlineView(const CodeMapSnapshot& snapshot, NodeID id) {
    const MapNode* const file = snapshot.node(id);
    if (file == nullptr || file->kind != NodeKind::file) {
        return std::nullopt;
    }
    static const auto kNothing = std::make_shared<const Outline>();
    const Outline& outline = file->outline ? *file->outline : *kNothing;
    json::object view = fileReference(*file);
    if (file->language != Language::none) {
        view["language"] = textOf(nameOf(file->language));
    }
    view["revision"] = file->outlineRevision;
    view["counterparts"] = counterpartReferences(snapshot, id);
    view["items"] = childSymbols(outline, 0, static_cast<std::uint32_t>(outline.symbols().size()));
    view["headings"] = headingsOf(outline);
    json::array notes;
    if (file->outline) {
        appendNotes(*file, notes);
    }
    view["notes"] = std::move(notes);
    view["lines"] = outline.lines();
    return view;
}

json::object typesView(const CodeMapSnapshot& snapshot) {
    json::array items;
    for (const TypeEntry& type : typesOf(snapshot)) {
        items.emplace_back(typeObject(type));
    }
    json::object view;
    view["revision"] = snapshot.revision();
    view["items"] = std::move(items);
    return view;
}

json::object notesView(const CodeMapSnapshot& snapshot) {
    json::array items;
    for (const MapNodePtr& node : snapshot.nodes()) {
        if (node->outline) {
            appendNotes(*node, items);
        }
    }
    json::object view;
    view["revision"] = snapshot.revision();
    view["items"] = std::move(items);
    return view;
}

json::object searchView(const CodeMapSnapshot& snapshot, const SearchRequest& request) {
    const SearchResults results = searchIn(snapshot, request);
    json::array items;
    for (const SearchResult& result : results.items) {
        items.emplace_back(resultObject(result));
    }
    json::object view;
    view["query"] = shownText(request.query);
    view["revision"] = snapshot.revision();
    view["truncated"] = results.truncated;
    view["items"] = std::move(items);
    return view;
}

json::object changesView(const CodeMapSnapshot& snapshot) {
    const BranchChanges changes = branchChangesOf(snapshot);
    json::object view;
    view["state"] = textOf(nameOf(changes.state));
    if (changes.state != ChangesState::ok) {
        return view;
    }
    json::array files;
    for (const ChangedFile& file : changes.files) {
        files.emplace_back(changedFileObject(snapshot, file));
    }
    view["base"] = shownText(changes.base);
    view["mergeBase"] = changes.mergeBase;
    view["files"] = std::move(files);
    return view;
}

} // namespace navrel
