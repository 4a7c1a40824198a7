#include "app/AppDelegate.h"

#include "app/Desktop.h"
#include "app/WantedDevice.h"
#include "project/MenuItem.h"
#include "support/dispatch/DispatchQueue.h"

#include <chrono>
#include <utility>

namespace navrel {

namespace {

/// From the end of start-up until device requests are answered: time for the first pass over the
/// project, so that a device does not see an empty one.
constexpr std::chrono::milliseconds kActivationDelay{1500};
constexpr std::chrono::milliseconds kMenuInterval{1000};

} // namespace

std::shared_ptr<AppDelegate> AppDelegate::create(Collaborators collaborators) {
    return std::shared_ptr<AppDelegate>(new AppDelegate(std::move(collaborators)));
}

AppDelegate::AppDelegate(Collaborators collaborators)
    : collaborators_(std::move(collaborators)), menuTimer_(this),
      wantedDevice_(std::make_shared<WantedDevice>()), usbRetryTimer_(this) {
    usbRetryTimer_.setObjectName(QStringLiteral("usbRetryTimer")); // for whoever watches it
    usbRetryTimer_.setSingleShot(true);
    usbRetryTimer_.setTimerType(Qt::PreciseTimer);
    connect(&usbRetryTimer_, &QTimer::timeout, this, [this] { enqueueConnectToUSBDevice(); });
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    checkForUpdate();
    if (versionItem_ != nullptr) {
        versionItem_->setTitle(QStringLiteral("Navrel (v%1)").arg(collaborators_.version));
    }
    if (menu_ != nullptr) {
        collaborators_.desktop.showStatusItem(*menu_, QStringLiteral(":/MenuIcon.png"));
    }
    notConnectedQueue_ = DispatchQueue::serialQueue(QStringLiteral("PTExample.notConnectedQueue"));
    startListeningForDevices();
    enqueueConnectToLocalIPv4Port();
    connect(&menuTimer_, &QTimer::timeout, this, [this] { createMenu(); });
    menuTimer_.setTimerType(Qt::PreciseTimer); // others may be early by a twentieth
    menuTimer_.start(kMenuInterval);
    activationDue_ = QDeadlineTimer(kActivationDelay, Qt::PreciseTimer);
    QTimer::singleShot(kActivationDelay, Qt::PreciseTimer, this, [this] { activate(); });
}

void AppDelegate::activate() {
    clearToSend_ = true;
}

} // namespace navrel
