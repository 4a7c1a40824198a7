#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace navrel {

/// Where the user is in the editor.
struct EditorPosition {
    QString path;            ///< absolute; empty where no file is shown
    int line = 0;            ///< from 1; 0 where it is not known
    int column = 0;          ///< from 1, in characters; 0 where it is not known
    bool isModified = false; ///< whether the file has unsaved changes
    bool operator==(const EditorPosition&) const = default;
};

/// How a request to lead the editor somewhere ended.
struct EditorOutcome {
    enum class Kind {
        opened,
        asksUser,   ///< the editor waits for the user's next key: nothing was done
        refused,    ///< the editor could not, or must not
        notRunning, ///< no editor answers
    };
    Kind kind = Kind::notRunning;
    QString editor; ///< its name for users, "Neovim"; empty where none answers
    QString reason; ///< one sentence for users; empty where the file was opened
    QString hint;   ///< one sentence: what to do about it; empty where the file was opened

    bool isOpen() const { return kind == Kind::opened; }
};

/// The editor that the user works in. Main thread. A query blocks while the editor answers; the
/// body bounds that time.
class Editor {
public:
    virtual ~Editor() = default;

    /// Path of the .xcodeproj bundle of the project that is active in the editor: the empty string
    /// when none is, nil when the editor could not be asked.
    virtual std::optional<QString> activeProjectPath() = 0;

    /// Name, without folder, of the file in the editor's front window: the empty string when there
    /// is none, nil when the editor could not be asked.
    virtual std::optional<QString> activeFileName() = 0;

    /// Shows a file and, where a line (1-based) is given, selects it. Returns at once; no result is
    /// reported.
    virtual void openFile(const QString& path, std::optional<int> line) = 0;

    /// Selects a line (1-based) of the file in front: what a request comes to that names a line and
    /// no file. Returns at once; no result is reported. An editor in which opening and selecting
    /// are one operation does nothing: without its first half it has no meaning there.
    virtual void selectLine(int line) { static_cast<void>(line); }

    // Leading and following, for clients that show the code beside the editor. An editor that can
    // do none of it keeps these bodies.

    /// The editor's name for users, "Neovim"; empty where none has answered. Never blocks.
    virtual QString name() { return {}; }

    /// How the editor that `name` names stood when it was last heard.
    enum class Presence {
        answers,
        silent, ///< it has not answered for a while
        stopped ///< its process is suspended
    };
    /// Never blocks.
    virtual Presence presence() { return Presence::answers; }

    using MoveObserver = std::function<void(const EditorPosition& position)>;
    using OutcomeObserver = std::function<void(const EditorOutcome& outcome)>;

    /// Where the user was when the editor last said so; nil while nobody follows. Never blocks.
    virtual std::optional<EditorPosition> position() { return std::nullopt; }

    /// Has `observer` called on the main thread whenever the user gets to another place, from now
    /// on, in place of any observer before; null ends that. Nothing is asked of an editor while
    /// there is none.
    virtual void onMove(MoveObserver observer) { static_cast<void>(observer); }

    /// Shows a file at a line (from 1; 0 for none), and says how that ended: once, on any thread.
    /// A column (from 1, in characters; 0 for none) puts the cursor there; without one the line is
    /// selected. An editor that knows no columns ignores it. Returns at once. The file system's
    /// rules for what may be opened are the caller's.
    virtual void open(const QString& path, int line, int column, OutcomeObserver done);

    /// Goes back to where the user was before the last `open` that has not been gone back from:
    /// file, line and column, also where the file was closed since. As `open` otherwise.
    virtual void back(OutcomeObserver done);

protected:
    Editor() = default;
    Editor(const Editor&) = default;
    Editor& operator=(const Editor&) = default;
};

} // namespace navrel
