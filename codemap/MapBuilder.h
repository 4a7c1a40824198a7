#pragma once

#include "codemap/CodeMap.h"
#include "codemap/CodeMapSnapshot.h"
#include "codemap/tree/DiskView.h"
#include "codemap/tree/ProjectFiles.h"
#include "codemap/tree/ProjectTree.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace navrel {

/// The most symbols in a map, of all sources together: outlines beyond that are left out.
inline constexpr std::size_t kMaximumMapSymbols = 1'000'000;

/// Builds the snapshots of one bundle, each from the one before: only files that changed are read
/// again, and what stayed is shared. One thread.
class MapBuilder {
public:
    struct Update {
        CodeMapSnapshotPtr snapshot;
        CodeMap::Change change;
    };

    /// `watch` may be null, and must outlive the builder. So may `filesMapped`, which counts the
    /// files while the first snapshot is built.
    explicit MapBuilder(std::string bundlePath, FolderWatch* watch = nullptr,
                        std::atomic<std::size_t>* filesMapped = nullptr);

    /// The first snapshot.
    Update build(std::uint64_t revision);

    /// The snapshot after what the watch reported; nothing where it is as before.
    std::optional<Update> take(const std::vector<FolderEvent>& events, std::uint64_t revision);
    /// The snapshot after a look at everything on disk; nothing where it is as before.
    std::optional<Update> lookAgain(std::uint64_t revision);
    /// The snapshot after a look at what symbolic links lead to; nothing where it is as before.
    std::optional<Update> lookAtLinks(std::uint64_t revision);
    /// The snapshot with the files of another project of the workspace; nothing where it has them
    /// already.
    std::optional<Update> include(const std::string& bundlePath, std::uint64_t revision);

    bool isWatching() const { return disk_.isWatching(); }
    bool hasLinks() const { return disk_.hasLinks(); }

private:
    using Paths = std::set<std::string>;

    /// A source as it was last read.
    struct Source {
        DiskStatus status;
        std::uint64_t content = 0; // a hash, while it may change again unnoticed
        std::shared_ptr<const Outline> outline;
        bool isUsed = false;
    };

    std::optional<Update> apply(const DiskView::Changes& changes, std::uint64_t revision);
    std::optional<Update> rebuild(const Paths& changed, std::uint64_t revision);
    std::optional<Update> readAgain(const Paths& changed, std::uint64_t revision);
    CodeMapSnapshot::Content contentOf(ProjectTree&& tree, const Paths& changed,
                                       std::uint64_t revision);
    MapNodePtr shared(MapNode&& node, std::uint64_t revision) const;
    void attachOutline(MapNode& node, const Paths& changed, std::size_t& symbols);
    const Source& sourceAt(const MapNode& node, bool isChanged);
    static void read(const MapNode& node, Source& source);
    void endUse();
    Update publish(CodeMapSnapshot::Content content);
    CodeMap::Change changeTo(const CodeMapSnapshot& snapshot) const;

    std::string bundlePath_;
    Paths included_;
    DiskView disk_;
    ProjectFiles files_;
    Paths treeSources_;
    std::unordered_map<std::string, Source> sources_;
    CodeMapSnapshotPtr last_;
    std::atomic<std::size_t>* const filesMapped_;
};

} // namespace navrel
