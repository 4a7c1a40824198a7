#pragma once

#include "editors/ActiveProject.h"
#include "editors/EditorTrail.h"
#include "editors/RunningEditor.h"
#include "project/Editor.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace navrel {

class DispatchQueue;

/// The editor that the user has open just now: of several kinds, the one that the user moved in
/// last as far as editors report that, otherwise the first that answers when asked. The active
/// project is that of the active file, as `ActiveProject` finds it.
///
/// An editor that answered before and is only busy (half a command, a prompt) or stopped counts as
/// showing what it showed. For about ten seconds no other one is asked in its place; from then on,
/// the next that answers is followed; where none does, its last answer stands for as long as it is
/// there. A query that said "nothing is active", or "could not be asked", would make the data
/// manager empty the store every time that somebody types half a command or presses Ctrl-Z.
class FollowedEditor final : public Editor {
public:
    /// A query takes no longer, however many kinds are asked: it blocks the main thread.
    static constexpr std::chrono::milliseconds kQueryAtMost{500};
    /// Of which the editors have this; the rest is for looking through folders for the project.
    static constexpr std::chrono::milliseconds kAnswerAtMost{200};
    /// Opening happens on a thread of its own; a big file takes an editor a moment.
    static constexpr std::chrono::milliseconds kOpenAtMost{5000};
    /// A jump ends by then, however busy the machine is. An editor that waits for its user says so
    /// much sooner.
    static constexpr std::chrono::milliseconds kJumpAtMost{5000};
    /// Of more files that wait to be opened the newer ones are dropped: a device that asks without
    /// end must not fill the memory.
    static constexpr int kMaximumWaitingRequests = 64;

    /// `lastResort` (may be null) is what is used when none of `editors` answers. Its `open` and
    /// `openFile` are called on the thread of the requests, as the others wait there for their
    /// turn: they must allow that. `listing` (may be null) finds the project that lists a file.
    /// Needs a QCoreApplication.
    FollowedEditor(std::vector<std::shared_ptr<RunningEditor>> editors,
                   std::shared_ptr<Editor> lastResort,
                   ActiveProject::ListingProject listing = nullptr);
    ~FollowedEditor() override;

    std::optional<QString> activeProjectPath() override;
    std::optional<QString> activeFileName() override;
    /// Requests are carried out one after another, in their order. A relative path is one from the
    /// folder of this process.
    void openFile(const QString& path, std::optional<int> line) override;

    QString name() override { return name_; }
    Presence presence() override;
    std::optional<EditorPosition> position() override { return position_; }
    void onMove(MoveObserver observer) override;
    /// In the order of these and of `openFile`.
    void open(const QString& path, int line, int column, OutcomeObserver done) override;
    void back(OutcomeObserver done) override;

private:
    struct Request;
    struct Jump;

    using Editors = std::vector<std::shared_ptr<RunningEditor>>;

    Editors inOrder() const;
    std::optional<QByteArray> activeFile();
    bool enqueue(std::function<void()> job);
    void hear(std::size_t editor, const EditorPlace& place, RunningEditor::PlaceNews news);

    const Editors editors_; ///< in the order in which they are asked
    const std::shared_ptr<Editor> lastResort_;
    const std::shared_ptr<DispatchQueue> requests_;
    ActiveProject projects_; ///< main thread
    /// The last answer, which stands while folders are too slow for another. Main thread.
    QString activeProject_ = QStringLiteral("");
    QString name_; ///< of the editor that answered or moved last; main thread
    std::shared_ptr<RunningEditor> named_;   ///< that editor; null for none; main thread
    bool isSilent_ = false;                  ///< it stands by an answer of long ago; main thread
    MoveObserver observer_;                  ///< main thread
    std::optional<EditorPosition> position_; ///< main thread
    std::size_t shown_ = 0;                  ///< the editor that `position_` is of; main thread
    std::optional<std::size_t> focused_;     ///< the editor that was moved in last; main thread
    /// Where jumps came from. Touched by the jobs of `requests_` alone.
    const std::shared_ptr<EditorTrail> trail_ = std::make_shared<EditorTrail>();
    /// Requests that have not ended. Any thread.
    const std::shared_ptr<std::atomic<int>> waiting_ = std::make_shared<std::atomic<int>>(0);
};

} // namespace navrel
