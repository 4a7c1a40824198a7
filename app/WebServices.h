#pragma once

#include "app/ProgramFacts.h"

#include <QString>
#include <QUrl>

namespace navrel {

class Desktop;

/// The update check and the manual, which come from the maker's web server. Main thread.
class WebServices {
public:
    struct World {
        Desktop& desktop; ///< not owned, lives longer
        QUrl server;      ///< one without an address is never asked
        QString version;  ///< of this program: "1.4.2"
        /// The manual's file as it was installed; empty where it was not found.
        QString installedManual;
    };

    explicit WebServices(World world);

    /// Asks the server for the latest version, and blocks within the limits of TextFetch.h. If that
    /// is not this program's version, shows an alert and blocks until the user has answered it. Any
    /// difference counts, even an older version or a trailing line break. Deliberate: the server's
    /// file holds the bare version. Returns what it found.
    ProgramFacts::Update checkForUpdate() const;

    /// Opens the manual of this version on the web server by the desktop's URL opener. Opens the
    /// installed manual instead if no server is configured and there is one. A failure is logged.
    void showManual() const;

private:
    ProgramFacts::Update updateOf(const QString& latest) const;
    QUrl addressOf(const QString& path) const;
    void openURL(const QUrl& url) const;

    World world_;
};

} // namespace navrel
