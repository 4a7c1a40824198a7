#include "app/AppDelegate.h"

#include "app/AboutPage.h"
#include "app/Desktop.h"
#include "app/DeviceFacts.h"
#include "app/StatusMenu.h"
#include "app/WebServices.h"
#include "project/KZDataManager.h"
#include "protocol/CompanionProtocol.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/core/UserDefaults.h"
#include "transport/frames/PTData.h"
#include "transport/frames/PTPayload.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace navrel {

const QString kConnectedDeviceIDDidChange = QStringLiteral("connectedDeviceID");

namespace {

/// From the end of start-up until device requests are answered: time for the first pass over the
/// project, so that a device does not see an empty one.
constexpr std::chrono::milliseconds kActivationDelay{1500};
constexpr std::chrono::milliseconds kMenuInterval{1000};

WebServices webServicesOf(const AppDelegate::Collaborators& collaborators) {
    return WebServices({collaborators.desktop, collaborators.webServer, collaborators.version,
                        collaborators.installedManual});
}

} // namespace

std::shared_ptr<AppDelegate> AppDelegate::create(Collaborators collaborators) {
    return std::shared_ptr<AppDelegate>(new AppDelegate(std::move(collaborators)));
}

AppDelegate::AppDelegate(Collaborators collaborators)
    : collaborators_(std::move(collaborators)),
      service_({collaborators_.dataManager, collaborators_.desktop, collaborators_.version}),
      shortcutMenu_(collaborators_.dataManager),
      link_(DeviceLink::create({collaborators_.clock, collaborators_.hub,
                                collaborators_.loopbackPeer, [this] { return shared_from_this(); },
                                [this] {
                                    NotificationCentre::defaultCentre().post(
                                        kConnectedDeviceIDDidChange, this, {});
                                }})) {}

// The shell.

void AppDelegate::applicationDidFinishLaunching() {
    NAVREL_ASSERT_MAIN_THREAD();
    update_ = webServicesOf(collaborators_).checkForUpdate();
    if (versionItem_ != nullptr) {
        versionItem_->setTitle(QStringLiteral("Navrel (v%1)").arg(collaborators_.version));
    }
    if (StatusMenu* menu = shortcutMenu_.menu()) {
        collaborators_.desktop.showStatusItem(*menu, QStringLiteral(":/MenuIcon.png"));
    }
    startListeningForDevices();
    enqueueConnectToLocalIPv4Port();
    Clock& clock = collaborators_.clock;
    timers_.push_back(clock.every(kMenuInterval, [this] { createMenu(); }));
    timers_.push_back(clock.after(kActivationDelay, [this] { activate(); }));
    // Also a time: a long pass over the project may hold the timer up.
    clearToSendFrom_ = std::min(clearToSendFrom_, clock.now() + kActivationDelay);
}

void AppDelegate::setMenu(StatusMenu* menu, MenuItem* versionItem) {
    shortcutMenu_.setMenu(menu);
    versionItem_ = versionItem;
}

void AppDelegate::quit() {
    NAVREL_ASSERT_MAIN_THREAD();
    collaborators_.userDefaults.setBool(QStringLiteral("automaticProjectSelection"),
                                        collaborators_.dataManager.automaticProjectSelection());
    collaborators_.desktop.terminate();
}

void AppDelegate::about() {
    NAVREL_ASSERT_MAIN_THREAD();
    const StatusMenu* const menu = shortcutMenu_.menu();
    collaborators_.desktop.showAboutWindow(aboutPage(
        {collaborators_.version, collaborators_.dataManager.applicationDocumentsDirectory(),
         collaborators_.userDefaults.fileName(),
         menu != nullptr ? menu->state() : std::vector<StateSentence>()}));
}

void AppDelegate::manual() {
    webServicesOf(collaborators_).showManual();
}

void AppDelegate::addFacts(ProgramFacts& facts) const {
    facts.device = deviceFacts(*link_);
    facts.update = update_;
}

// The device link.

void AppDelegate::setConnectedChannel(std::shared_ptr<PTChannel> channel) {
    link_->setConnectedChannel(std::move(channel));
}

void AppDelegate::didDisconnectFromDevice(const DeviceID& deviceID) {
    link_->didDisconnectFromDevice(deviceID);
}

void AppDelegate::ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                                const std::optional<Error>&) {
    NAVREL_ASSERT_MAIN_THREAD();
    link_->channelDidEnd(channel);
}

// The command service.

bool AppDelegate::ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                                        quint32 type, quint32, quint32) {
    if (CommandService::accepts(type)) {
        return true;
    }
    log(QStringLiteral("Unexpected frame of type %1").arg(type));
    channel->close();
    return false;
}

void AppDelegate::ioFrameChannelDidReceiveFrameOfType(
    const std::shared_ptr<PTChannel>&, quint32 type, quint32 tag,
    const std::shared_ptr<const PTData>& payload) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!clearToSend()) {
        return;
    }
    if (const auto reply =
            service_.answer(type, payload ? payload->dispatchData() : std::nullopt)) {
        sendContent(*reply, tag);
    }
}

void AppDelegate::sendContent(const QVariantMap& content, quint32 tag) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (connectedChannel() == nullptr) {
        return;
    }
    connectedChannel()->sendFrameOfType(
        kFrameReply, tag, createReferencingDispatchData(content),
        [](const std::optional<Error>& error) {
            if (error) {
                // The same words for every reply, deliberately: they are what people search for.
                log(QStringLiteral("Failed to send fileTree: %1").arg(error->description()));
            }
        });
}

} // namespace navrel
