#pragma once

#include "editors/LastAnswers.h"
#include "editors/NeovimProbe.h"
#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"

#include <map>

namespace navrel {

/// The newest Neovim of this user that answers. One that waits for a key (a prompt, half a command)
/// does not: no file is opened in it, and it is taken to show what it showed when it last answered.
class NeovimEditor final : public RunningEditor {
public:
    explicit NeovimEditor(std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone);
    ~NeovimEditor() override;

    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;

private:
    void hearLateAnswers(const QByteArrayList& sockets);
    void learnFrom(ProbedNeovim& server, const QDeadlineTimer& deadline);
    void askForFile(ProbedNeovim& server, const QDeadlineTimer& deadline);
    void leaveAlone(ProbedNeovim& server);
    bool openInFirst(const QByteArrayList& sockets, const QByteArray& path, std::optional<int> line,
                     const QDeadlineTimer& search, const QDeadlineTimer& deadline);

    SilentEditors silent_; ///< any thread: opening learns from queries, and the reverse
    LastAnswers answers_;  ///< main thread
    /// Servers that are left alone, as long as they may still answer. Main thread.
    std::map<QByteArray, ProbedNeovim> late_;
};

} // namespace navrel
