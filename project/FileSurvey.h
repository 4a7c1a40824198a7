#pragma once

#include "project/FolderwiseSurvey.h"

#include <QByteArray>

#include <optional>
#include <unordered_map>
#include <vector>

namespace navrel {

/// What the file system said about the files of a project during one pass. Each path is asked about
/// once: one answer serves the date and the existence check. Later all questions can be asked again
/// to see whether the answers still hold. One thread at a time.
class FileSurvey {
public:
    /// As `modificationDateOfFile`, or the answer that was given before. A path that can name no
    /// file counts as missing and is not remembered, since it may have any length.
    std::optional<qint64> modificationDate(const QByteArray& path);

    bool exists(const QByteArray& path) { return modificationDate(path).has_value(); }

    /// How many paths are remembered.
    std::size_t size() const { return asked_.size(); }

    /// Asks about every path again. True when all answers are what they were; the survey keeps the
    /// former ones in any case.
    bool stillHolds();

    /// Forgets all answers.
    void clear();

private:
    struct Hash {
        std::size_t operator()(const QByteArray& path) const;
    };

    std::unordered_map<QByteArray, std::optional<qint64>, Hash> dates_;
    // The paths in the order of the questions; they live in the map.
    std::vector<const QByteArray*> asked_;
    // Made when it is first needed after a question.
    std::optional<FolderwiseSurvey> folderwise_;
};

} // namespace navrel
