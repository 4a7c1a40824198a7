#include "support/DesktopOpener.h"

#include "support/ToolRunner.h"

namespace navrel {

namespace {

#ifdef Q_OS_MACOS
const QString kOpener = QStringLiteral("open");
#else
const QString kOpener = QStringLiteral("xdg-open");
#endif

} // namespace

bool openWithDesktop(const QString& pathOrURL) {
    const auto opener = findTool(kOpener);
    if (!opener || pathOrURL.isEmpty()) {
        return false;
    }
    const bool looksLikeAnOption = pathOrURL.startsWith(QLatin1Char('-'));
    return startDetachedTool(*opener,
                             {looksLikeAnOption ? QStringLiteral("./") + pathOrURL : pathOrURL});
}

} // namespace navrel
