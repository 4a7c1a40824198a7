#include "editors/DesktopEditor.h"

#include "editors/RequestedPath.h"
#include "support/files/HarmlessFile.h"
#include "support/process/DesktopOpener.h"

namespace navrel {

std::optional<QString> DesktopEditor::activeProjectPath() {
    return QStringLiteral("");
}

std::optional<QString> DesktopEditor::activeFileName() {
    return QStringLiteral("");
}

void DesktopEditor::openFile(const QString& path, std::optional<int>) {
    if (const auto absolutePath = requestedPath(path)) {
        openWithDesktop(*absolutePath);
    }
}

void DesktopEditor::open(const QString& path, int, int, OutcomeObserver done) {
    using Kind = EditorOutcome::Kind;
    const QString name = QStringLiteral("the desktop's opener");
    const auto absolutePath = requestedPath(path);
    if (!absolutePath || !isHarmlessToOpen(absolutePath->toStdString())) {
        done({Kind::refused, name,
              QStringLiteral("No editor answers, and the desktop might run this file.")});
    } else if (!openWithDesktop(*absolutePath)) {
        done({Kind::refused, name, QStringLiteral("The desktop has no way to open files.")});
    } else {
        done({Kind::opened, name, {}});
    }
}

} // namespace navrel
