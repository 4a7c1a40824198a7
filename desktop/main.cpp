#include "app/AppDelegate.h"
#include "app/ProgramVersion.h"
#include "app/StatusMenu.h"
#include "app/StatusMenuLayout.h"
#include "app/WebServer.h"
#include "codemap/tree/ProjectListing.h"
#include "desktop/CommandLine.h"
#include "desktop/DisplayFailure.h"
#include "desktop/InstanceLock.h"
#include "desktop/NavrelStyle.h"
#include "desktop/QtDesktop.h"
#include "desktop/SecondStart.h"
#include "desktop/SessionBusGuard.h"
#include "desktop/UserNotification.h"
#include "desktop/browsers/BrowserService.h"
#include "editors/EditorChoice.h"
#include "project/KZDataManager.h"
#include "support/core/Application.h"
#include "support/core/Log.h"
#include "support/core/StartConditions.h"
#include "support/core/UserDefaults.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
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

/// What this session has of the program: a lock, and a socket for later starts.
struct SessionFiles {
    QString lock;
    QString secondStart;
};

std::optional<SessionFiles> sessionFiles() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty()) {
        return std::nullopt;
    }
    const QString prefix = folder + QStringLiteral("/nl.kelvane.Navrel");
    return SessionFiles{prefix + QStringLiteral(".lock"), prefix + QStringLiteral(".start")};
}

std::unique_ptr<QApplication> makeQtApplication(int& argc, char** argv) {
    const SessionBusGuard busGuard;
    const DisplayFailure displayFailure;
    auto application = makeApplication<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Navrel"));
    QCoreApplication::setApplicationVersion(programVersion());
    QGuiApplication::setDesktopFileName(QStringLiteral("nl.kelvane.Navrel"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/MenuIcon.png")));
    QApplication::setQuitOnLastWindowClosed(false);
    NavrelStyle::install();
    return application;
}

/// The manual as it was installed beside the program, or as it is in the sources that the program
/// was built from; empty where neither is found.
QString installedManual() {
    const QDir folder(QCoreApplication::applicationDirPath());
    for (const char* place : {"../share/doc/navrel", "../../../docs"}) {
        for (const char* name : {"manual.html", "manual.pdf", "manual.md"}) {
            const QString path = folder.filePath(QLatin1String(place) + u'/' + QLatin1String(name));
            if (QFileInfo(path).isFile()) {
                return QDir::cleanPath(path);
            }
        }
    }
    return {};
}

/// Where the user looked for a project last: the folder around the last one.
QString folderOfLastProject(const UserDefaults& userDefaults) {
    const auto bundle = userDefaults.stringForKey(QStringLiteral("lastKnownProject"));
    return bundle && !bundle->isEmpty() ? QFileInfo(*bundle).path() : QString();
}

/// Finds the project that lists a file.
ActiveProject::ListingProject listingProject() {
    return [listing = std::make_shared<ProjectListing>()](const QByteArray& file) {
        const auto bundle = listing->projectListingFile(file.toStdString());
        return bundle ? std::optional(QByteArray::fromStdString(*bundle)) : std::nullopt;
    };
}

int runApplication(const std::optional<SessionFiles>& files) {
    UserDefaults userDefaults;
    StatusMenu menu;
    QtDesktop desktop;
    desktop.setOpenPanelFolder([&userDefaults] { return folderOfLastProject(userDefaults); });
    const auto secondStart = files ? std::make_unique<SecondStart>(
                                         files->secondStart, [&desktop] { desktop.bringToFront(); })
                                   : nullptr;
    const auto editor = chooseEditor(listingProject());
    const auto dataManager =
        KZDataManager::init({userDefaults, *editor, desktop, applicationSupportDirectory()});
    AppDelegate::Collaborators world = {*dataManager, desktop, userDefaults, programVersion()};
    world.webServer = webServer();
    world.installedManual = installedManual();
    const auto delegate = AppDelegate::create(world);
    BrowserService browsers(
        {*dataManager, *editor, userDefaults, *delegate, QtDesktop::isDisplayThere(), &notifyUser});
    menu.setState([&browsers] { return stateSentences(browsers.facts()); });
    layOutStatusMenu(menu, *delegate, *dataManager, [&browsers] { browsers.showPairingWindow(); });
    QTimer::singleShot(0, qApp, [&browsers, &delegate] {
        browsers.start();
        delegate->applicationDidFinishLaunching();
    });
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp,
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
    const auto files = sessionFiles();
    const InstanceLock lock(
        files ? std::optional(files->lock) : std::nullopt,
        KZDataManager::applicationDocumentsDirectoryIn(applicationSupportDirectory()));
    if (lock.isTaken()) {
        std::fprintf(stderr, "Navrel is already running\n");
        if (files) {
            SecondStart::tellFirst(files->secondStart);
        }
        return 1;
    }
#ifdef NAVREL_HAS_BROWSER_APP
    Q_INIT_RESOURCE(browser);
#endif
    choosePlatform();
    const auto application = makeQtApplication(argc, argv);
    return runApplication(files);
}
