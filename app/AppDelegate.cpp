#include "app/AppDelegate.h"

#include "app/Desktop.h"
#include "app/WantedDevice.h"
#include "project/KZDataManager.h"
#include "project/MenuItem.h"
#include "support/UserDefaults.h"
#include "support/dispatch/DispatchQueue.h"

#include <chrono>
#include <utility>

namespace navrel {

namespace {

/// From the end of start-up until device requests are answered: time for the first pass over the
/// project, so that a device does not see an empty one.
constexpr std::chrono::milliseconds kActivationDelay{1500};

} // namespace

std::shared_ptr<AppDelegate> AppDelegate::create(Collaborators collaborators) {
    return std::shared_ptr<AppDelegate>(new AppDelegate(std::move(collaborators)));
}

AppDelegate::AppDelegate(Collaborators collaborators)
    : collaborators_(std::move(collaborators)), wantedDevice_(std::make_shared<WantedDevice>()) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    if (versionItem_ != nullptr) {
        versionItem_->setTitle(QStringLiteral("Navrel (v%1)").arg(collaborators_.version));
    }
    notConnectedQueue_ = DispatchQueue::serialQueue(QStringLiteral("PTExample.notConnectedQueue"));
    startListeningForDevices();
    enqueueConnectToLocalIPv4Port();
    QTimer::singleShot(kActivationDelay, Qt::PreciseTimer, this, [this] { activate(); });
}

void AppDelegate::activate() {
    clearToSend_ = true;
}

void AppDelegate::quit() {
    collaborators_.userDefaults.setBool(QStringLiteral("automaticProjectSelection"),
                                        collaborators_.dataManager.automaticProjectSelection());
    collaborators_.desktop.terminate();
}

} // namespace navrel
