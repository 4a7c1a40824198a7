#include "editors/DesktopEditor.h"

#include "editors/RequestedPath.h"
#include "project/EditorRefusal.h"
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
    const QString name = QStringLiteral("the desktop's opener");
    const auto absolutePath = requestedPath(path);
    if (!absolutePath || !isHarmlessToOpen(absolutePath->toStdString())) {
        done(outcomeOf(EditorRefusal::mightRunTheFile, name));
    } else if (!openWithDesktop(*absolutePath)) {
        done(outcomeOf(EditorRefusal::hasNoOpener, name));
    } else {
        done({EditorOutcome::Kind::opened, name, {}, {}});
    }
}

} // namespace navrel
