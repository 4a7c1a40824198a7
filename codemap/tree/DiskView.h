#pragma once

#include "codemap/tree/DiskStatus.h"
#include "codemap/tree/FolderWatch.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace navrel {

/// No more entries of one folder are looked at.
inline constexpr std::size_t kMaximumFolderEntries = 100'000;

struct FolderEntry {
    std::string name;
    DiskKind kind{}; ///< symbolic links followed

    bool operator==(const FolderEntry& other) const = default;
};

/// What a tree has asked the disk, kept until it changes: a tree is built again without a system
/// call for what stayed. Paths are absolute, without "." and "..". One thread.
class DiskView {
public:
    /// Has the folders that are asked about watched, where `watch` is given; it must outlive the
    /// view. Paths above the common folder of a path and `top` are never watched.
    explicit DiskView(FolderWatch* watch = nullptr, std::string top = "/");
    ~DiskView();
    DiskView(const DiskView&) = delete;
    DiskView& operator=(const DiskView&) = delete;

    DiskStatus status(const std::string& path);
    /// What is in a folder, in the order of the names' bytes; nothing where it is no folder or
    /// cannot be read. Valid until the building ends.
    const std::vector<FolderEntry>& entries(const std::string& folder);

    /// The two enclose the building of a tree: what it did not ask about is forgotten.
    void beginBuilding() { ++building_; }
    void endBuilding();

    struct Changes {
        bool tree = false;                 ///< names came, went or mean something else
        std::vector<std::string> contents; ///< files that may have other contents

        bool isEmpty() const { return !tree && contents.empty(); }
    };
    /// Takes what was watched into account.
    Changes take(const std::vector<FolderEvent>& events);
    /// Looks at everything again.
    Changes lookAgain();
    /// Looks at what symbolic links lead to again, of which no watched folder reports.
    Changes lookAtLinks();
    bool hasLinks() const { return !links_.empty(); }

    /// Whether every folder is watched.
    bool isWatching() const { return watch_ != nullptr && !hasUnwatched_; }

    /// The dates of all folders whose entries were asked for.
    std::vector<std::pair<std::string, std::int64_t>> folderDates() const;

private:
    struct Folder {
        std::unordered_map<std::string, DiskStatus> statuses; // by name
        std::optional<std::vector<FolderEntry>> entries;
        std::int64_t modified = 0; // of the folder, before its entries were read
        std::uint64_t building = 0;
    };

    Folder& folderAt(std::string_view path);
    void watchAncestors(const std::string& path);
    void lookAtName(const std::string& folder, const std::string& name, bool force,
                    Changes& changes);
    void lookAtEntries(const std::string& path, Folder& folder, Changes& changes);
    bool forget(const std::string& path);
    void forgetAll();
    static std::vector<FolderEntry> read(const std::string& folder);

    FolderWatch* watch_;
    std::string top_;
    bool hasUnwatched_ = false;
    std::uint64_t building_ = 0;
    std::unordered_map<std::string, Folder> folders_;
    std::set<std::pair<std::string, std::string>> links_; // folder and name
};

} // namespace navrel
