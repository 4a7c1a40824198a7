#pragma once

#include "project/FolderListings.h"

#include <QByteArray>
#include <QByteArrayView>

#include <string_view>
#include <vector>

namespace navrel {

/// A folder on disk that a group of the project mirrors (PBXFileSystemSynchronizedRootGroup),
/// during one walk: what lies below it is not in the project file. One thread at a time.
class SynchronizedFolder {
public:
    /// The identifier and the path of the group.
    SynchronizedFolder(std::string_view groupIdentifier, QByteArray path);

    /// Identifier of a file or folder below: 24 upper-case hexadecimal digits like those of the
    /// project file, made of the group's identifier and the path relative to the folder, so that it
    /// stays the same for as long as both do.
    QByteArray identifierOf(const QByteArray& path) const;

    /// Whether an entry, at that path, is shown with what lies in it. A link to a folder that is
    /// shown already, or that leads back above, is not: so loops of links end.
    bool isEntered(const ListedEntry& entry, const QByteArray& path);

private:
    QByteArray groupIdentifier_;
    QByteArray path_;
    std::vector<FolderNumber> followed_; ///< through links
};

} // namespace navrel
