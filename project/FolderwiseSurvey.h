#pragma once

#include <QByteArray>
#include <QHash>

#include <cstddef>
#include <optional>
#include <vector>

namespace navrel {

/// The results of a FileSurvey, arranged so that all files can be looked up again at the lowest
/// cost: each folder is opened once, from the folder above it if that is open, and its files are
/// looked up by their names in it. The results equal those of `stat` with absolute paths: the same
/// components are resolved, but once for a folder instead of once for a file. One thread at a time.
class FolderwiseSurvey {
public:
    using Date = std::optional<qint64>;

    /// A path, and its modification date; nil if nothing was there.
    struct Answer {
        const QByteArray& path;
        Date date;
    };

    /// The answers should be in the order of the first survey: neighbours in it tend to be near
    /// each other on the disk too. Each path must be one that can name a file. The paths are
    /// copied.
    explicit FolderwiseSurvey(const std::vector<Answer>& answers);

    /// Looks every path up again. True if all dates are as given.
    bool stillHolds() const;

private:
    struct File {
        std::size_t name; // where it starts in `names_`
        Date date;
    };
    struct Folder {
        QByteArray path;             // with a slash at its end; empty for the working directory
        std::optional<Date> ownDate; // where the folder itself was asked about
        std::vector<File> files;
    };
    /// The folders from the root to the current one, outermost first.
    class OpenFolders;

    Folder& folderAt(const QByteArray& path);
    bool stillHolds(const Folder& folder, int descriptor) const;

    std::vector<Folder> folders_;
    QHash<QByteArray, std::size_t> folderNumbers_;
    // Side by side, each ended by a zero, so that asking runs through memory in one direction.
    std::vector<char> names_;
};

} // namespace navrel
