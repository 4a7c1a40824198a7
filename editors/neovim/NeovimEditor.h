#pragma once

#include "editors/LastAnswers.h"
#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"
#include "editors/neovim/NeovimConnection.h"
#include "editors/neovim/NeovimProbe.h"

#include <map>
#include <memory>
#include <vector>

namespace navrel {

class NeovimFollower;

/// The newest Neovim of this user that answers. One that waits for a key (a prompt, half a command)
/// does not: no file is opened in it, and it is taken to show what it showed when it last answered.
class NeovimEditor final : public RunningEditor {
public:
    /// So long a jump tries to get the editor out of what it is in the middle of; the user hears by
    /// then that it stays there.
    static constexpr std::chrono::milliseconds kLeaveModeAtMost{400};

    explicit NeovimEditor(std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone,
                          std::chrono::milliseconds leaveModeAtMost = kLeaveModeAtMost);
    ~NeovimEditor() override;

    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;
    QString name() const override { return QStringLiteral("Neovim"); }
    bool isSuspended() const override;
    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override;
    /// Every Neovim of this user is listened to: the one that moves is the one that the user is in.
    void follow(PlaceObserver observer) override;

private:
    /// A server that had its time and may still answer.
    struct LateNeovim {
        ProbedNeovim server;
        qint64 fileQuestion = 0; ///< for its file; 0 where it has not said yet that it is ready
    };

    QByteArrayList servers(const QDeadlineTimer& deadline);
    std::vector<ProbedNeovim> takeLateAnswers(const QByteArrayList& sockets);
    bool hasAnswered(LateNeovim& late);
    void learnFrom(ProbedNeovim& server, const QDeadlineTimer& deadline);
    void askForFile(ProbedNeovim& server, const QDeadlineTimer& deadline);
    void learnFile(const QByteArray& socket, const NeovimConnection::Reply& file);
    void leaveAlone(ProbedNeovim& server, qint64 fileQuestion = 0);
    template <typename Use>
    bool useFirst(const QDeadlineTimer& search, Use use);
    template <typename Use>
    bool useFirstOf(const QByteArrayList& sockets, const QDeadlineTimer& search, Use use);

    const std::chrono::milliseconds leaveModeAtMost_;
    SilentEditors silent_; ///< any thread: opening learns from queries, and the reverse
    LastAnswers answers_;  ///< main thread
    QByteArray shown_;     ///< the server whose answer was given last; main thread
    QByteArrayList known_; ///< the servers that a search found that saw all; main thread
    /// Servers that are left alone, as long as they may still answer. Main thread.
    std::map<QByteArray, LateNeovim> late_;
    std::unique_ptr<NeovimFollower> follower_; ///< main thread; null while nobody follows
};

} // namespace navrel
