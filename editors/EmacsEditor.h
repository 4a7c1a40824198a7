#pragma once

#include "editors/LastAnswers.h"
#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"

#include <QString>

namespace navrel {

/// The Emacs whose server `emacsclient` finds (`$EMACS_SOCKET_NAME`, or the default socket); none
/// is ever started.
class EmacsEditor final : public RunningEditor {
public:
    explicit EmacsEditor(std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone);

    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;

private:
    SilentEditors silent_; ///< main thread
    LastAnswers answers_;  ///< main thread
};

} // namespace navrel
