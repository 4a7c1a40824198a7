#pragma once

#include "web/BrowserAccess.h"
#include "web/Certificate.h"
#include "web/Connection.h"
#include "web/Listener.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace navrel {

/// Listens where the settings say, follows the network as it changes, and holds the connections to
/// their limits. Network thread.
class Server {
public:
    using Addresses = std::function<std::vector<std::string>()>;

    struct Parts {
        boost::asio::io_context& context;
        Connection::World& world;
        Addresses privateAddresses;
        std::function<std::chrono::system_clock::time_point()> wallTime;
        std::function<void(const AccessStatus&)> statusChanged;
    };

    explicit Server(Parts parts);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Listens as the settings say, from now on.
    void listen(const AccessSettings& settings);
    /// Listens on the owner's socket, from now on.
    void listenForOwner(const std::string& socketPath);
    void stop();

    std::size_t connectionCount() const { return connections_.size(); }

private:
    /// Where to listen.
    struct Place {
        std::string address;
        bool isTLS = false;
        bool operator==(const Place&) const = default;
    };
    struct OpenPlace {
        Place place;
        std::shared_ptr<Listener> listener;
    };

    std::vector<Place> wantedPlaces();
    void follow();
    void closeUnwanted(const std::vector<Place>& wanted);
    void openPort(const std::vector<Place>& wanted);
    bool openMissing(const std::vector<Place>& wanted, std::uint16_t port);
    std::shared_ptr<Listener> opened(const Place& place, std::uint16_t port, bool& isTaken);
    void closePlaces();
    void renewCertificate(const std::vector<std::string>& addresses);
    void useCertificate(const Certificate& certificate);
    std::vector<std::string> certificateNames() const;
    void publishStatus();
    std::vector<std::string> shownAddresses() const;

    void accepted(StreamSocket socket, const Place& place);
    void acceptedOwner(StreamSocket socket);
    void serve(StreamSocket socket, Caller caller, TLSContext tls);
    bool hasRoomFor(const std::string& address) const;
    void closeConnections();
    boost::asio::awaitable<void> keepTime();
    boost::asio::awaitable<void> keepWatch();

    Parts parts_;
    AccessSettings settings_;
    std::vector<OpenPlace> places_;
    std::shared_ptr<Listener> ownerListener_;
    Certificate certificate_;
    TLSContext tls_;
    std::string fingerprint_;
    std::string problem_;
    std::string ownerProblem_;
    std::unordered_set<std::shared_ptr<Connection>> connections_;
    std::unordered_map<std::string, std::size_t> connectionsOf_; ///< by address; "" the owner's
    std::size_t browserConnections_ = 0;
    boost::asio::steady_timer tickTimer_;
    boost::asio::steady_timer watchTimer_;
    bool isKeepingTime_ = false;
    bool isStopped_ = false;
};

} // namespace navrel
