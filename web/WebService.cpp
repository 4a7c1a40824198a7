#include "web/WebService.h"

#include "web/NetworkAddresses.h"
#include "web/Server.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <mutex>
#include <thread>
#include <utility>

namespace navrel {

namespace asio = boost::asio;

WebWorld::WebWorld()
    : wallTime(&std::chrono::system_clock::now), now(&std::chrono::steady_clock::now),
      privateAddresses(&navrel::privateAddresses), assetFolder(kAssetFolder) {}

/// In the order of their making: each works with those before it.
class WebService::Parts {
public:
    Parts(const AccessSettings& settings, MapSource map, CompanionHost& host, WebWorld world);
    ~Parts();
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    /// Has a job done on the network thread.
    void post(std::function<void()> job) { asio::post(*context_, std::move(job)); }

    AccessStatus status() const {
        const std::lock_guard lock(statusMutex_);
        return status_;
    }
    void setStatus(const AccessStatus& status);

private:
    Site::Parts siteParts(const AccessSettings& settings);

    const MapSource map_;
    CompanionHost& host_;
    const WebWorld world_;
    std::shared_ptr<asio::io_context> context_ = std::make_shared<asio::io_context>(1);
    asio::executor_work_guard<asio::io_context::executor_type> work_{context_->get_executor()};
    asio::thread_pool views_{1};
    asio::thread_pool repository_{1};
    const Assets assets_;
    mutable std::mutex statusMutex_;
    AccessStatus status_;

public:
    DeviceList devices; ///< any thread
    PairingDesk desk;   ///< any thread
    Site site;

private:
    Connection::World connectionWorld_;

public:
    Server server;

private:
    std::uint64_t observer_ = 0;
    std::thread thread_;
};

WebService::Parts::Parts(const AccessSettings& settings, MapSource map, CompanionHost& host,
                         WebWorld world)
    : map_(std::move(map)), host_(host), world_(std::move(world)), assets_(world_.assetFolder),
      devices(settings.folder + "/devices.json", world_.wallTime), desk(world_.wallTime),
      site(siteParts(settings)),
      connectionWorld_({site, world_.limits, world_.now, views_, repository_}),
      server({*context_, connectionWorld_, world_.privateAddresses, world_.wallTime,
              [this](const AccessStatus& status) { setStatus(status); }}) {
    observer_ = map_.addObserver([this](const CodeMap::Change& change) {
        post([this, change] { site.mapChanged(change); });
    });
    post([this, settings] {
        if (!settings.socketPath.empty()) {
            server.listenForOwner(settings.socketPath);
        }
        server.listen(settings);
    });
    thread_ = std::thread([this] { context_->run(); });
}

WebService::Parts::~Parts() {
    map_.removeObserver(observer_);
    post([this] { server.stop(); });
    work_.reset();
    thread_.join(); // ends with the last connection
    views_.join();
    repository_.join();
    devices.save();
}

Site::Parts WebService::Parts::siteParts(const AccessSettings& settings) {
    const auto post = [weak = std::weak_ptr(context_)](std::function<void()> job) {
        if (const auto context = weak.lock()) {
            asio::post(*context, std::move(job));
        }
    };
    return {world_.limits,    devices,          desk, assets_, map_, host_,
            settings.program, settings.version, post};
}

void WebService::Parts::setStatus(const AccessStatus& status) {
    {
        const std::lock_guard lock(statusMutex_);
        if (std::exchange(status_, status) == status) {
            return;
        }
    }
    host_.accessChanged();
}

WebService::WebService(const AccessSettings& settings, MapSource map, CompanionHost& host,
                       WebWorld world)
    : parts_(std::make_unique<Parts>(settings, std::move(map), host, std::move(world))) {}

WebService::~WebService() = default;

void WebService::listen(const AccessSettings& settings) {
    parts_->post([this, settings] { parts_->server.listen(settings); });
}

AccessStatus WebService::status() const {
    return parts_->status();
}

PairingOffer WebService::offerPairing() {
    return parts_->desk.offer();
}

PairingOffer WebService::currentPairing() {
    return parts_->desk.current();
}

std::vector<PairedDevice> WebService::devices() const {
    return parts_->devices.devices();
}

void WebService::forget(int device) {
    if (parts_->devices.forget(device)) {
        parts_->post([this, device] { parts_->site.deviceGone(device); });
    }
}

void WebService::setReadOnly(int device, bool readOnly) {
    if (parts_->devices.setReadOnly(device, readOnly)) {
        parts_->post([this] { parts_->site.devicesChanged(); });
    }
}

void WebService::publishState(ProgramState state) {
    parts_->post([this, state = std::move(state)] { parts_->site.setState(state); });
}

void WebService::publishFileTypes(std::vector<FileTypeSwitch> types) {
    parts_->post([this, types = std::move(types)] { parts_->site.setFileTypes(types); });
}

void WebService::publishActive(const std::string& absolutePath, std::uint32_t line) {
    parts_->post([this, absolutePath, line] { parts_->site.setActive({absolutePath, line}); });
}

} // namespace navrel
