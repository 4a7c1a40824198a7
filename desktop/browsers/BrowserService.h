#pragma once

#include "app/ProgramFacts.h"
#include "codemap/CodeMap.h"
#include "desktop/browsers/BrowserHost.h"
#include "web/BrowserAccess.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

namespace navrel {

class AppDelegate;
class Editor;
class KZDataManager;
class PairingWindow;
class UserDefaults;

/// Serves browsers, independently of the device link: makes the code map and the server, informs
/// them of the selected project, the file types, the active file and the device, and shows the
/// pairing window. Main thread.
class BrowserService final : public QObject {
public:
    /// Nothing is owned, and everything must outlive the service.
    struct Collaborators {
        KZDataManager& dataManager;
        Editor& editor;
        UserDefaults& userDefaults;
        const AppDelegate& delegate;
        bool hasDisplay = false;
        /// Shows the user a notification: a summary and a sentence, both plain text.
        std::function<void(const QString& summary, const QString& sentence)> notify;
    };

    explicit BrowserService(Collaborators collaborators);
    /// Ends the server, then the code map.
    ~BrowserService() override;

    /// Starts the server as the preferences and NAVREL_BROWSER say. If access is off, it serves
    /// only the user's own socket.
    void start();
    /// The menu entry: opens the pairing window, or brings it to the front.
    void showPairingWindow();

    const BrowserAccess& access() const { return access_; }
    /// The current facts about the program.
    ProgramFacts facts();

private:
    static AccessSettings settingsOf(const Collaborators& collaborators);

    void tellWhatChanged();
    void publishFileTypes();
    void followEditor(bool anyClientFollows);
    void logAccess();
    void changeMode(AccessSettings::Mode mode);
    void deviceDidPair(const QString& label);
    void makeWindow();
    void fillWindow();

    const Collaborators collaborators_;
    CodeMap map_;
    BrowserHost host_;
    BrowserAccess access_; ///< ends before what it asks
    std::unique_ptr<PairingWindow> window_;
    QString chosenAddress_;
    AccessStatus loggedStatus_; ///< the last one that the log was told of
    QString project_;           ///< that the code map was told of
    std::vector<FileTypeSwitch> fileTypes_;
    bool isEditorFollowed_ = false; ///< a client listens
    QString deviceSince_; ///< the time of day when the device was connected; empty for none
    QTimer lookTimer_;
};

} // namespace navrel
