#pragma once

#include "editors/RunningEditor.h"

namespace navrel {

/// VS Code or VSCodium without the extension, by the command `code --goto` or `codium --goto`.
/// Never starts one: it is used only while one runs. It is led, not followed.
class CodeCommandEditor final : public RunningEditor {
public:
    /// Never known.
    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    /// False as well for a path with a colon, which the command would take for line and column.
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;
    QString name() const override { return QStringLiteral("VS Code"); }
    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override;
};

} // namespace navrel
