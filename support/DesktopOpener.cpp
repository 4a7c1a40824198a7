#include "support/DesktopOpener.h"

#include "support/ToolRunner.h"

#include <QDir>

namespace navrel {

namespace {

#ifdef Q_OS_MACOS
const QString kOpener = QStringLiteral("open");
#else
const QString kOpener = QStringLiteral("xdg-open");
#endif

} // namespace

bool openWithDesktop(const QString& path) {
    const auto opener = findTool(kOpener);
    if (!opener || path.isEmpty()) {
        return false;
    }
    return startDetachedTool(*opener, {QDir::current().absoluteFilePath(path)});
}

} // namespace navrel
