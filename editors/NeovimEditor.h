#pragma once

#include "editors/LastAnswers.h"
#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"

namespace navrel {

class NeovimConnection;

/// The newest Neovim of this user that answers. One that waits for a key (a prompt, half a command)
/// does not: no file is opened in it, and it is taken to show what it showed when it last answered.
class NeovimEditor final : public RunningEditor {
public:
    explicit NeovimEditor(std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone);

    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;

private:
    std::optional<ActiveFile> activeFileOf(const QByteArray& socket,
                                           const QDeadlineTimer& deadline);

    SilentEditors silent_; ///< main thread
    LastAnswers answers_;  ///< main thread
};

} // namespace navrel
