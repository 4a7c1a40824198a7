#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace navrel {

class Editor;
class ProjectStore;

/// The operations of KZDataManager that talk to the editor, under their names there. Main thread.
class EditorControl {
public:
    /// Both must outlive this.
    EditorControl(Editor& editor, ProjectStore& store) : editor_(editor), store_(store) {}

    /// Blocks while the editor answers.
    std::optional<QString> objectIDForActiveFile();
    /// `line` is as a device sent it: a number, or text that begins with a decimal one. Values out
    /// of range are brought into 32 bits; any other type counts as no line. Never blocks.
    void openFile(const std::optional<QString>& path, const QVariant& line);

private:
    Editor& editor_;
    ProjectStore& store_;
};

} // namespace navrel
