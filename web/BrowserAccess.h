#pragma once

#include "web/CompanionHost.h"
#include "web/MapSource.h"
#include "web/ProgramState.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// Who may reach the program by a browser, and where its server keeps what it must remember.
struct AccessSettings {
    enum class Mode {
        off,     ///< only the owner's socket
        machine, ///< programs of this machine: 127.0.0.1 and ::1, HTTP
        network, ///< also devices of the private networks of this machine, HTTPS
    };

    Mode mode = Mode::off;
    /// The first port that is tried; where it is taken, the next ten are. 0 takes any.
    std::uint16_t port = 2346;
    bool plainHTTP = false;         ///< HTTP in the network: what is shown can be read there
    std::string certificateFile;    ///< PEM, the user's own; empty for one that is made here
    std::string keyFile;            ///< PEM, its key
    std::vector<std::string> hosts; ///< names besides this machine's own by which it is reached
    /// A folder of this user's alone for devices.json and the certificate. Made where missing.
    std::string folder;
    std::string socketPath; ///< the owner's Unix socket; empty for none
    std::string program = "Navrel";
    std::string version;

    bool operator==(const AccessSettings&) const = default;
};

/// "off", "machine" or "network"; nothing for another word.
std::optional<AccessSettings::Mode> accessModeFromText(std::string_view text);
std::string_view nameOf(AccessSettings::Mode mode);

/// Where the settings end up: what the pairing window shows.
struct AccessStatus {
    AccessSettings::Mode mode = AccessSettings::Mode::off;
    std::uint16_t port = 0; ///< the one that was taken; 0 where none is
    /// "https://192.168.1.5:2346" …: for other devices first, and of those the one of the default
    /// route first. Empty while nothing is listened on.
    std::vector<std::string> addresses;
    /// SHA-256 of the certificate as the browser shows it, "AB:CD:…"; empty without TLS.
    std::string fingerprint;
    /// What is amiss: one sentence; empty where nothing is.
    std::string problem;

    bool operator==(const AccessStatus&) const = default;
};

/// What lets one more device in.
struct PairingOffer {
    using Time = std::chrono::system_clock::time_point;

    std::string ticket; ///< 22 characters; empty where nothing was offered
    Time ticketExpires;
    std::string code; ///< six digits; empty once too many wrong ones were tried
    Time codeExpires;
};

/// What a device is to open: the address of an AccessStatus with the offer's ticket.
std::string pairingURL(std::string_view address, const PairingOffer& offer);

struct PairedDevice {
    using Time = std::chrono::system_clock::time_point;

    int number = 0;    ///< its name for `forget`; never used again
    std::string label; ///< "iPad, Safari"; harmless to show as plain text
    Time paired;
    Time seen;
    bool readOnly = false; ///< may look, not open
    bool connected = false;
};

class WebService;

/// The server for browsers, as the program sees it. It runs on threads of its own: no function here
/// waits for a client. All functions must be called from one thread, the main one; times are UTC.
class BrowserAccess {
public:
    /// `map` and `host` must outlive it. Nothing is listened on before `start`.
    BrowserAccess(AccessSettings settings, MapSource map, CompanionHost& host);
    /// Stops.
    ~BrowserAccess();
    BrowserAccess(const BrowserAccess&) = delete;
    BrowserAccess& operator=(const BrowserAccess&) = delete;

    /// Starts the threads, and listening as the settings say. A failure is a problem of the status:
    /// it is tried again every few seconds.
    void start();
    /// Ends every connection and the threads; the host is not called afterwards. May start again.
    void stop();
    /// Listens as other settings say. Connections that these do not allow end; `folder` and
    /// `socketPath` take effect with the next start.
    void change(AccessSettings settings);

    const AccessSettings& settings() const { return settings_; }
    AccessStatus status() const;

    /// Offers pairing: a ticket for five minutes and a code for two. Any former offer is void.
    PairingOffer offerPairing();
    /// The present offer, whose parts are new where they had expired. Nothing is new where nothing
    /// was offered, or where the code was closed by wrong tries. For the pairing window, which asks
    /// while it shows one, and after `accessChanged`.
    PairingOffer currentPairing();

    std::vector<PairedDevice> devices() const;
    /// Forgets a device at once, its streams end. Nothing happens where there is none.
    void forget(int device);
    void setReadOnly(int device, bool readOnly);

    void publishState(ProgramState state);
    void publishFileTypes(std::vector<FileTypeSwitch> types);
    /// The file and line (from 1; 0 where unknown) that the editor shows; an absolute path, empty
    /// for none.
    void publishActive(const std::string& absolutePath, std::uint32_t line);

private:
    AccessSettings settings_;
    MapSource map_;
    CompanionHost& host_;
    ProgramState state_;
    std::vector<FileTypeSwitch> fileTypes_;
    std::string activePath_;
    std::uint32_t activeLine_ = 0;
    std::unique_ptr<WebService> service_; ///< null before the start
};

} // namespace navrel
