#include "codemap/tree/ProjectTree.h"

#include "codemap/Characters.h"
#include "codemap/tree/DiskView.h"
#include "codemap/tree/Paths.h"
#include "codemap/tree/ProjectFiles.h"
#include "codemap/tree/SwiftPackage.h"
#include "codemap/tree/TargetMembership.h"
#include "codemap/tree/WorkspaceFile.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace navrel {

namespace {

using Value = XcodeProject::Value;

constexpr std::string_view kProjectExtension = "xcodeproj";
constexpr std::string_view kWorkspaceExtension = "xcworkspace";
/// How many folders above a project's own are looked into for its workspace.
constexpr int kFoldersAboveForWorkspace = 2;

/// Folders that stand for one thing.
bool isOpaque(std::string_view extension) {
    static const std::unordered_set<std::string_view> kExtensions = {
        "app",
        "appex",
        "bundle",
        "component",
        "dSYM",
        "framework",
        "icon",
        "kext",
        "mlmodelc",
        "mlpackage",
        "momd",
        "nib",
        "photoslibrary",
        "playground",
        "plugin",
        "prefPane",
        "qlgenerator",
        "rcproject",
        "realitycomposerpro",
        "rkassets",
        "rtfd",
        "scnassets",
        "sticker",
        "stickerpack",
        "storyboardc",
        "xcarchive",
        "xcappdata",
        "xcassets",
        "xcdatamodel",
        "xcdatamodeld",
        "xcframework",
        "xcmappingmodel",
        "xcodeproj",
        "xcplayground",
        "xcresult",
        "xctest",
        "xcworkspace",
        "xpc",
    };
    return kExtensions.contains(extension);
}

/// The order of a folder's entries: by name, letter case aside, on every machine the same.
bool comesBefore(const FolderEntry* left, const FolderEntry* right) {
    const auto [mine, theirs] =
        std::mismatch(left->name.begin(), left->name.end(), right->name.begin(), right->name.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
    if (mine == left->name.end() || theirs == right->name.end()) {
        return left->name.size() != right->name.size() ? left->name.size() < right->name.size()
                                                       : left->name < right->name;
    }
    return static_cast<unsigned char>(lowerCase(*mine)) <
           static_cast<unsigned char>(lowerCase(*theirs));
}

/// FNV-1a with its bits mixed at the end. Texts with equal hashes get other identifiers, see
/// `TreeBuilder::newID`.
class IDHash {
public:
    IDHash& add(std::string_view text) {
        for (const char character : text) {
            add(static_cast<unsigned char>(character));
        }
        add(0xFF); // in no UTF-8: divides the texts
        return *this;
    }
    NodeID value() const {
        NodeID id = hash_;
        id = (id ^ (id >> 33)) * 0xFF51AFD7ED558CCDU;
        return id ^ (id >> 33);
    }

private:
    void add(unsigned char byte) { hash_ = (hash_ ^ byte) * 0x100000001B3U; }

    std::uint64_t hash_ = 0xCBF29CE484222325U;
};

/// A text of the disk or a project, as clients may see it.
std::string shown(std::string_view text) {
    const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
    return isValidUTF8(bytes) ? std::string(text) : shownUTF8(bytes).toStdString();
}

/// The targets of what a walk through a folder finds, by its path from there.
using TargetsOfEntry = std::function<std::vector<std::string>(std::string_view path)>;

/// A project while its objects are visited.
struct OpenProject {
    explicit OpenProject(XcodeProject& file) : project(file), targets(file) {}

    XcodeProject& project;
    TargetMembership targets;
    std::string folder; // that SOURCE_ROOT means
    std::string key;    // its bundle relative to the tree's folder
    std::unordered_set<std::string_view> visited;
};

/// Where an object is visited.
struct Place {
    std::size_t parent = 0; // in the tree's nodes
    /// That <group> means; nothing below what has no known place.
    std::optional<std::string> folder;
    std::vector<std::string> targets; // of a variant group, for what is in it
    std::size_t depth = 0;
};

/// A folder on disk while it is walked through, and those around it.
struct WalkedFolder {
    const WalkedFolder* around = nullptr;
    FileStamp stamp;

    bool isLoop(const FileStamp& folder) const {
        for (const WalkedFolder* walked = this; walked != nullptr; walked = walked->around) {
            if (walked->stamp.inode == folder.inode && walked->stamp.device == folder.device) {
                return true;
            }
        }
        return false;
    }
};

class TreeBuilder {
public:
    TreeBuilder(DiskView& disk, ProjectFiles& files, const std::set<std::string>& wanted)
        : disk_(disk), files_(files), wanted_(wanted) {}

    ProjectTree build(const std::string& bundlePath) {
        tree_.folder = parentFolder(bundlePath);
        tree_.name = lastPartWithoutExtension(bundlePath);
        if (extensionOf(bundlePath) == kWorkspaceExtension) {
            buildWorkspace(bundlePath);
        } else {
            buildProject(bundlePath);
        }
        return std::move(tree_);
    }

private:
    void buildProject(const std::string& bundlePath) {
        addProject({}, bundlePath, tree_.name, true);
        ProjectFiles::File& file = files_.at(bundlePath, disk_);
        tree_.isReadable = !file.failure;
        if (file.failure) {
            tree_.reason = file.failure->reason;
            tree_.reasonLine = file.failure->line;
            tree_.nodes.clear();
            return;
        }
        addWorkspaceAround(bundlePath);
    }

    void buildWorkspace(const std::string& bundlePath) {
        const auto items = readWorkspaceAt(bundlePath);
        tree_.isReadable = items.has_value();
        if (!items) {
            tree_.reason = "The workspace's list of projects is missing or not readable.";
            return;
        }
        showsAll_ = true;
        const auto root = addNode(0, NodeKind::workspace, tree_.name, bundlePath,
                                  IDHash().add("workspace").add(lastPart(bundlePath)));
        addItems(*root, *items, tree_.folder, 1);
    }

    // Nodes

    /// Identifiers follow from what a node is. Where two nodes have the same (two references to one
    /// file), the second's follows from its being the second.
    NodeID newID(NodeID wished) {
        NodeID id = wished;
        while (id == 0 || !taken_.insert(id).second) {
            id = IDHash()
                     .add(std::to_string(wished))
                     .add(std::to_string(++repeats_[wished]))
                     .value();
        }
        return id;
    }

    /// The place of the new node; nothing where the tree is full. The first one is the root.
    std::optional<std::size_t> addNode(std::size_t parent, NodeKind kind, std::string_view name,
                                       const std::string& absolutePath, const IDHash& id) {
        if (tree_.nodes.size() >= kMaximumTreeNodes) {
            return std::nullopt;
        }
        const std::size_t place = tree_.nodes.size();
        MapNode& node = tree_.nodes.emplace_back();
        node.id = newID(id.value());
        node.kind = kind;
        node.name = shown(name);
        setPath(absolutePath, node);
        if (place > 0) {
            node.parent = tree_.nodes[parent].id;
            tree_.nodes[parent].children.push_back(node.id);
        }
        return place;
    }

    void setPath(const std::string& absolutePath, MapNode& node) const {
        node.absolutePath = absolutePath;
        if (absolutePath.empty()) {
            return;
        }
        node.outside = !isWithin(absolutePath, tree_.folder);
        node.path = shown(node.outside ? std::string(lastTwoParts(absolutePath))
                                       : relativePath(absolutePath, tree_.folder));
    }

    std::string keyOf(const std::string& absolutePath) const {
        return relativePath(absolutePath, tree_.folder);
    }

    std::optional<std::size_t> addFile(std::size_t parent, std::string_view name,
                                       const std::string& absolutePath) {
        const auto place = addNode(parent, NodeKind::file, name, absolutePath,
                                   IDHash().add("file").add(keyOf(absolutePath)));
        if (place) {
            MapNode& node = tree_.nodes[*place];
            node.extension = shown(extensionOf(absolutePath));
            node.language = languageOfExtension(node.extension);
            node.missing = disk_.status(absolutePath).kind == DiskKind::missing;
        }
        return place;
    }

    std::optional<std::size_t> addFolder(std::size_t parent, std::string_view name,
                                         const std::string& absolutePath) {
        const auto place = addNode(parent, NodeKind::folder, name, absolutePath,
                                   IDHash().add("folder").add(keyOf(absolutePath)));
        if (place) {
            tree_.nodes[*place].missing = disk_.status(absolutePath).kind != DiskKind::folder;
        }
        return place;
    }

    // What is on disk

    void walk(std::size_t parent, const std::string& folder, std::string_view pathFromTop,
              const TargetsOfEntry& targets, const WalkedFolder* around, std::size_t depth) {
        const WalkedFolder here{around, disk_.status(folder).stamp};
        std::vector<const FolderEntry*> shown;
        for (const FolderEntry& entry : disk_.entries(folder)) {
            if (!entry.name.starts_with('.')) {
                shown.push_back(&entry);
            }
        }
        std::sort(shown.begin(), shown.end(), comesBefore);
        for (const FolderEntry* entry : shown) {
            const std::string path = resolvedPath(folder, entry->name);
            std::string fromTop(pathFromTop);
            fromTop += fromTop.empty() ? "" : "/";
            fromTop += entry->name;
            walkInto(parent, *entry, path, fromTop, targets, here, depth);
        }
    }

    void walkInto(std::size_t parent, const FolderEntry& entry, const std::string& path,
                  const std::string& fromTop, const TargetsOfEntry& targets,
                  const WalkedFolder& here, std::size_t depth) {
        const bool isFolder = entry.kind == DiskKind::folder && !isOpaque(extensionOf(entry.name));
        if (!isFolder) {
            if (entry.kind == DiskKind::file || entry.kind == DiskKind::folder) {
                if (const auto place = addFile(parent, entry.name, path)) {
                    tree_.nodes[*place].targets = targets(fromTop);
                }
            }
            return;
        }
        if (depth >= kMaximumTreeDepth || here.isLoop(disk_.status(path).stamp)) {
            return;
        }
        if (const auto place = addFolder(parent, entry.name, path)) {
            walk(*place, path, fromTop, targets, &here, depth + 1);
        }
    }

    void addFolderWithContents(std::size_t parent, std::string_view name, const std::string& path,
                               const TargetsOfEntry& targets, std::size_t depth) {
        if (const auto place = addFolder(parent, name, path)) {
            walk(*place, path, {}, targets, nullptr, depth + 1);
        }
    }

    void addPackage(std::size_t parent, std::string_view name, const std::string& folder,
                    std::size_t depth) {
        const bool isNew = packages_.insert(folder).second;
        const auto place = addNode(parent, NodeKind::package, name, folder,
                                   IDHash().add("package").add(keyOf(folder)));
        if (!place) {
            return;
        }
        tree_.nodes[*place].missing = disk_.status(folder).kind != DiskKind::folder;
        // A package that is shown already, or holds this one, is only named.
        if (!isNew || tree_.nodes[*place].missing) {
            return;
        }
        const std::string manifest = resolvedPath(folder, kPackageManifest);
        tree_.sources.insert(manifest);
        const std::vector<std::string> folders = sourceFoldersOf(folder, disk_);
        const TargetsOfEntry none = [](std::string_view) { return std::vector<std::string>(); };
        if (folders == std::vector<std::string>{"."}) {
            walk(*place, folder, {}, none, nullptr, depth + 1);
            return;
        }
        addFile(*place, kPackageManifest, manifest);
        for (const std::string& inside : folders) {
            addFolderWithContents(*place, inside, resolvedPath(folder, inside), none, depth + 1);
        }
    }

    // Projects

    /// Adds a project's node and, for `showsFiles`, what it lists, unless that stands in the tree
    /// already. The first node is the root, and has no place around.
    void addProject(const Place& around, const std::string& bundlePath, std::string_view name,
                    bool showsFiles) {
        const auto place = addNode(around.parent, NodeKind::project, name, bundlePath,
                                   IDHash().add("project").add(keyOf(bundlePath)));
        if (!place) {
            return;
        }
        tree_.nodes[*place].missing = disk_.status(bundlePath).kind != DiskKind::folder;
        if (!showsFiles || around.depth >= kMaximumTreeDepth ||
            !projects_.insert(bundlePath).second) {
            return;
        }
        tree_.sources.insert(bundlePath + "/project.pbxproj");
        ProjectFiles::File& file = files_.at(bundlePath, disk_);
        if (file.failure) {
            return;
        }
        OpenProject open(file.project);
        open.folder = resolvedPath(parentFolder(bundlePath), file.project.projectDirPath());
        open.key = keyOf(bundlePath);
        visitProject(open, *place, around.depth + 1);
    }

    void visitProject(OpenProject& open, std::size_t place, std::size_t depth) {
        const std::string_view mainGroup = open.project.mainGroup();
        const Value group = open.project.object(mainGroup);
        open.visited.insert(mainGroup);
        const Place around{place, open.folder, {}, depth};
        const Place inside{place, folderOf(open, group, around), {}, depth};
        visitChildren(open, group, inside);
        const Value project = open.project.project();
        for (const Value reference : project["projectReferences"].elements()) {
            visit(open, reference["ProjectRef"].utf8(), around);
        }
        for (const Value identifier : project["packageReferences"].elements()) {
            addPackageReference(open, open.project.object(identifier.utf8()), around);
        }
    }

    void addPackageReference(OpenProject& open, Value reference, const Place& around) {
        const std::string_view path = reference["relativePath"].utf8();
        if (reference["isa"].utf8() != "XCLocalSwiftPackageReference" || path.empty()) {
            return;
        }
        const std::string folder = resolvedPath(open.folder, path);
        if (!packages_.contains(folder)) {
            addPackage(around.parent, lastPart(folder), folder, around.depth);
        }
    }

    void visitChildren(OpenProject& open, Value entry, const Place& inside) {
        for (const Value child : entry["children"].elements()) {
            visit(open, child.utf8(), inside);
        }
    }

    /// Each object is shown once: a file that names one in many groups, or within itself, has a
    /// tree no larger than itself.
    void visit(OpenProject& open, std::string_view identifier, const Place& around) {
        const Value entry = open.project.object(identifier);
        if (!entry || around.depth >= kMaximumTreeDepth ||
            !open.visited.insert(identifier).second) {
            return;
        }
        const std::string_view isa = entry["isa"].utf8();
        if (isa == "PBXFileSystemSynchronizedRootGroup") {
            visitSynchronizedGroup(open, identifier, entry, around);
        } else if (isa == "PBXVariantGroup" || isa == "XCVersionGroup") {
            visitGroup(open, identifier, entry, around, NodeKind::variant);
        } else if (entry["children"].isArray()) {
            visitGroup(open, identifier, entry, around, NodeKind::group);
        } else if (entry["path"] || isa == "PBXFileReference") {
            visitFile(open, identifier, entry, around);
        }
    }

    void visitGroup(OpenProject& open, std::string_view identifier, Value entry,
                    const Place& around, NodeKind kind) {
        const std::optional<std::string> folder = folderOf(open, entry, around);
        const bool hasFolder = folder && !entry["path"].utf8().empty();
        const auto place =
            addNode(around.parent, kind, nameOf(entry), hasFolder ? *folder : std::string(),
                    IDHash().add("group").add(open.key).add(identifier));
        if (!place) {
            return;
        }
        MapNode& node = tree_.nodes[*place];
        node.missing = hasFolder && disk_.status(*folder).kind == DiskKind::missing;
        Place inside{*place, folder, around.targets, around.depth + 1};
        if (kind == NodeKind::variant) {
            inside.targets = open.targets.targetsOf(identifier);
            node.targets = inside.targets;
        }
        visitChildren(open, entry, inside);
    }

    void visitSynchronizedGroup(OpenProject& open, std::string_view identifier, Value entry,
                                const Place& around) {
        const std::optional<std::string> folder = folderOf(open, entry, around);
        if (folder) {
            addFolderWithContents(
                around.parent, nameOf(entry), *folder,
                [&open, identifier](std::string_view path) {
                    return open.targets.targetsInFolder(identifier, path);
                },
                around.depth);
        }
    }

    void visitFile(OpenProject& open, std::string_view identifier, Value entry,
                   const Place& around) {
        std::vector<std::string> targets = open.targets.targetsOf(identifier);
        if (targets.empty()) {
            targets = around.targets;
        }
        const std::optional<std::string> path = folderOf(open, entry, around);
        if (!path) {
            addUnplaced(open, identifier, entry, around, std::move(targets));
        } else if (extensionOf(*path) == kProjectExtension) {
            addProject(around, *path, lastPartWithoutExtension(*path), true);
        } else if (isShownFolder(entry, *path)) {
            addReferencedFolder(around, nameOf(entry), *path, targets);
        } else if (const auto place = addFile(around.parent, nameOf(entry), *path)) {
            tree_.nodes[*place].targets = std::move(targets);
        }
    }

    /// What lies where only a build or another machine knows: products, and the system's libraries.
    void addUnplaced(OpenProject& open, std::string_view identifier, Value entry,
                     const Place& around, std::vector<std::string> targets) {
        const auto place = addNode(around.parent, NodeKind::file, nameOf(entry), {},
                                   IDHash().add("unplaced").add(open.key).add(identifier));
        if (place) {
            MapNode& node = tree_.nodes[*place];
            const std::string_view path = entry["path"].utf8();
            node.path = shown(lastTwoParts(path));
            node.outside = true;
            node.extension = shown(extensionOf(path));
            node.language = languageOfExtension(node.extension);
            node.missing = true;
            node.targets = std::move(targets);
        }
    }

    bool isShownFolder(Value entry, const std::string& path) {
        if (disk_.status(path).kind != DiskKind::folder || isOpaque(extensionOf(path))) {
            return false;
        }
        std::string_view type = entry["lastKnownFileType"].utf8();
        if (type.empty()) {
            type = entry["explicitFileType"].utf8();
        }
        return type.empty() || type == "folder" || type == "wrapper" ||
               type == "folder.documentationcatalog" || type == "text" ||
               isSwiftPackage(path, disk_);
    }

    void addReferencedFolder(const Place& around, std::string_view name, const std::string& path,
                             const std::vector<std::string>& targets) {
        if (isSwiftPackage(path, disk_)) {
            addPackage(around.parent, name, path, around.depth);
            return;
        }
        addFolderWithContents(
            around.parent, name, path, [&targets](std::string_view) { return targets; },
            around.depth);
    }

    static std::string_view nameOf(Value entry) {
        const std::string_view name = entry["name"].utf8();
        return name.empty() ? lastPart(entry["path"].utf8()) : name;
    }

    /// Where an object lies; nothing where that depends on a build, or on what is installed.
    static std::optional<std::string> folderOf(const OpenProject& open, Value entry,
                                               const Place& around) {
        const std::string_view path = entry["path"].utf8();
        const std::string_view sourceTree = entry["sourceTree"].utf8();
        if (sourceTree == "<group>" || sourceTree.empty()) {
            return around.folder ? std::optional(resolvedPath(*around.folder, path)) : std::nullopt;
        }
        if (sourceTree == "SOURCE_ROOT") {
            return resolvedPath(open.folder, path);
        }
        if (sourceTree == "<absolute>" && path.starts_with('/')) {
            return resolvedPath("/", path);
        }
        return std::nullopt;
    }

    // Workspaces

    std::optional<std::vector<WorkspaceItem>> readWorkspaceAt(const std::string& bundlePath) {
        const std::string list = bundlePath + "/contents.xcworkspacedata";
        tree_.sources.insert(list);
        disk_.status(list);
        return readWorkspace(bundlePath);
    }

    void addItems(std::size_t parent, const std::vector<WorkspaceItem>& items,
                  const std::string& folder, std::size_t depth) {
        for (const WorkspaceItem& item : items) {
            if (item.isGroup) {
                addGroupItem(parent, item, folder, depth);
            } else if (!item.path.empty()) {
                addItem(parent, item, depth);
            }
        }
    }

    void addGroupItem(std::size_t parent, const WorkspaceItem& item, const std::string& folder,
                      std::size_t depth) {
        const bool hasFolder = !item.path.empty() && item.path != folder;
        const std::string path = hasFolder ? item.path : std::string();
        const std::string_view name = item.name.empty() ? lastPart(path) : item.name;
        const auto place = addNode(
            parent, NodeKind::group, name, path,
            IDHash().add("workspace group").add(textOfNodeID(tree_.nodes[parent].id)).add(name));
        if (place) {
            addItems(*place, item.items, hasFolder ? path : folder, depth + 1);
        }
    }

    void addItem(std::size_t parent, const WorkspaceItem& item, std::size_t depth) {
        if (extensionOf(item.path) == kProjectExtension) {
            if (!showsAll_ && item.path == tree_.nodes.front().absolutePath) {
                return;
            }
            addProject({parent, {}, {}, depth}, item.path, lastPartWithoutExtension(item.path),
                       showsAll_ || wanted_.contains(item.path));
        } else if (!showsAll_) {
            return;
        } else if (isSwiftPackage(item.path, disk_)) {
            addPackage(parent, lastPart(item.path), item.path, depth);
        } else if (disk_.status(item.path).kind == DiskKind::folder) {
            addFolderWithContents(
                parent, lastPart(item.path), item.path,
                [](std::string_view) { return std::vector<std::string>(); }, depth);
        } else {
            addFile(parent, lastPart(item.path), item.path);
        }
    }

    /// The first workspace that lists the project, from its folder upwards.
    void addWorkspaceAround(const std::string& bundlePath) {
        std::string folder = tree_.folder;
        for (int above = 0; above <= kFoldersAboveForWorkspace; ++above) {
            for (const std::string& workspace : workspacesIn(folder, above == 0)) {
                if (addWorkspace(workspace, bundlePath)) {
                    return;
                }
            }
            folder = parentFolder(folder);
        }
    }

    std::vector<std::string> workspacesIn(const std::string& folder, bool isWatched) {
        // Folders above may be anybody's, and busy: they are read, not watched.
        DiskView unwatched;
        DiskView& disk = isWatched ? disk_ : unwatched;
        std::vector<std::string> workspaces;
        for (const FolderEntry& entry : disk.entries(folder)) {
            if (entry.kind == DiskKind::folder && extensionOf(entry.name) == kWorkspaceExtension) {
                workspaces.push_back(resolvedPath(folder, entry.name));
            }
        }
        return workspaces;
    }

    bool addWorkspace(const std::string& workspace, const std::string& bundlePath) {
        const auto items = readWorkspace(workspace);
        const std::vector<std::string> projects =
            items ? projectsIn(*items) : std::vector<std::string>();
        const bool lists =
            std::find(projects.begin(), projects.end(), bundlePath) != projects.end();
        if (!lists) {
            return false;
        }
        if (projects.size() > 1) {
            readWorkspaceAt(workspace);
            const auto place = addNode(0, NodeKind::workspace, lastPartWithoutExtension(workspace),
                                       workspace, IDHash().add("workspace").add(keyOf(workspace)));
            if (place) {
                addItems(*place, *items, std::string(parentFolder(workspace)), 1);
            }
        }
        return true;
    }

    DiskView& disk_;
    ProjectFiles& files_;
    const std::set<std::string>& wanted_;
    bool showsAll_ = false;
    ProjectTree tree_;
    std::unordered_set<NodeID> taken_;
    std::unordered_map<NodeID, std::size_t> repeats_;
    std::unordered_set<std::string> projects_; // whose files are shown
    std::unordered_set<std::string> packages_; // that are shown
};

} // namespace

ProjectTree buildProjectTree(const std::string& bundlePath, DiskView& disk, ProjectFiles& files,
                             const std::set<std::string>& wanted) {
    disk.beginBuilding();
    ProjectTree tree = TreeBuilder(disk, files, wanted).build(bundlePath);
    disk.endBuilding();
    files.forgetUnused();
    return tree;
}

MapNode unlistedFile(const std::string& absolutePath, std::string_view folder) {
    MapNode node;
    node.id = IDHash().add("file").add(relativePath(absolutePath, folder)).value();
    node.kind = NodeKind::file;
    node.name = shown(lastPart(absolutePath));
    node.absolutePath = absolutePath;
    node.outside = !isWithin(absolutePath, folder);
    node.path = shown(node.outside ? std::string(lastTwoParts(absolutePath))
                                   : relativePath(absolutePath, folder));
    return node;
}

} // namespace navrel
