#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace navrel {

/// The words that a line can be completed with; each is asked for only when it is needed.
struct CompletionWords {
    std::function<QStringList()> files;  ///< names, and paths where names are not enough
    std::function<QStringList()> groups; ///< paths
    std::function<QStringList()> types;
    std::function<QStringList()> extensions;
    std::function<QStringList(const QString& file)> symbols; ///< of one file
};

/// The ways to complete the end of a line.
struct Completion {
    qsizetype begin = 0;    ///< of the part that is replaced, which goes to the end of the line
    QStringList candidates; ///< for that part, sorted; empty for none
    /// The longest prefix that all candidates share, in any letter case; as the first one has it.
    QString common() const;
};

/// The completions of a line, which must end at the cursor. Pure, except that it calls `words`.
Completion completionOf(const QString& line, const CompletionWords& words);

} // namespace navrel
