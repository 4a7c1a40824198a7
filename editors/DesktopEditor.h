#pragma once

#include "project/Editor.h"

namespace navrel {

/// The editor of last resort: the desktop's opener, which opens a file with whatever the user has
/// chosen for it, and knows of no active file and no line. It has no state: any thread may use it.
class DesktopEditor final : public Editor {
public:
    std::optional<QString> activeProjectPath() override;
    std::optional<QString> activeFileName() override;
    void openFile(const QString& path, std::optional<int> line) override;
    /// Refuses what the opener might run instead of showing.
    void open(const QString& path, int line, int column, OutcomeObserver done) override;
};

} // namespace navrel
