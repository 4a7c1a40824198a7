#pragma once

#include <QString>

#include <optional>

namespace navrel {

/// The editor that the person works in. Main thread. A query blocks while the editor answers; the
/// body bounds that time.
class Editor {
public:
    virtual ~Editor() = default;

    /// Path of the .xcodeproj bundle of the project that is active in the editor: the empty string
    /// when none is, nil when the editor could not be asked.
    virtual std::optional<QString> activeProjectPath() = 0;

    /// Name, without folder, of the file in the editor's front window: the empty string when there
    /// is none, nil when the editor could not be asked.
    virtual std::optional<QString> activeFileName() = 0;

    /// Shows a file and, where a line (1-based) is given, selects it. Returns at once; no result is
    /// reported.
    virtual void openFile(const QString& path, std::optional<int> line) = 0;

    /// Selects a line (1-based) of the file in front: what a request comes to that names a line and
    /// no file. Returns at once; no result is reported. An editor in which opening and selecting
    /// are one operation does nothing: without its first half it has no meaning there.
    virtual void selectLine(int line) { static_cast<void>(line); }

protected:
    Editor() = default;
    Editor(const Editor&) = default;
    Editor& operator=(const Editor&) = default;
};

} // namespace navrel
