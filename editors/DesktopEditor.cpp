#include "editors/DesktopEditor.h"

#include "editors/RequestedPath.h"
#include "support/DesktopOpener.h"

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

} // namespace navrel
