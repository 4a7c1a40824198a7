#include "transport/usb/daemon/HostLookup.h"

#include "support/core/MainThread.h"

#include <condition_variable>
#include <cstring>
#include <mutex>
#include <netdb.h>
#include <system_error>
#include <thread>
#include <utility>

namespace navrel {

namespace {

std::vector<SocketAddress> addressesOf(const QByteArray& host, const QByteArray& port, int flags) {
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = flags | AI_NUMERICSERV;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.constData(), port.constData(), &wanted, &found) != 0) {
        return {};
    }
    std::vector<SocketAddress> addresses;
    for (const addrinfo* it = found; it != nullptr && addresses.size() < HostLookup::kMostAddresses;
         it = it->ai_next) {
        SocketAddress address;
        address.length = it->ai_addrlen;
        std::memcpy(&address.storage, it->ai_addr, it->ai_addrlen);
        addresses.push_back(address);
    }
    ::freeaddrinfo(found);
    return addresses;
}

} // namespace

std::optional<SocketAddress> numericAddress(const QString& host, const QString& port) {
    const auto addresses = addressesOf(host.toUtf8(), port.toUtf8(), AI_NUMERICHOST);
    return addresses.empty() ? std::nullopt : std::optional(addresses.front());
}

struct HostLookup::Shared {
    const QByteArray host;
    const QByteArray port;
    std::mutex mutex; ///< guards the rest; any thread
    std::condition_variable didEnd;
    bool isUnderWay = false;
    std::vector<SocketAddress> addresses;

    Shared(QByteArray hostName, QByteArray portNumber)
        : host(std::move(hostName)), port(std::move(portNumber)) {}

    void run() {
        auto found = addressesOf(host, port, 0);
        const std::lock_guard lock(mutex);
        isUnderWay = false;
        addresses = std::move(found);
        didEnd.notify_all();
    }
};

HostLookup::HostLookup(const QString& host, const QString& port)
    : shared_(std::make_shared<Shared>(host.toUtf8(), port.toUtf8())) {}

std::vector<SocketAddress> HostLookup::addresses() {
    NAVREL_ASSERT_MAIN_THREAD();
    std::unique_lock lock(shared_->mutex);
    if (!shared_->isUnderWay) {
        try {
            std::thread([shared = shared_] { shared->run(); }).detach();
        } catch (const std::system_error&) {
            return shared_->addresses; // without a thread, the next call tries again
        }
        shared_->isUnderWay = true;
        shared_->didEnd.wait_for(lock, kPatience, [this] { return !shared_->isUnderWay; });
    }
    return shared_->addresses;
}

} // namespace navrel
