#include "companion/InstallExtension.h"

#include "support/process/ToolRunner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <array>
#include <cstdio>
#include <optional>

namespace navrel {

namespace {

constexpr std::array kEditors = {"code", "codium", "code-server", "cursor"};

/// Beside an installed program, or beside the folder of one that was just built.
std::optional<QString> extensionPath() {
    const QDir programs(QCoreApplication::applicationDirPath());
    for (const char* place : {"../share/navrel/navrel.vsix", "../navrel.vsix"}) {
        const QString path = QDir::cleanPath(programs.filePath(QString::fromUtf8(place)));
        if (QFileInfo(path).isFile()) {
            return path;
        }
    }
    return std::nullopt;
}

bool installIn(const QString& editor, const QString& extension) {
    return QProcess::execute(editor, {QStringLiteral("--install-extension"), extension}) == 0;
}

} // namespace

int runInstallExtension() {
    const auto extension = extensionPath();
    if (!extension) {
        std::fprintf(stderr,
                     "navrel-companion: the extension is not installed with this program\n");
        return 1;
    }
    bool isInstalled = false;
    for (const char* name : kEditors) {
        if (const auto editor = findTool(QString::fromUtf8(name))) {
            const bool isTaken = installIn(*editor, *extension);
            std::printf("%s: %s\n", name,
                        isTaken ? "installed" : "refused the extension; its message is above");
            isInstalled = isInstalled || isTaken;
        }
    }
    if (!isInstalled) {
        std::fprintf(stderr,
                     "navrel-companion: no editor took the extension; install it by hand: "
                     "\"Extensions: Install from VSIX...\" and %s\n",
                     qUtf8Printable(*extension));
    }
    return isInstalled ? 0 : 1;
}

} // namespace navrel
