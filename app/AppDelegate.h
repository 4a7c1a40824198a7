#pragma once

#include "app/DeviceID.h"
#include "app/LogLimiter.h"
#include "support/NotificationCentre.h"
#include "transport/PTChannel.h"
#include "transport/PTUSBHub.h"
#include "transport/SystemLoopbackPeer.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace navrel {

class Desktop;
class DispatchQueue;
class KZDataManager;
class MenuEntry;
class MenuItem;
class StatusMenu;
class UserDefaults;
class WantedDevice;

/// Posted by the application delegate when the connected device has gone.
extern const QString kConnectedDeviceIDDidChange;

/// The application delegate: starts the program, keeps one connection to the companion app, and
/// answers its requests from the data manager. One per program. Main thread.
///
/// Sources: AppDelegate.cpp (start), Shell.cpp (the status menu), WebServices.cpp (update check,
/// manual, About), DeviceLink.cpp (finding the companion app), CommandService.cpp (answering it).
class AppDelegate final : public QObject,
                          public PTChannelDelegate,
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
        /// Tells whom a connected socket has reached on the loopback address.
        std::function<LoopbackPeer(int socket)> loopbackPeer = &systemLoopbackPeer;
        /// The manual's file as it was installed; empty where it was not found.
        QString installedManual = {};
    };

    /// A delegate that does nothing until `applicationDidFinishLaunching`.
    static std::shared_ptr<AppDelegate> create(Collaborators collaborators);
    ~AppDelegate() override;

    // The shell.

    /// Starts everything, in a fixed order; once, when the event loop is about to run. Waits for
    /// the update check first, and for the person's answer to its alert.
    void applicationDidFinishLaunching();
    /// Lets device requests in, from now on.
    void activate();
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
    void createMenu();
    /// What a shortcut entry does: shows its file in the editor, at its line. Nothing for another
    /// entry, or one that the shortcuts have been replaced under.
    void openFileForMenuItem(const MenuEntry& entry);
    /// Does nothing: the store is saved once a second, and the system closes the sockets.
    void applicationWillTerminate() {}

    /// The status item's menu. Not owned; null, as at first, is allowed: then there is no item.
    void setMenu(StatusMenu* menu) { menu_ = menu; }
    /// The menu entry that shows program and version. Not owned; null, as at first, is allowed.
    void setVersionItem(MenuItem* item) { versionItem_ = item; }
    /// Whether device requests are answered yet.
    bool clearToSend() const { return clearToSend_; }

    // The device link.

    /// Observes the devices that the hub announces; the last one attached is reached, as soon as no
    /// channel is connected.
    void startListeningForDevices();
    /// Puts an attempt to reach the companion app on a device on the connection queue: it waits
    /// while a channel is connected, and runs on the main thread, for the device that is wanted by
    /// then, or for none. It takes the place of any that still waits, and is dropped if that device
    /// is being reached already.
    void enqueueConnectToUSBDevice();
    /// Puts an attempt to reach the companion app on 127.0.0.1 on the connection queue: it waits
    /// while a channel is connected, and runs on the main thread.
    void enqueueConnectToLocalIPv4Port();
    /// The one connected channel, or null.
    const std::shared_ptr<PTChannel>& connectedChannel() const { return connectedChannel_; }
    /// Makes a channel (or null, for none) the connected one. The connection queue is suspended
    /// while there is one, so no attempt starts meanwhile. The former channel is released, not
    /// closed.
    void setConnectedChannel(std::shared_ptr<PTChannel> channel);

    /// The device whose channel is connected; null for none, and for the simulator. Its end is
    /// posted as kConnectedDeviceIDDidChange.
    const std::shared_ptr<const DeviceID>& connectedDeviceID() const { return connectedDeviceID_; }
    /// Closes the connected channel if it is a device's.
    void disconnectFromCurrentChannel();
    /// Logs that a device is gone, and forgets it if it is the connected one.
    void didDisconnectFromDevice(const DeviceID& deviceID);

    // The command service, called by the connected channel.

    quint8 optionalOperations() const override;
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
    using Request = QVariantMap;
    using Reply = std::optional<QVariantMap>;
    /// What a peer on the loopback address is allowed.
    enum class PeerTrust {
        none, ///< it is turned away
        gone, ///< it has ended the connection, and nobody knows who it was
        full, ///< it is served
    };
    /// What a frame type asks for. A request whose payload is no dictionary comes as nothing.
    struct Command;

    explicit AppDelegate(Collaborators collaborators);

    void checkForUpdate();
    QUrl addressOnServer(const QString& path) const;
    void openURL(const QUrl& url);

    void deviceDidAttach(const QVariantMap& userInfo);
    void deviceDidDetach(const QVariantMap& userInfo);
    void reachWantedDevice();
    void enqueueAttempt(const std::function<void(AppDelegate&)>& attempt);
    void connectToUSBDevice();
    void connectedToUSBDevice(const std::shared_ptr<PTChannel>& channel,
                              const std::optional<Error>& error);
    void connectToLocalIPv4Port();
    PeerTrust trustIn(const PTChannel& channel);
    void connectedToLocalIPv4Port(const std::shared_ptr<PTChannel>& channel,
                                  const std::optional<Error>& error,
                                  const std::shared_ptr<const PTAddress>& address);

    static const Command* commandForType(quint32 type);
    Reply navigator(const std::optional<Request>& request);
    Reply openFileAtLine(const std::optional<Request>& request);
    Reply rootNavigator(const std::optional<Request>& request);
    Reply shortcuts(const std::optional<Request>& request);
    Reply elements(const std::optional<Request>& request);
    Reply elementsOfActiveFile();
    Reply allowedFileTypes(const std::optional<Request>& request);
    Reply changeFileType(const std::optional<Request>& request);
    Reply superclasses(const std::optional<Request>& request);
    Reply openWithDesktop(const std::optional<Request>& request);
    Reply projectFolder(const std::optional<Request>& request);
    Reply pickProject(const std::optional<Request>& request);
    Reply versionHandshake(const std::optional<Request>& request);

    Collaborators collaborators_;
    StatusMenu* menu_ = nullptr;
    MenuItem* versionItem_ = nullptr;
    QVariantList menuItems_;          ///< the shortcuts that the menu shows
    std::optional<QString> activeID_; ///< of the file that was active when they were taken
    QTimer menuTimer_;
    bool clearToSend_ = false;
    QDeadlineTimer activationDue_{QDeadlineTimer::Forever}; ///< its timer may come late

    std::shared_ptr<DispatchQueue> notConnectedQueue_; // "PTExample.notConnectedQueue"
    bool notConnectedQueueSuspended_ = false;
    std::shared_ptr<PTUSBHub> hub_;
    std::vector<NotificationCentre::Token> deviceObservers_;
    LogLimiter deviceLog_{QStringLiteral("devices attached and detached")};
    /// Shared with the jobs of the connection queue, which may outlive the delegate.
    const std::shared_ptr<WantedDevice> wantedDevice_;
    quint64 lastUSBAttempt_ = 0; ///< number of the attempt enqueued last; any other is dropped
    int waitingForDevice_ = 0;   ///< announcements and attempts that the connection queue still has
    std::weak_ptr<PTChannel> usbAttempt_; ///< of the attempt under way that began last
    QTimer usbRetryTimer_;                ///< runs while a failed attempt is to be repeated
    std::shared_ptr<const DeviceID> connectedDeviceID_;
    std::shared_ptr<PTChannel> connectedChannel_;
    /// Users whose refusal was logged (-1 for an unknown one), until a peer has been served again.
    std::set<qint64> loggedRefusedUsers_;
};

} // namespace navrel
