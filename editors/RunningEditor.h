#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

#include <optional>

namespace navrel {

/// The file that the person looks at.
struct ActiveFile {
    QByteArray path; ///< empty when that is none
    /// Whether it is known to be so, or was a moment ago. If not, the editor has been busy for
    /// longer, or stopped: what another editor says now is worth more.
    bool isCurrent = true;
};

/// An editor of one kind, as far as one runs: asked anew every time, since people start and leave
/// editors as they like. Paths are absolute and the bytes that the file system takes.
class RunningEditor {
public:
    virtual ~RunningEditor() = default;

    /// The file that the person looks at. An editor that answered before and is merely busy or
    /// stopped stands by that answer for as long as it is there; nil when there is none that ever
    /// answered. Blocks until the deadline at the most. Main thread.
    virtual std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) = 0;

    /// Shows a file and, where a line (1-based) is given, selects it; leaves a way back, keeps
    /// unsaved changes and asks the person nothing. False when no editor answers, with nothing
    /// done; an editor that answers and cannot is logged. Blocks until the deadline at the most.
    /// Not on the main thread.
    virtual bool open(const QByteArray& path, std::optional<int> line,
                      const QDeadlineTimer& deadline) = 0;

protected:
    RunningEditor() = default;
    RunningEditor(const RunningEditor&) = default;
    RunningEditor& operator=(const RunningEditor&) = default;
};

} // namespace navrel
