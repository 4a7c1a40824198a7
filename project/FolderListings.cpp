#include "project/FolderListings.h"

#include "support/files/FileDates.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <memory>
#include <utility>

namespace navrel {

namespace {

/// Folders that Xcode shows as files.
constexpr std::array<QByteArrayView, 27> kBundleExtensions{
    "app",        "appex",      "arobject",    "bundle",       "dSYM",        "docc",
    "framework",  "icon",       "kext",        "mlmodelc",     "mlpackage",   "nib",
    "playground", "plugin",     "prefPane",    "rcproject",    "rtfd",        "scnassets",
    "xcarchive",  "xcassets",   "xcdatamodel", "xcdatamodeld", "xcframework", "xcmappingmodel",
    "xcodeproj",  "xcstickers", "xcworkspace"};

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, FolderCloser>;

/// The entry as it is shown; nil where it is left out.
std::optional<ListedEntry> shownEntry(int folder, const char* name) {
    const QByteArray bytes(name);
    struct stat status = {};
    if (bytes.startsWith('.') || !isValidUTF8(bytes) || ::fstatat(folder, name, &status, 0) != 0) {
        return std::nullopt;
    }
    const bool isFolder = S_ISDIR(status.st_mode);
    if (!isFolder && !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    struct stat itself = {};
    const bool isLink = isFolder && ::fstatat(folder, name, &itself, AT_SYMLINK_NOFOLLOW) == 0 &&
                        S_ISLNK(itself.st_mode);
    return ListedEntry{bytes, isFolder && !isBundleName(bytes), isLink};
}

ListedEntries readEntries(const QByteArray& path) {
    ListedEntries entries;
    const OpenFolder folder(canNameAFile(path) ? ::opendir(path.constData()) : nullptr);
    if (folder == nullptr) {
        return entries;
    }
    while (entries.size() < FolderListings::kMostEntries) {
        const struct dirent* const entry = ::readdir(folder.get());
        if (entry == nullptr) {
            break;
        }
        if (auto shown = shownEntry(::dirfd(folder.get()), entry->d_name)) {
            entries.push_back(*std::move(shown));
        }
    }
    std::sort(
        entries.begin(), entries.end(),
        [](const ListedEntry& left, const ListedEntry& right) { return left.name < right.name; });
    return entries;
}

} // namespace

bool isBundleName(QByteArrayView name) {
    const qsizetype dot = name.lastIndexOf('.');
    return dot > 0 &&
           std::any_of(kBundleExtensions.begin(), kBundleExtensions.end(),
                       [&](QByteArrayView extension) {
                           return name.sliced(dot + 1).compare(extension, Qt::CaseInsensitive) == 0;
                       });
}

std::optional<FolderNumber> folderNumberAt(const QByteArray& path) {
    struct stat status = {};
    const bool isThere =
        canNameAFile(path) && ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
    return isThere ? std::optional(FolderNumber{status.st_dev, status.st_ino}) : std::nullopt;
}

const ListedEntries& FolderListings::entriesOf(const QByteArray& folder) {
    Listing& listing = listings_[folder];
    if (!isCurrent(folder, listing)) {
        read(folder, listing);
    }
    listing.pass = pass_;
    return listing.entries;
}

bool FolderListings::stillHold() {
    listings_.removeIf([this](const auto& listing) { return listing.value().pass != pass_; });
    bool isSame = true;
    for (auto listing = listings_.begin(); listing != listings_.end() && isSame; ++listing) {
        if (!isCurrent(listing.key(), *listing)) {
            const ListedEntries before = listing->entries;
            read(listing.key(), *listing);
            isSame = listing->entries == before;
        }
    }
    return isSame;
}

std::optional<FolderListings::Identity> FolderListings::identityOf(const QByteArray& folder) {
    struct stat status = {};
    if (!canNameAFile(folder) || ::stat(folder.constData(), &status) != 0) {
        return std::nullopt;
    }
    return Identity{
        {status.st_dev, status.st_ino}, modificationDateIn(status), statusChangeDateIn(status)};
}

bool FolderListings::isCurrent(const QByteArray& folder, const Listing& listing) const {
    return listing.identity && listing.identity == identityOf(folder);
}

void FolderListings::read(const QByteArray& folder, Listing& listing) {
    const qint64 start = currentFileDate();
    const auto identity = identityOf(folder);
    listing.entries = readEntries(folder);
    const bool isProven =
        identity && isSettled(identity->statusChanged, start) && identity == identityOf(folder);
    listing.identity = isProven ? identity : std::nullopt;
    ++readings_;
}

} // namespace navrel
