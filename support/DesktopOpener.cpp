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

bool openURLWithDesktop(const QUrl& url) {
    const bool isWebAddress =
        url.isValid() && !url.host().isEmpty() &&
        (url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https"));
    const auto opener = isWebAddress ? findTool(kOpener) : std::nullopt;
    return opener && startDetachedTool(*opener, {url.toString(QUrl::FullyEncoded)});
}

} // namespace navrel
