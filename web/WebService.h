#pragma once

#include "web/BrowserAccess.h"
#include "web/Limits.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace navrel {

/// What the server takes from the world. Tests give other ones.
struct WebWorld {
    WebWorld();

    Limits limits;
    std::function<std::chrono::system_clock::time_point()> wallTime; ///< any thread
    std::function<std::chrono::steady_clock::time_point()> now;      ///< for deadlines; any thread
    std::function<std::vector<std::string>()> privateAddresses;      ///< the likeliest first
    std::string assetFolder;                                         ///< of the web app
};

/// The server with everything that it keeps, from its start to its stop: it listens while it lives.
/// Its functions may be called from any thread and do not wait for clients.
class WebService {
public:
    WebService(const AccessSettings& settings, MapSource map, CompanionHost& host,
               WebWorld world = {});
    /// Ends every connection and the threads.
    ~WebService();
    WebService(const WebService&) = delete;
    WebService& operator=(const WebService&) = delete;

    void listen(const AccessSettings& settings);
    AccessStatus status() const;

    PairingOffer offerPairing();
    PairingOffer currentPairing();

    std::vector<PairedDevice> devices() const;
    void forget(int device);
    void setReadOnly(int device, bool readOnly);

    void publishState(ProgramState state);
    void publishFileTypes(std::vector<FileTypeSwitch> types);
    void publishActive(const std::string& absolutePath, std::uint32_t line);

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace navrel
