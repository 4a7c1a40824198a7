#pragma once

#include "project/Editor.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <functional>
#include <optional>

namespace navrel {

/// The file that the user looks at.
struct ActiveFile {
    QByteArray path; ///< empty when that is none
    /// Whether it is known to be so, or was a moment ago. If not, the editor has been busy for
    /// longer, or stopped: what another editor says now is worth more.
    bool isCurrent = true;
};

/// A place in a file, as the editor has it.
struct EditorPlace {
    QByteArray path; ///< empty where no file is shown
    int line = 0;    ///< from 1; 0 for none
    int column = 0;  ///< from 1, in characters (code points); 0 for none
    bool isModified = false;
    bool operator==(const EditorPlace&) const = default;
};

/// How a jump ended.
struct JumpResult {
    EditorOutcome outcome; ///< `notRunning` where no editor of this kind answers
    /// Where the user was before; nil where the editor did not say.
    std::optional<EditorPlace> before;

    /// Whether there was an editor to ask.
    bool isAnswer() const { return outcome.kind != EditorOutcome::Kind::notRunning; }
};

/// An editor of one kind, as far as one runs: asked again every time, since people start and leave
/// editors as they like. Paths are absolute and the bytes that the file system takes.
class RunningEditor {
public:
    virtual ~RunningEditor() = default;

    /// The file that the user looks at. An editor that answered before and is merely busy or
    /// stopped stands by that answer for as long as it is there; nil when there is none that ever
    /// answered. Blocks until the deadline at most. Main thread.
    virtual std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) = 0;

    /// Shows a file and, where a line (1-based) is given, selects it; leaves a way back, keeps
    /// unsaved changes and asks the user nothing. False when no editor answers, with nothing
    /// done; an editor that answers and cannot is logged. Blocks until the deadline at most.
    /// Not on the main thread.
    virtual bool open(const QByteArray& path, std::optional<int> line,
                      const QDeadlineTimer& deadline) = 0;

    /// Its name for users; empty for one that cannot jump.
    virtual QString name() const { return {}; }

    /// Whether the process of the editor that answered or moved last is suspended, as far as that
    /// can be seen without asking it. Main thread; never blocks.
    virtual bool isSuspended() const { return false; }

    /// As `open`, but it gives up sooner, reports how it ended instead of logging, and goes to the
    /// column where one is given, with nothing selected. Not on the main thread.
    virtual JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
        static_cast<void>(place), static_cast<void>(deadline);
        return {};
    }

    /// What a reported place says about the user.
    enum class PlaceNews {
        isThere,  ///< the place was found when following began: the user may be elsewhere
        cameThere ///< the user just went there, so this is the editor that has the focus
    };
    using PlaceObserver = std::function<void(const EditorPlace& place, PlaceNews news)>;
    /// Has `observer` called on the main thread when the user gets to another place; null ends
    /// that. Nothing is asked of the editor while there is none. Main thread; never blocks.
    virtual void follow(PlaceObserver observer) { static_cast<void>(observer); }

    /// Takes one step back in the editor's own list of places, if it can be asked to. Not on the
    /// main thread.
    virtual JumpResult goBack(const QDeadlineTimer& deadline) {
        static_cast<void>(deadline);
        return {};
    }

protected:
    RunningEditor() = default;
    RunningEditor(const RunningEditor&) = default;
    RunningEditor& operator=(const RunningEditor&) = default;
};

} // namespace navrel
