#pragma once

#include <QByteArray>
#include <QHash>

#include <cstddef>
#include <optional>
#include <vector>

namespace navrel {

/// The answers of a survey of files, arranged so that all questions can be put again at the lowest
/// cost: a folder is opened once, from the folder above it where that is open, and its files are
/// asked about by their names. The answers are those of `stat` by absolute path, since the same
/// components are resolved, once instead of once a file. One thread at a time.
class FolderwiseSurvey {
public:
    using Date = std::optional<qint64>;

    /// One answer: what was asked about, and the modification date that was given.
    struct Answer {
        const QByteArray& path;
        Date date;
    };

    /// Takes the answers in the order of the questions, in which neighbours tend to lie near to
    /// each other on the disk too. The paths can name files, and may go afterwards.
    explicit FolderwiseSurvey(const std::vector<Answer>& answers);

    /// Asks about every path again. Whether all answers are what they were.
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
    /// Those on the way to the folder at hand, outermost first.
    class OpenFolders;

    Folder& folderAt(const QByteArray& path);
    bool stillHolds(const Folder& folder, int descriptor) const;

    std::vector<Folder> folders_;
    QHash<QByteArray, std::size_t> folderNumbers_;
    // Side by side, each ended by a zero, so that asking runs through memory in one direction.
    std::vector<char> names_;
};

} // namespace navrel
