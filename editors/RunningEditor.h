#pragma once

#include "project/Editor.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <functional>
#include <optional>

namespace navrel {

/// The file in front of the user.
struct ActiveFile {
    QByteArray path; ///< empty if the editor shows no file
    /// Whether the editor said so within the last ten seconds or so. If not, it has been busy or
    /// suspended since, and an editor that answers now is preferred.
    bool isCurrent = true;
    /// Whether the editor said so itself, within the last questions. It is busy otherwise.
    bool isFresh = true;
};

/// A place in a file, as the editor reports it.
struct EditorPlace {
    QByteArray path; ///< empty if no file is shown
    int line = 0;    ///< from 1; 0 if unknown
    int column = 0;  ///< from 1, in code points; 0 if unknown
    bool isModified = false;
    bool operator==(const EditorPlace&) const = default;
};

/// How a jump ended.
struct JumpResult {
    EditorOutcome outcome; ///< `notRunning` if no editor of this kind answers
    /// Where the user was before; nil if the editor did not say.
    std::optional<EditorPlace> before;

    /// Whether there was an editor to ask.
    bool isAnswer() const { return outcome.kind != EditorOutcome::Kind::notRunning; }
};

/// One kind of editor, of which none, one or several may be running. It is looked for again at each
/// call, since users start and quit editors at any time. Paths are absolute, in the file system's
/// bytes.
class RunningEditor {
public:
    virtual ~RunningEditor() = default;

    /// The file in front of the user. An editor that answered before and is now busy or suspended
    /// keeps its last answer for as long as it runs. Nil if no running editor has ever answered.
    /// Blocks until the deadline at most. Main thread.
    virtual std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) = 0;

    /// Shows a file and selects the line (1-based) if one is given. The user can go back by the
    /// editor's own means. Bodies must keep unsaved changes and must not ask the user anything.
    /// False if no editor answers: then nothing was done. If one answers and cannot show the file,
    /// that is logged, and the result is true. Blocks until the deadline at most. Not on the main
    /// thread.
    virtual bool open(const QByteArray& path, std::optional<int> line,
                      const QDeadlineTimer& deadline) = 0;

    /// Its name for users; empty if it cannot jump.
    virtual QString name() const { return {}; }

    /// Whether the editor that answered or moved last is suspended, as far as its process shows.
    /// Main thread; never blocks.
    virtual bool isSuspended() const { return false; }

    /// As `open`, with three differences: it may give up before the deadline, the outcome is
    /// returned and not logged, and if a column is given the cursor goes there and nothing is
    /// selected. Not on the main thread.
    virtual JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
        static_cast<void>(place), static_cast<void>(deadline);
        return {};
    }

    /// How recent a reported place is.
    enum class PlaceNews {
        isThere,  ///< it was so when following began: the user may be in another editor
        cameThere ///< the user just went there, so this editor has the focus
    };
    using PlaceObserver = std::function<void(const EditorPlace& place, PlaceNews news)>;
    /// Calls `observer` on the main thread whenever the user moves to another place; null ends
    /// that. Without an observer the editor is not asked. Main thread; never blocks.
    virtual void follow(PlaceObserver observer) { static_cast<void>(observer); }

    /// Goes one step back in the editor's own history of places. Editors that cannot do that keep
    /// this body, which returns `notRunning`. Not on the main thread.
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
