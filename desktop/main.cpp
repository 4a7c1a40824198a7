#include "app/AppDelegate.h"
#include "app/ProgramVersion.h"
#include "app/StatusMenu.h"
#include "app/StatusMenuLayout.h"
#include "app/WebServer.h"
#include "desktop/CommandLine.h"
#include "desktop/InstanceLock.h"
#include "desktop/QtDesktop.h"
#include "editors/EditorChoice.h"
#include "project/KZDataManager.h"
#include "scanning/SourceFileScanner.h"
#include "support/Application.h"
#include "support/Log.h"
#include "support/StartConditions.h"
#include "support/UserDefaults.h"

#include <QApplication>
#include <QIcon>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

using namespace navrel;

/// Without a display Qt would end the program; the work is worth doing there too.
void choosePlatform() {
    const bool isChosen = qEnvironmentVariableIsSet("QT_QPA_PLATFORM") ||
                          qEnvironmentVariableIsSet("DISPLAY") ||
                          qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!isChosen) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

QString applicationSupportDirectory() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

std::optional<QString> instanceLockPath() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty()) {
        return std::nullopt;
    }
    return folder + QStringLiteral("/nl.kelvane.Navrel.lock");
}

int runApplication(QApplication& application) {
    UserDefaults userDefaults;
    StatusMenu menu;
    QtDesktop desktop;
    const auto editor = chooseEditor();
    SourceFileScanner scanner;
    const auto dataManager = KZDataManager::init(
        {userDefaults, *editor, desktop, scanner, applicationSupportDirectory()});
    const auto delegate = AppDelegate::create(
        {*dataManager, desktop, userDefaults, programVersion(), &PTUSBHub::sharedHub, webServer()});
    layOutStatusMenu(menu, *delegate, *dataManager);
    QTimer::singleShot(0, delegate.get(),
                       [&delegate] { delegate->applicationDidFinishLaunching(); });
    QObject::connect(&application, &QCoreApplication::aboutToQuit, delegate.get(),
                     [&delegate] { delegate->applicationWillTerminate(); });
    const int status = QApplication::exec();
    // It would outlive even this: what it holds is closed in order, and nothing is saved.
    dataManager->setWeakSelf(nullptr);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    if (const auto answer = answerCommandLine({argv + std::min(argc, 1), argv + argc})) {
        return answer->print();
    }
    surviveSignalsOfWriting();
    if (const auto missing = missingToStart()) {
        std::fprintf(stderr, "Navrel cannot start: %s\n", qPrintable(*missing));
        return 1;
    }
    const InstanceLock lock(instanceLockPath(), KZDataManager::applicationDocumentsDirectoryIn(
                                                    applicationSupportDirectory()));
    if (lock.isTaken()) {
        std::fprintf(stderr, "Navrel is already running\n");
        return 1;
    }
    choosePlatform();
    const auto application = makeApplication<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Navrel"));
    QCoreApplication::setApplicationVersion(programVersion());
    QGuiApplication::setDesktopFileName(QStringLiteral("nl.kelvane.Navrel"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/MenuIcon.png")));
    QApplication::setQuitOnLastWindowClosed(false);
    return runApplication(*application);
}
