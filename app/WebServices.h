#pragma once

#include "app/ProgramFacts.h"

#include <QString>
#include <QUrl>

namespace navrel {

class Desktop;

/// What the program has from its maker's web server. Main thread.
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

    /// Waits for the server's answer, within the limits of TextFetch.h. Shows an alert, and waits
    /// for the user's answer, when the server's version is not this program's: any difference
    /// counts, also an older version or a line break at the end. Deliberate: the server's file
    /// holds the bare version. Returns what it found.
    ProgramFacts::Update checkForUpdate() const;

    /// Hands the manual of this version to the desktop's URL opener. Where no server is
    /// configured, opens the one that was installed with the program.
    void showManual() const;

private:
    ProgramFacts::Update updateOf(const QString& latest) const;
    QUrl addressOf(const QString& path) const;
    void openURL(const QUrl& url) const;

    World world_;
};

} // namespace navrel
