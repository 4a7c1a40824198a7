#include "support/process/DesktopOpener.h"

#include "support/core/Log.h"
#include "support/process/Errands.h"
#include "support/process/ToolRunner.h"
#include "support/text/FilePath.h"

#include <QDir>

namespace navrel {

namespace {

#ifdef Q_OS_MACOS
const QString kOpener = QStringLiteral("open");
#else
const QString kOpener = QStringLiteral("xdg-open");
#endif

/// Starts the opener with one argument; nobody waits for it.
bool startOpener(const QString& argument, const std::function<void()>& didFail = nullptr) {
    static const Errands openers(QStringLiteral("files and addresses opened"),
                                 kMaximumRunningOpeners);
    const auto opener = findTool(kOpener);
    return opener && openers.start({[tool = *opener, argument, didFail] {
        const std::optional<int> status = runTool(tool, {argument});
        if (!status) {
            log(QStringLiteral("%1 could not be started").arg(tool));
        }
        if (status != 0 && didFail) {
            didFail();
        }
    }});
}

} // namespace

bool openWithDesktop(const QString& path) {
    // What names no file might be taken for another one: by its beginning, up to a NUL.
    return canNameAFile(path) && startOpener(QDir::current().absoluteFilePath(path));
}

bool openURLWithDesktop(const QUrl& url, std::function<void()> didFail) {
    const bool isWebAddress =
        url.isValid() && !url.host().isEmpty() &&
        (url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https"));
    return isWebAddress && startOpener(url.toString(QUrl::FullyEncoded), didFail);
}

} // namespace navrel
