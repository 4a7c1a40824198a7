#pragma once

#include "project/FolderwiseSurvey.h"

#include <QByteArray>

#include <optional>
#include <unordered_map>
#include <vector>

namespace navrel {

/// The modification dates of a project's files, as the file system returned them during one pass.
/// Each path is looked up once, for its date and its existence. Later `stillHolds` looks all paths
/// up again. One thread at a time.
class FileSurvey {
public:
    /// As `modificationDateOfFile`, but looks a path up only the first time. A path that can name
    /// no file counts as missing and is not remembered, since it may have any length.
    std::optional<qint64> modificationDate(const QByteArray& path);

    bool exists(const QByteArray& path) { return modificationDate(path).has_value(); }

    /// How many paths are remembered.
    std::size_t size() const { return asked_.size(); }

    /// Looks every path up again. True if all dates are as remembered; the remembered dates stay in
    /// either case.
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
