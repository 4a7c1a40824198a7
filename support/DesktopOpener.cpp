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
    // A path with a NUL names no file, and its beginning might name another one.
    if (!opener || path.isEmpty() || path.contains(QChar(u'\0'))) {
        return false;
    }
    return startDetachedTool(*opener, {QDir::current().absoluteFilePath(path)});
}

} // namespace navrel
