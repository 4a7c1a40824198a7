#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>

#include <optional>
#include <sys/stat.h>
#include <sys/types.h>
#include <vector>

namespace navrel {

/// An entry of a folder, as a project that is synchronized with the folder shows it.
struct ListedEntry {
    QByteArray name;
    bool isFolder; ///< shown with its contents; otherwise shown as one file
    bool isLink;   ///< a symbolic link, whose target `isFolder` describes
    bool operator==(const ListedEntry& other) const = default;
};
using ListedEntries = std::vector<ListedEntry>;

/// Whether a folder of that name counts as one file: "Assets.xcassets" and its kind.
bool isBundleName(QByteArrayView name);

/// Identifies a folder on this machine.
struct FolderNumber {
    dev_t device;
    ino_t inode;
    bool operator==(const FolderNumber& other) const = default;
};

/// The number of the folder at a path, symbolic links followed; nil if there is no folder.
std::optional<FolderNumber> folderNumberAt(const QByteArray& path);

/// The entries of folders. A folder is read again only if it has changed, since those of a large
/// project are asked for once a second. One thread at a time.
class FolderListings {
public:
    /// How many entries of a folder are read at most: more than any project has.
    static constexpr std::size_t kMostEntries = 100'000;

    /// The files and folders in a folder, ordered by name. Leaves out hidden and special files, and
    /// names that are not UTF-8. Empty if the folder cannot be read. Valid until the next call.
    const ListedEntries& entriesOf(const QByteArray& folder);

    /// Whether every folder that was asked for since `beginPass` still has the same entries.
    /// Forgets the listings of all other folders.
    bool stillHold();

    /// How often a folder was read.
    quint64 readings() const { return readings_; }

    /// Begins a new pass, which may use the listings of the passes before.
    void beginPass() { ++pass_; }

private:
    /// A folder's state. Once it is older than the resolution of the file system's dates, the
    /// entries cannot change without changing it.
    struct Identity {
        FolderNumber number;
        qint64 modified;
        qint64 statusChanged;
        bool operator==(const Identity& other) const = default;
    };
    struct Listing {
        std::optional<Identity> identity; ///< nil while it may still change unseen
        ListedEntries entries;
        quint64 pass = 0;
    };

    static std::optional<Identity> identityOf(const QByteArray& folder);
    bool isCurrent(const QByteArray& folder, const Listing& listing) const;
    void read(const QByteArray& folder, Listing& listing);

    QHash<QByteArray, Listing> listings_;
    quint64 pass_ = 0;
    quint64 readings_ = 0;
};

} // namespace navrel
