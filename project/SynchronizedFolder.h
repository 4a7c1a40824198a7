#pragma once

#include "project/FolderListings.h"

#include <QByteArray>
#include <QByteArrayView>

#include <string_view>
#include <vector>

namespace navrel {

/// A folder on disk that a group of the project mirrors (PBXFileSystemSynchronizedRootGroup),
/// during one walk: its files are not in the project file. One thread at a time.
class SynchronizedFolder {
public:
    /// Takes the identifier and the resolved path of the group.
    SynchronizedFolder(std::string_view groupIdentifier, QByteArray path);

    /// The identifier of a file or folder below: 24 upper-case hexadecimal digits, like those of
    /// the project file. It is computed from the group's identifier and the path relative to the
    /// folder, so it stays the same as long as these do.
    QByteArray identifierOf(const QByteArray& path) const;

    /// Whether an entry, at that path, is shown with its contents. False for a link to a folder
    /// that is shown already or contains this one, so that loops of links end.
    bool isEntered(const ListedEntry& entry, const QByteArray& path);

private:
    QByteArray groupIdentifier_;
    QByteArray path_;
    std::vector<FolderNumber> followed_; ///< through links
};

} // namespace navrel
