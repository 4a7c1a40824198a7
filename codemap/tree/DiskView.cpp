#include "codemap/tree/DiskView.h"

#include "codemap/tree/Paths.h"

#include <algorithm>
#include <dirent.h>
#include <memory>
#include <set>
#include <utility>

namespace navrel {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

std::string pathIn(const std::string& folder, const std::string& name) {
    return folder == "/" ? folder + name : folder + '/' + name;
}

DiskKind kindOf(const std::string& folder, const struct dirent& entry) {
    switch (entry.d_type) {
    case DT_REG:
        return DiskKind::file;
    case DT_DIR:
        return DiskKind::folder;
    case DT_LNK:
    case DT_UNKNOWN:
        return diskStatusOf(pathIn(folder, entry.d_name)).kind;
    default:
        return DiskKind::special;
    }
}

bool isSelfOrParent(std::string_view name) {
    return name == "." || name == "..";
}

} // namespace

DiskView::DiskView(FolderWatch* watch, std::string top) : watch_(watch), top_(std::move(top)) {}

DiskView::~DiskView() {
    forgetAll();
}

DiskStatus DiskView::status(const std::string& path) {
    Folder& folder = folderAt(parentFolder(path));
    const auto [found, isNew] = folder.statuses.try_emplace(std::string(lastPart(path)));
    if (isNew) {
        found->second = diskStatusOf(path);
        if (found->second.isLink) {
            links_.emplace(parentFolder(path), lastPart(path));
        }
    }
    return found->second;
}

const std::vector<FolderEntry>& DiskView::entries(const std::string& path) {
    Folder& folder = folderAt(path);
    if (!folder.entries) {
        folder.modified = diskStatusOf(path).stamp.modified;
        folder.entries = read(path);
    }
    return *folder.entries;
}

DiskView::Folder& DiskView::folderAt(std::string_view path) {
    std::string key(path);
    const auto [found, isNew] = folders_.try_emplace(key);
    Folder& folder = found->second;
    if (folder.building != building_ || isNew) {
        folder.building = building_;
        // References to a map's values stay valid while others come.
        watchAncestors(key);
    }
    if (isNew && watch_ != nullptr && !watch_->add(key)) {
        hasUnwatched_ = true;
    }
    return folder;
}

/// A renamed folder is noticed in the folder that holds it.
void DiskView::watchAncestors(const std::string& path) {
    const std::string_view above = parentFolder(path);
    if (path != "/" && !isWithin(top_, path)) {
        status(path);
    } else if (path == top_ && above != path && !folders_.contains(std::string(above))) {
        status(path);
    }
}

void DiskView::endBuilding() {
    std::erase_if(folders_, [this](const auto& item) {
        const bool isUnused = item.second.building != building_;
        if (isUnused && watch_ != nullptr) {
            watch_->remove(item.first);
        }
        return isUnused;
    });
    std::erase_if(links_, [this](const auto& link) { return !folders_.contains(link.first); });
}

DiskView::Changes DiskView::take(const std::vector<FolderEvent>& events) {
    Changes changes;
    std::set<std::pair<std::string, std::string>> contents;
    std::set<std::pair<std::string, std::string>> names;
    for (const FolderEvent& event : events) {
        switch (event.kind) {
        case FolderEvent::Kind::overflow:
            forgetAll();
            changes.tree = true;
            return changes;
        case FolderEvent::Kind::isGone:
            changes.tree |= forget(event.folder);
            break;
        case FolderEvent::Kind::names:
            names.emplace(event.folder, event.name);
            break;
        case FolderEvent::Kind::content:
            contents.emplace(event.folder, event.name);
            break;
        }
    }
    std::set<std::string> listings;
    for (const auto& [folder, name] : names) {
        changes.tree |= forget(pathIn(folder, name));
        listings.insert(folder);
    }
    contents.merge(names);
    for (const auto& [folder, name] : contents) {
        lookAtName(folder, name, true, changes);
    }
    for (const std::string& path : listings) {
        if (const auto found = folders_.find(path); found != folders_.end()) {
            lookAtEntries(path, found->second, changes);
        }
    }
    return changes;
}

DiskView::Changes DiskView::lookAgain() {
    Changes changes;
    for (auto& [path, folder] : folders_) {
        for (auto& [name, status] : folder.statuses) {
            lookAtName(path, name, false, changes);
        }
        lookAtEntries(path, folder, changes);
    }
    return changes;
}

DiskView::Changes DiskView::lookAtLinks() {
    Changes changes;
    for (const auto& [folder, name] : links_) {
        lookAtName(folder, name, false, changes);
    }
    return changes;
}

void DiskView::lookAtName(const std::string& path, const std::string& name, bool force,
                          Changes& changes) {
    const auto folder = folders_.find(path);
    if (folder == folders_.end()) {
        return;
    }
    const auto known = folder->second.statuses.find(name);
    if (known == folder->second.statuses.end()) {
        return;
    }
    const std::string file = pathIn(path, name);
    const DiskStatus status = diskStatusOf(file);
    const DiskStatus before = std::exchange(known->second, status);
    if (status.isLink) {
        links_.emplace(path, name);
    }
    if (status.kind != before.kind) {
        changes.tree = true;
    } else if (status.kind == DiskKind::file) {
        if (force || status.stamp != before.stamp || !before.isSettled) {
            changes.contents.push_back(file);
        }
    } else if (status.kind == DiskKind::folder) {
        const bool isAnother =
            status.stamp.inode != before.stamp.inode || status.stamp.device != before.stamp.device;
        changes.tree |= isAnother || (force && forget(file));
    }
}

void DiskView::lookAtEntries(const std::string& path, Folder& folder, Changes& changes) {
    if (!folder.entries) {
        return;
    }
    const std::int64_t modified = diskStatusOf(path).stamp.modified;
    std::vector<FolderEntry> entries = read(path);
    folder.modified = modified;
    changes.tree |= entries != *folder.entries;
    folder.entries = std::move(entries);
}

/// Drops what is known of a folder and of all below it. Returns whether anything was.
bool DiskView::forget(const std::string& path) {
    if (!folders_.contains(path)) {
        return false;
    }
    std::erase_if(folders_, [this, &path](const auto& item) {
        const bool isBelow = isWithin(item.first, path);
        if (isBelow && watch_ != nullptr) {
            watch_->remove(item.first);
        }
        return isBelow;
    });
    return true;
}

void DiskView::forgetAll() {
    for (const auto& [path, folder] : folders_) {
        if (watch_ != nullptr) {
            watch_->remove(path);
        }
    }
    folders_.clear();
}

std::vector<FolderEntry> DiskView::read(const std::string& path) {
    std::vector<FolderEntry> entries;
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(path.c_str()));
    while (folder && entries.size() < kMaximumFolderEntries) {
        const struct dirent* const entry = ::readdir(folder.get());
        if (entry == nullptr) {
            break;
        }
        if (!isSelfOrParent(entry->d_name)) {
            entries.push_back({entry->d_name, kindOf(path, *entry)});
        }
    }
    std::sort(
        entries.begin(), entries.end(),
        [](const FolderEntry& left, const FolderEntry& right) { return left.name < right.name; });
    return entries;
}

std::vector<std::pair<std::string, std::int64_t>> DiskView::folderDates() const {
    std::vector<std::pair<std::string, std::int64_t>> dates;
    for (const auto& [path, folder] : folders_) {
        if (folder.entries) {
            dates.emplace_back(path, folder.modified);
        }
    }
    return dates;
}

} // namespace navrel
