#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QHash>

#include <optional>
#include <sys/stat.h>
#include <sys/types.h>
#include <vector>

namespace navrel {

/// What lies in a folder, as a project that is synchronized with it shows it.
struct ListedEntry {
    QByteArray name;
    bool isFolder; ///< one that is shown with what lies in it
    bool isLink;   ///< a symbolic link to what `isFolder` says
    bool operator==(const ListedEntry& other) const = default;
};
using ListedEntries = std::vector<ListedEntry>;

/// Whether a folder of that name counts as one file: "Assets.xcassets" and its kind.
bool isBundleName(QByteArrayView name);

/// What tells a folder from every other.
struct FolderNumber {
    dev_t device;
    ino_t inode;
    bool operator==(const FolderNumber& other) const = default;
};

/// That of the folder at a path, symbolic links followed; nil where no folder is.
std::optional<FolderNumber> folderNumberAt(const QByteArray& path);

/// The entries of folders, read again only where a folder has changed: the folders of a large
/// project are asked for once a second. One thread at a time.
class FolderListings {
public:
    /// No more entries of a folder are read: so many files no project has.
    static constexpr std::size_t kMostEntries = 100'000;

    /// Files and folders in a folder, by name. Left out is what is hidden, what is no file or
    /// folder (it would never be opened), and a name that is not UTF-8. None where the folder
    /// cannot be read. Valid until the next call.
    const ListedEntries& entriesOf(const QByteArray& folder);

    /// Whether every folder that was asked for since `clear` still has the same entries.
    bool stillHold();

    /// How often a folder was read.
    quint64 readings() const { return readings_; }

    /// The folders asked for from now on are a new pass. What is known of the former ones serves
    /// the pass, and is forgotten at the next `beginPass` where it did not.
    void beginPass() { ++pass_; }

private:
    /// A folder's state: its entries cannot change without another one, once that is older than
    /// the steps in which dates advance.
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
