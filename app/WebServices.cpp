// What the shell has from the maker's web server, and the page about the program.

#include "app/AboutPage.h"
#include "app/AppDelegate.h"
#include "app/Desktop.h"
#include "app/TextFetch.h"
#include "app/WebServer.h"
#include "project/KZDataManager.h"
#include "support/Log.h"
#include "support/UserDefaults.h"

namespace navrel {

/// Shows an alert when the server's version is not this program's: any difference counts, also an
/// older version or a line break at the end. Deliberate: the server's file holds the bare version.
void AppDelegate::checkForUpdate() {
    const auto latest = fetchText(addressOnServer(QStringLiteral("/apps/Navrel/version.txt")));
    if (!latest || latest->isEmpty() || *latest == collaborators_.version) {
        return;
    }
    const int answer = collaborators_.desktop.runAlert(
        QStringLiteral("Navrel update"),
        QStringLiteral("New version (%1) of the Navrel OSX client available:").arg(*latest),
        {QStringLiteral("Download"), QStringLiteral("OK")});
    if (answer == kAlertFirstButtonReturn) {
        openURL(addressOnServer(QStringLiteral("/apps/Navrel/Navrel-Latest.zip")));
    }
}

void AppDelegate::about() {
    collaborators_.desktop.showAboutWindow(aboutPage(
        {collaborators_.version, collaborators_.dataManager.applicationDocumentsDirectory(),
         collaborators_.userDefaults.fileName()}));
}

/// Where no server is configured, the manual that was installed with the program.
void AppDelegate::manual() {
    const QString& installed = collaborators_.installedManual;
    if (!hasAddress(collaborators_.webServer) && !installed.isEmpty()) {
        if (!collaborators_.desktop.openFile(installed)) {
            log(QStringLiteral("Failed to open url: %1")
                    .arg(QUrl::fromLocalFile(installed).toString(QUrl::FullyEncoded)));
        }
        return;
    }
    openURL(
        addressOnServer(QStringLiteral("/apps/Navrel/Navrel-v%1.pdf").arg(collaborators_.version)));
}

QUrl AppDelegate::addressOnServer(const QString& path) const {
    QUrl url = collaborators_.webServer;
    url.setPath(path);
    return url;
}

void AppDelegate::openURL(const QUrl& url) {
    collaborators_.desktop.openURL(url, [url] {
        log(QStringLiteral("Failed to open url: %1").arg(url.toString(QUrl::FullyEncoded)));
    });
}

} // namespace navrel
