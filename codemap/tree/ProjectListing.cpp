#include "codemap/tree/ProjectListing.h"

#include "codemap/tree/DiskView.h"
#include "codemap/tree/Paths.h"
#include "codemap/tree/ProjectFiles.h"
#include "codemap/tree/ProjectTree.h"

#include <algorithm>
#include <functional>
#include <string_view>

namespace navrel {

namespace {

/// The bundles in the folders around a file, the nearest first.
class BundleSearch {
public:
    std::vector<std::string> around(const std::string& file) {
        std::string folder(parentFolder(file));
        for (std::size_t step = 0; step < kMostFoldersUpwards && !isFull(); ++step) {
            addIn(folder);
            const std::string above(parentFolder(folder));
            if (above == folder) {
                break;
            }
            if (above != "/") { // the system's folders are there, and may be other machines'
                addBeside(above, folder);
            }
            folder = above;
        }
        return std::move(bundles_);
    }

private:
    bool isFull() const {
        return bundles_.size() >= kMostBundlesLookedAt || folders_ >= kMostFoldersSearched;
    }

    void addIn(const std::string& folder) {
        ++folders_;
        for (const FolderEntry& entry : disk_.entries(folder)) {
            if (entry.kind == DiskKind::folder && extensionOf(entry.name) == "xcodeproj" &&
                bundles_.size() < kMostBundlesLookedAt) {
                bundles_.push_back(resolvedPath(folder, entry.name));
            }
        }
    }

    void addBeside(const std::string& above, const std::string& folder) {
        for (const FolderEntry& entry : disk_.entries(above)) {
            if (isFull()) {
                return;
            }
            const bool isSibling = entry.kind == DiskKind::folder && !entry.name.starts_with('.') &&
                                   extensionOf(entry.name) != "xcodeproj";
            if (const std::string path = resolvedPath(above, entry.name);
                isSibling && path != folder) {
                addIn(path);
            }
        }
    }

    DiskView disk_;
    std::size_t folders_ = 0;
    std::vector<std::string> bundles_;
};

std::size_t hashOf(const std::string& path) {
    return std::hash<std::string>()(path);
}

} // namespace

std::optional<std::string> ProjectListing::projectListingFile(const std::string& absolutePath) {
    const std::string file = resolvedPath("/", absolutePath);
    for (const std::string& bundle : BundleSearch().around(file)) {
        if (lists(bundle, file)) {
            return bundle;
        }
    }
    return std::nullopt;
}

bool ProjectListing::lists(const std::string& bundlePath, const std::string& file) {
    auto found = std::find_if(listings_.begin(), listings_.end(),
                              [&bundlePath](const auto& item) { return item.first == bundlePath; });
    if (found == listings_.end()) {
        forgetOldest();
        found = listings_.insert(listings_.end(), {bundlePath, read(bundlePath)});
    }
    const auto& dates = found->second.dates;
    const bool isCurrent = std::all_of(dates.begin(), dates.end(), [](const auto& date) {
        return diskStatusOf(date.first).stamp.modified == date.second;
    });
    if (!isCurrent) {
        found->second = read(bundlePath);
    }
    found->second.lastUse = ++uses_;
    const auto& files = found->second.files;
    return std::binary_search(files.begin(), files.end(), hashOf(file));
}

ProjectListing::Listing ProjectListing::read(const std::string& bundlePath) {
    Listing listing;
    DiskView disk;
    ProjectFiles files;
    const ProjectTree tree = buildProjectTree(bundlePath, disk, files);
    listing.dates = disk.folderDates();
    for (const std::string& source : tree.sources) {
        listing.dates.emplace_back(source, disk.status(source).stamp.modified);
    }
    for (const MapNode& node : tree.nodes) {
        if (node.kind == NodeKind::file && !node.absolutePath.empty()) {
            listing.files.push_back(hashOf(node.absolutePath));
        }
    }
    std::sort(listing.files.begin(), listing.files.end());
    return listing;
}

void ProjectListing::forgetOldest() {
    if (listings_.size() < kMostBundlesLookedAt) {
        return;
    }
    listings_.erase(std::min_element(listings_.begin(), listings_.end(),
                                     [](const auto& left, const auto& right) {
                                         return left.second.lastUse < right.second.lastUse;
                                     }));
}

} // namespace navrel
