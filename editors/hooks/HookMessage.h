#pragma once

#include "editors/RunningEditor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// The lines that editors' plug-ins and Navrel write to each other: one JSON object each, in UTF-8,
/// with a line feed at its end. Pure. Any thread.
namespace navrel {

/// Longer lines end the conversation: a path and a few numbers take a hundredth of it.
inline constexpr qsizetype kMaximumHookLine = 64 * 1024;

/// What a plug-in says.
struct HookMessage {
    enum class Kind {
        Hello,   ///< who it is: `editor`, `folders`
        Active,  ///< where its user is: `place`
        Opened,  ///< it did what `request` asked for
        Refused, ///< it did not, for `reason`
        Other,   ///< something that a later version may understand
    };
    Kind kind = Kind::Other;
    QString editor;      ///< for users: "VS Code"
    QStringList folders; ///< absolute paths that its window shows
    EditorPlace place;
    qint64 request = 0;
    QString reason;
};

/// Nothing for what is no JSON object. A key of another type than expected counts as absent.
std::optional<HookMessage> hookMessageFrom(const QByteArray& line);

/// Asks a plug-in to go to a place. It answers with the number of the request.
QByteArray hookOpenLine(const EditorPlace& place, qint64 request);
/// Asks a plug-in to go one step back in its editor's own list of places. It answers likewise.
QByteArray hookBackLine(qint64 request);

} // namespace navrel
