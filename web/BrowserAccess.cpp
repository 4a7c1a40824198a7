#include "web/BrowserAccess.h"

#include "web/WebService.h"

#include <array>

namespace navrel {

namespace {

constexpr std::array<std::pair<std::string_view, AccessSettings::Mode>, 3> kModes = {{
    {"off", AccessSettings::Mode::off},
    {"machine", AccessSettings::Mode::machine},
    {"network", AccessSettings::Mode::network},
}};

} // namespace

std::optional<AccessSettings::Mode> accessModeFromText(std::string_view text) {
    for (const auto& [name, mode] : kModes) {
        if (name == text) {
            return mode;
        }
    }
    return std::nullopt;
}

std::string_view nameOf(AccessSettings::Mode mode) {
    return kModes.at(static_cast<std::size_t>(mode)).first;
}

BrowserAccess::BrowserAccess(AccessSettings settings, MapSource map, CompanionHost& host)
    : settings_(std::move(settings)), map_(std::move(map)), host_(host) {}

BrowserAccess::~BrowserAccess() = default;

void BrowserAccess::start() {
    if (service_ != nullptr) {
        return;
    }
    service_ = std::make_unique<WebService>(settings_, map_, host_);
    service_->publishState(state_);
    service_->publishFileTypes(fileTypes_);
    service_->publishActive(activePath_, activeLine_);
}

void BrowserAccess::stop() {
    service_.reset();
}

void BrowserAccess::change(AccessSettings settings) {
    settings_ = std::move(settings);
    if (service_ != nullptr) {
        service_->listen(settings_);
    }
}

AccessStatus BrowserAccess::status() const {
    return service_ == nullptr ? AccessStatus() : service_->status();
}

PairingOffer BrowserAccess::offerPairing() {
    return service_ == nullptr ? PairingOffer() : service_->offerPairing();
}

PairingOffer BrowserAccess::currentPairing() {
    return service_ == nullptr ? PairingOffer() : service_->currentPairing();
}

std::vector<PairedDevice> BrowserAccess::devices() const {
    return service_ == nullptr ? std::vector<PairedDevice>() : service_->devices();
}

void BrowserAccess::forget(int device) {
    if (service_ != nullptr) {
        service_->forget(device);
    }
}

void BrowserAccess::setReadOnly(int device, bool readOnly) {
    if (service_ != nullptr) {
        service_->setReadOnly(device, readOnly);
    }
}

void BrowserAccess::publishState(ProgramState state) {
    state_ = std::move(state);
    if (service_ != nullptr) {
        service_->publishState(state_);
    }
}

void BrowserAccess::publishFileTypes(std::vector<FileTypeSwitch> types) {
    fileTypes_ = std::move(types);
    if (service_ != nullptr) {
        service_->publishFileTypes(fileTypes_);
    }
}

void BrowserAccess::publishActive(const std::string& absolutePath, std::uint32_t line) {
    activePath_ = absolutePath;
    activeLine_ = line;
    if (service_ != nullptr) {
        service_->publishActive(absolutePath, line);
    }
}

} // namespace navrel
