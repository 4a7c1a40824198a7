#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace navrel {

class Editor;
class ProjectStore;

/// The project model's dealings with the editor: the operations of KZDataManager's. Main thread.
class EditorControl {
public:
    /// Both must outlive this.
    EditorControl(Editor& editor, ProjectStore& store) : editor_(editor), store_(store) {}

    std::optional<QString> objectIDForActiveFile();
    void openFile(const std::optional<QString>& path, const QVariant& line);

private:
    Editor& editor_;
    ProjectStore& store_;
};

} // namespace navrel
