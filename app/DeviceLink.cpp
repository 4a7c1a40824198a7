// Finding the companion app and keeping one connection to it.
//
// Every attempt goes through the connection queue, which is suspended while a channel is connected:
// an attempt that comes up meanwhile is parked there, and runs when the connection is gone. So the
// poll of 127.0.0.1 schedules its next attempt after a success as well as after a failure: that one
// is the reconnection.

#include "app/AppDelegate.h"
#include "support/Log.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/CompanionProtocol.h"
#include "transport/PTAddress.h"

#include <cerrno>
#include <chrono>
#include <utility>

namespace navrel {

namespace {

constexpr quint32 kLoopbackAddress = 0x7F000001; // 127.0.0.1
constexpr std::chrono::milliseconds kReconnectDelay{1000};

/// No companion app listening is the normal case.
bool isNobodyThere(const Error& error) {
    return error.isPOSIX(ECONNREFUSED) || error.isPOSIX(ETIMEDOUT);
}

} // namespace

void AppDelegate::enqueueConnectToLocalIPv4Port() {
    // Two hops: the first waits for the queue, the second brings the attempt to the main thread.
    const std::weak_ptr<AppDelegate> self = weak_from_this();
    notConnectedQueue_->async([self] {
        DispatchQueue::mainQueue()->async([self] {
            if (const auto delegate = self.lock()) {
                delegate->connectToLocalIPv4Port();
            }
        });
    });
}

void AppDelegate::connectToLocalIPv4Port() {
    const auto channel = PTChannel::channelWithDelegate(shared_from_this());
    channel->setUserInfo(
        std::make_shared<DescribedText>(QStringLiteral("127.0.0.1:%1").arg(kCompanionPort)));
    channel->connectToPort(kCompanionPort, kLoopbackAddress,
                           [this, channel](const std::optional<Error>& error,
                                           const std::shared_ptr<const PTAddress>& address) {
                               connectedToLocalIPv4Port(channel, error, address);
                           });
    QTimer::singleShot(kReconnectDelay, this, [this] { enqueueConnectToLocalIPv4Port(); });
}

void AppDelegate::connectedToLocalIPv4Port(const std::shared_ptr<PTChannel>& channel,
                                           const std::optional<Error>& error,
                                           const std::shared_ptr<const PTAddress>& address) {
    if (error) {
        if (!isNobodyThere(*error)) {
            log(QStringLiteral("Failed to connect to 127.0.0.1:%1: %2")
                    .arg(kCompanionPort)
                    .arg(error->description()));
        }
        return;
    }
    setConnectedChannel(channel);
    channel->setUserInfo(address);
    log(QStringLiteral("Connected to %1").arg(address->description()));
}

void AppDelegate::setConnectedChannel(std::shared_ptr<PTChannel> channel) {
    connectedChannel_ = std::move(channel);
    const bool isConnected = connectedChannel_ != nullptr;
    if (isConnected && !notConnectedQueueSuspended_) {
        notConnectedQueue_->suspend();
        notConnectedQueueSuspended_ = true;
    } else if (!isConnected && notConnectedQueueSuspended_) {
        notConnectedQueue_->resume();
        notConnectedQueueSuspended_ = false;
    }
}

void AppDelegate::ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>& channel,
                                                const std::optional<Error>&) {
    if (channel != connectedChannel_) {
        return;
    }
    log(QStringLiteral("Disconnected from %1").arg(channel->userInfo()->description()));
    setConnectedChannel(nullptr);
}

} // namespace navrel
