#pragma once

#include "app/CommandService.h"
#include "app/DeviceLink.h"
#include "app/ProgramFacts.h"
#include "app/ShortcutMenu.h"
#include "support/core/Clock.h"
#include "transport/peers/SystemLoopbackPeer.h"

#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace navrel {

class Desktop;
class KZDataManager;
class MenuEntry;
class MenuItem;
class StatusMenu;
class UserDefaults;

/// Posted by the application delegate when the connected device has gone.
extern const QString kConnectedDeviceIDDidChange;

/// The application delegate: starts the program, and connects its parts. What it is asked for, it
/// hands on to the one that does it: `DeviceLink`, `CommandService`, `ShortcutMenu`, `WebServices`.
/// One per program. Main thread.
class AppDelegate final : public PTChannelDelegate,
                          public std::enable_shared_from_this<AppDelegate> {
public:
    /// The world as the delegate sees it. None is owned, each lives longer.
    struct Collaborators {
        KZDataManager& dataManager;
        Desktop& desktop;
        UserDefaults& userDefaults;
        /// The version that the program shows, and tells the device: "1.4.2".
        QString version;
        /// Gives the hub that devices on USB are reached through; asked once, at start.
        std::function<std::shared_ptr<PTUSBHub>()> hub = &PTUSBHub::sharedHub;
        /// The maker's web server, which has the latest version and the manual. One without an
        /// address is never asked.
        QUrl webServer = {};
        /// Says whom a connected socket has reached on the loopback address.
        std::function<LoopbackPeer(int socket)> loopbackPeer = &systemLoopbackPeer;
        /// The manual's file as it was installed; empty where it was not found.
        QString installedManual = {};
        Clock& clock = systemClock();
    };

    /// A delegate that does nothing until `applicationDidFinishLaunching`.
    static std::shared_ptr<AppDelegate> create(Collaborators collaborators);

    // The shell.

    /// Starts everything, in a fixed order; once, when the event loop is about to run. Waits for
    /// the update check first, and for the user's answer to its alert.
    void applicationDidFinishLaunching();
    /// Whether device requests are let in: not for the first moment after launching.
    bool clearToSend() const { return collaborators_.clock.now() >= clearToSendFrom_; }
    /// Lets device requests in, from now on. Called once, soon after launching.
    void activate() { clearToSendFrom_ = Clock::TimePoint::min(); }
    /// The quit entry: remembers whether automatic selection is on, then ends the program.
    void quit();
    /// The About entry: loads the page again and brings its window to the front.
    void about();
    /// The manual entry: hands the manual of this version to the desktop's URL opener.
    void manual();
    /// Does nothing, as devices are found by themselves: there for a menu entry to be bound to.
    void findIOSDevice() {}
    /// Brings the shortcut entries of the menu up to date when another file has become active in
    /// the editor. Once a second.
    void createMenu() { shortcutMenu_.update(); }
    /// What a shortcut entry does: shows its file in the editor, at its line. Nothing for another
    /// entry, or one that the shortcuts have been replaced under.
    void openFileForMenuItem(const MenuEntry& entry) { shortcutMenu_.open(entry); }
    /// Does nothing: the store is saved once a second, and the system closes the sockets.
    void applicationWillTerminate() {}
    /// The status item's menu, and its entry that shows program and version. Not owned; null, as at
    /// first, is allowed for each: then there is no item, or no such entry.
    void setMenu(StatusMenu* menu, MenuItem* versionItem);

    /// Says what is the case with the device, and what the update check found; asks nobody.
    void addFacts(ProgramFacts& facts) const;

    // The device link.

    void startListeningForDevices() { link_->startListeningForDevices(); }
    void enqueueConnectToUSBDevice() { link_->enqueueConnectToUSBDevice(); }
    void enqueueConnectToLocalIPv4Port() { link_->enqueueConnectToLocalIPv4Port(); }
    const std::shared_ptr<PTChannel>& connectedChannel() const { return link_->connectedChannel(); }
    void setConnectedChannel(std::shared_ptr<PTChannel> channel);
    /// Its end is posted as kConnectedDeviceIDDidChange.
    const std::shared_ptr<const DeviceID>& connectedDeviceID() const {
        return link_->connectedDeviceID();
    }
    void disconnectFromCurrentChannel() { link_->disconnectFromCurrentChannel(); }
    void didDisconnectFromDevice(const DeviceID& deviceID);

    // The command service, called by the connected channel.

    quint8 optionalOperations() const override { return kShouldAcceptFrame | kDidEnd; }
    bool ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                               quint32 type, quint32 tag,
                                               quint32 payloadSize) override;
    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                             quint32 type, quint32 tag,
                                             const std::shared_ptr<const PTData>& payload) override;
    void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                       const std::optional<Error>& error) override;

    /// Sends a reply dictionary with the tag of the request that it answers; nothing while no
    /// channel is connected.
    void sendContent(const QVariantMap& content, quint32 tag);

private:
    explicit AppDelegate(Collaborators collaborators);

    Collaborators collaborators_;
    ProgramFacts::Update update_;
    CommandService service_;
    ShortcutMenu shortcutMenu_;
    MenuItem* versionItem_ = nullptr;
    std::shared_ptr<DeviceLink> link_;
    std::vector<std::unique_ptr<ScheduledCall>> timers_; ///< the menu's, and the activation's
    Clock::TimePoint clearToSendFrom_ = Clock::TimePoint::max();
};

} // namespace navrel
