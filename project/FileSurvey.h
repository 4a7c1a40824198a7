#pragma once

#include <QByteArray>

#include <optional>
#include <unordered_map>
#include <vector>

namespace navrel {

/// No longer path names a file in any file system (PATH_MAX, its terminating zero included).
inline constexpr qsizetype kMaximumPathLength = 4095;

/// Modification date of what lies at a path, symbolic links followed, in nanoseconds since 1970;
/// nil when nothing is there. Two dates are equal exactly when the file system's are.
std::optional<qint64> modificationDateOfFile(const QByteArray& path);

/// What the file system said about the files of a project during one pass. Each path is asked about
/// once: one answer serves the date and the existence check. Later all questions can be put again,
/// at the lowest cost, to see whether the answers still hold. Main thread only.
class FileSurvey {
public:
    /// As `modificationDateOfFile`, or the answer that was given before.
    std::optional<qint64> modificationDate(const QByteArray& path);

    bool exists(const QByteArray& path) { return modificationDate(path).has_value(); }

    /// Asks about every path again. True when all answers are what they were; else the survey keeps
    /// the former ones.
    bool stillHolds();

    /// Forgets all answers.
    void clear();

private:
    struct Answer {
        const QByteArray* path;
        qsizetype nameStart;
        std::optional<qint64> date;
    };
    struct Hash {
        std::size_t operator()(const QByteArray& path) const;
    };

    void sortByFolder();
    bool folderStillHolds(std::size_t first, std::size_t end) const;

    // The paths' addresses are stable, so that the sorted answers need not copy them.
    std::unordered_map<QByteArray, std::optional<qint64>, Hash> answers_;
    // The same, those of a folder side by side; empty until they are needed.
    std::vector<Answer> byFolder_;
};

} // namespace navrel
