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

/// The application delegate: starts the program, and connects its parts. It forwards each request
/// to the part that does the work: `DeviceLink`, `CommandService`, `ShortcutMenu`, `WebServices`.
/// One per program. Main thread.
class AppDelegate final : public PTChannelDelegate,
                          public std::enable_shared_from_this<AppDelegate> {
public:
    /// The world as the delegate sees it. The references are not owned, and must outlive the
    /// delegate.
    struct Collaborators {
        KZDataManager& dataManager;
        Desktop& desktop;
        UserDefaults& userDefaults;
        /// The version that the program shows to the user and sends to the device: "1.4.2".
        QString version;
        /// Returns the hub through which devices on USB are reached; called once, at start.
        std::function<std::shared_ptr<PTUSBHub>()> hub = &PTUSBHub::sharedHub;
        /// The maker's web server, for the update check and the manual. Never asked where
        /// `hasAddress` says that there is none.
        QUrl webServer = {};
        /// Returns the peer of a socket that is connected on the loopback address.
        std::function<LoopbackPeer(int socket)> loopbackPeer = &systemLoopbackPeer;
        /// Path of the installed manual; empty if it was not found.
        QString installedManual = {};
        Clock& clock = systemClock();
    };

    /// Returns a delegate that does nothing until `applicationDidFinishLaunching`.
    static std::shared_ptr<AppDelegate> create(Collaborators collaborators);

    // The shell.

    /// Starts everything, in a fixed order. Must be called once, when the event loop is about to
    /// run. Blocks for the update check first, and until the user has answered its alert.
    void applicationDidFinishLaunching();
    /// Whether device requests are answered. For 1.5 s after start-up they are dropped.
    bool clearToSend() const { return collaborators_.clock.now() >= clearToSendFrom_; }
    /// Has device requests answered from now on. The delegate's own timer calls it after that time.
    void activate() { clearToSendFrom_ = Clock::TimePoint::min(); }
    /// The quit entry: saves whether automatic selection is on, then ends the program.
    void quit();
    /// The About entry: loads the page again and brings its window to the front.
    void about();
    /// The manual entry, as `WebServices::showManual`.
    void manual();
    /// Does nothing: Navrel finds devices by itself. Deliberate: a menu entry may be bound to it.
    void findIOSDevice() {}
    /// Updates the menu's shortcut entries when another file has become active in the editor. The
    /// delegate's own timer calls it once a second.
    void createMenu() { shortcutMenu_.update(); }
    /// The action of a shortcut entry: shows its file in the editor, at its line. Does nothing for
    /// other entries, and for an entry whose shortcut has been replaced since.
    void openFileForMenuItem(const MenuEntry& entry) { shortcutMenu_.open(entry); }
    /// Does nothing: the store is saved once a second, and the system closes the sockets.
    void applicationWillTerminate() {}
    /// Sets the status item's menu, and the entry in it that shows program and version. Neither is
    /// owned. Both are null at first and may be: without a menu no status item is shown.
    void setMenu(StatusMenu* menu, MenuItem* versionItem);

    /// Fills in the facts on the device and on the update, as last known. Never blocks.
    void addFacts(ProgramFacts& facts) const;

    // The device link: each forwards to the function of `DeviceLink` of that name.

    void startListeningForDevices() { link_->startListeningForDevices(); }
    void enqueueConnectToUSBDevice() { link_->enqueueConnectToUSBDevice(); }
    void enqueueConnectToLocalIPv4Port() { link_->enqueueConnectToLocalIPv4Port(); }
    const std::shared_ptr<PTChannel>& connectedChannel() const { return link_->connectedChannel(); }
    void setConnectedChannel(std::shared_ptr<PTChannel> channel);
    /// When it becomes null, kConnectedDeviceIDDidChange is posted.
    const std::shared_ptr<const DeviceID>& connectedDeviceID() const {
        return link_->connectedDeviceID();
    }
    void disconnectFromCurrentChannel() { link_->disconnectFromCurrentChannel(); }
    void didDisconnectFromDevice(const DeviceID& deviceID);

    // The command service: the channels call these.

    quint8 optionalOperations() const override { return kShouldAcceptFrame | kDidEnd; }
    bool ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                               quint32 type, quint32 tag,
                                               quint32 payloadSize) override;
    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                             quint32 type, quint32 tag,
                                             const std::shared_ptr<const PTData>& payload) override;
    void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                       const std::optional<Error>& error) override;

    /// Sends a reply dictionary on the connected channel, with the tag of the request that it
    /// answers. Does nothing while no channel is connected. A failure is logged.
    void sendContent(const QVariantMap& content, quint32 tag);

private:
    explicit AppDelegate(Collaborators collaborators);

    Collaborators collaborators_;
    ProgramFacts::Update update_;
    CommandService service_;
    ShortcutMenu shortcutMenu_;
    MenuItem* versionItem_ = nullptr;
    std::shared_ptr<DeviceLink> link_;
    std::vector<std::unique_ptr<ScheduledCall>> timers_; ///< of `createMenu` and `activate`
    Clock::TimePoint clearToSendFrom_ = Clock::TimePoint::max();
};

} // namespace navrel
