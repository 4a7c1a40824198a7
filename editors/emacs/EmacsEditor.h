#pragma once

#include "editors/LastAnswers.h"
#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"
#include "editors/ToolQuestion.h"

#include <QString>

#include <memory>

namespace navrel {

class EmacsFollower;

/// The Emacs whose server `emacsclient` finds (`$EMACS_SOCKET_NAME`, or the default socket); none
/// is ever started.
class EmacsEditor final : public RunningEditor {
public:
    /// A running Emacs carries out a jump in about fifty milliseconds (two runs of its client).
    /// After this time the user is told that it did not.
    static constexpr std::chrono::milliseconds kJumpAtMost{450};

    explicit EmacsEditor(std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone,
                         std::chrono::milliseconds jumpAtMost = kJumpAtMost);

    ~EmacsEditor() override;

    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    /// Asks first where the user is: an Emacs that does not answer that is asked to open nothing,
    /// since it would do so whenever it goes on, and is left alone for a while.
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;
    QString name() const override { return QStringLiteral("Emacs"); }
    bool isSuspended() const override;
    /// Likewise.
    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override;
    /// Asks twice a second while there is an observer.
    void follow(PlaceObserver observer) override;

private:
    std::optional<QByteArray> askForPlace(const QDeadlineTimer& deadline);

    const std::chrono::milliseconds jumpAtMost_;
    SilentEditors silent_; ///< any thread
    // Main thread.
    ToolQuestion activeFileQuestion_;
    bool wasLate_ = false; ///< the next answer is to a question that timed out
    qint64 process_ = 0;   ///< that answered last; 0 for none
    LastAnswers answers_;
    std::unique_ptr<EmacsFollower> follower_; // null while nobody follows
};

} // namespace navrel
