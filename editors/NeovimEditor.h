#pragma once

#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"

namespace navrel {

class NeovimConnection;

/// The newest Neovim of this user that answers. One that waits for a key (a prompt, half a command)
/// counts as not answering.
class NeovimEditor final : public RunningEditor {
public:
    explicit NeovimEditor(std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone);

    std::optional<QByteArray> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;

private:
    std::optional<QByteArray> activeFileOf(const QByteArray& socket,
                                           const QDeadlineTimer& deadline);

    SilentEditors silent_; ///< main thread
};

} // namespace navrel
