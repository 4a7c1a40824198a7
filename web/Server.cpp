#include "web/Server.h"

#include "support/core/Log.h"
#include "support/sockets/UnixPeer.h"
#include "web/NetworkAddresses.h"
#include "web/TLSContexts.h"

#include <QString>

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace navrel {

namespace {

namespace asio = boost::asio;
using ErrorCode = boost::system::error_code;

/// How exactly deadlines are kept.
constexpr std::chrono::milliseconds kTick{200};
/// How soon a change of the network, or of the user's certificate, is noticed.
constexpr std::chrono::seconds kWatch{3};

/// Names go into certificates: only what names are made of.
bool isPlainName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '-' || character == '.';
    });
}

std::string peerAddress(const StreamSocket& socket) {
    ErrorCode error;
    const auto endpoint = socket.remote_endpoint(error);
    return error ? std::string() : textOfAddress(endpoint.data());
}

/// Answers leave at once; a peer that vanished is noticed within half a minute of silence.
void prepare(StreamSocket& socket) {
    ErrorCode ignored;
    socket.set_option(asio::ip::tcp::no_delay(true), ignored);
#ifdef __linux__
    constexpr int kMilliseconds = 30'000;
    using UserTimeout = asio::detail::socket_option::integer<IPPROTO_TCP, TCP_USER_TIMEOUT>;
    socket.set_option(UserTimeout(kMilliseconds), ignored);
#endif
}

} // namespace

Server::Server(Parts parts)
    : parts_(std::move(parts)), tickTimer_(parts_.context), watchTimer_(parts_.context) {
    asio::co_spawn(parts_.context, keepWatch(), asio::detached);
}

Server::~Server() = default;

void Server::listen(const AccessSettings& settings) {
    closePlaces();
    closeConnections();
    settings_ = settings;
    tls_ = nullptr;
    certificate_ = {};
    fingerprint_.clear();
    follow();
}

void Server::listenForOwner(const std::string& socketPath) {
    ErrorCode error;
    ownerListener_ = Listener::onUnixSocket(parts_.context, socketPath, error);
    if (ownerListener_ == nullptr) {
        ownerProblem_ =
            "The socket for navrel-companion cannot be opened: " + error.message() + '.';
        log(QStringLiteral("cannot listen on %1: %2")
                .arg(QString::fromStdString(socketPath), QString::fromStdString(error.message())));
        return;
    }
    ownerListener_->start([this](StreamSocket socket) { acceptedOwner(std::move(socket)); });
}

void Server::stop() {
    isStopped_ = true;
    closePlaces();
    if (ownerListener_ != nullptr) {
        ownerListener_->stop();
    }
    closeConnections();
    tickTimer_.cancel();
    watchTimer_.cancel();
}

/// Looks where to listen now, and does.
void Server::follow() {
    problem_.clear();
    const std::vector<Place> wanted = wantedPlaces();
    closeUnwanted(wanted);
    if (!wanted.empty()) {
        openPort(wanted);
    }
    publishStatus();
}

std::vector<Server::Place> Server::wantedPlaces() {
    using Mode = AccessSettings::Mode;
    std::vector<Place> places;
    if (settings_.mode == Mode::off) {
        return places;
    }
    places = {{"127.0.0.1", false}, {"::1", false}};
    if (settings_.mode == Mode::machine) {
        return places;
    }
    const std::vector<std::string> addresses = parts_.privateAddresses();
    if (!settings_.plainHTTP) {
        renewCertificate(addresses);
    }
    if (settings_.plainHTTP || tls_ != nullptr) {
        for (const std::string& address : addresses) {
            places.push_back({address, !settings_.plainHTTP});
        }
    }
    if (addresses.empty()) {
        problem_ = "This machine has no address in a private network.";
    }
    return places;
}

void Server::closeUnwanted(const std::vector<Place>& wanted) {
    std::erase_if(places_, [&wanted](const OpenPlace& open) {
        const bool isWanted = std::find(wanted.begin(), wanted.end(), open.place) != wanted.end();
        if (!isWanted) {
            open.listener->stop();
        }
        return !isWanted;
    });
}

/// All places have one port. Once it is taken it stays, so that a page finds its server again.
void Server::openPort(const std::vector<Place>& wanted) {
    if (!places_.empty()) {
        openMissing(wanted, places_.front().listener->port());
        return;
    }
    for (int further = 0; further <= kFurtherPorts; ++further) {
        const int port = settings_.port + (settings_.port == 0 ? 0 : further);
        constexpr int kLastPort = 65535;
        if (port <= kLastPort && openMissing(wanted, static_cast<std::uint16_t>(port))) {
            return;
        }
        closePlaces();
    }
    problem_ = "Port " + std::to_string(settings_.port) + " and the ten after it are taken.";
}

/// False where another program has the port.
bool Server::openMissing(const std::vector<Place>& wanted, std::uint16_t port) {
    for (const Place& place : wanted) {
        const bool isOpen = std::any_of(places_.begin(), places_.end(),
                                        [&](const OpenPlace& open) { return open.place == place; });
        bool isTaken = false;
        const auto listener = isOpen ? nullptr : opened(place, port, isTaken);
        if (isTaken) {
            return false;
        }
        if (listener != nullptr) {
            port = listener->port();
            places_.push_back({place, listener});
        }
    }
    return !places_.empty();
}

/// Null where the address cannot be used now: IPv6 is off, or the address is on its way. It is
/// tried again by the next look at the network.
std::shared_ptr<Listener> Server::opened(const Place& place, std::uint16_t port, bool& isTaken) {
    ErrorCode error;
    auto listener = Listener::onAddress(parts_.context, place.address, port, error);
    isTaken = error == boost::system::errc::address_in_use;
    if (listener != nullptr) {
        listener->start([this, place](StreamSocket socket) { accepted(std::move(socket), place); });
    }
    return listener;
}

void Server::closePlaces() {
    for (const OpenPlace& open : places_) {
        open.listener->stop();
    }
    places_.clear();
}

std::vector<std::string> Server::certificateNames() const {
    std::vector<std::string> names = {"localhost"};
    const std::string machine = machineName();
    if (isPlainName(machine)) {
        names.push_back(machine);
        names.push_back(machine + ".local");
    }
    std::copy_if(settings_.hosts.begin(), settings_.hosts.end(), std::back_inserter(names),
                 isPlainName);
    return names;
}

/// Takes the user's certificate as its files are now, or one of our own for the present addresses.
void Server::renewCertificate(const std::vector<std::string>& addresses) {
    if (!settings_.certificateFile.empty()) {
        const auto own = userCertificate(settings_.certificateFile, settings_.keyFile);
        if (own) {
            useCertificate(*own);
        } else {
            problem_ = "The certificate or its key cannot be used: " + settings_.certificateFile;
        }
        return;
    }
    const auto names = certificateNames();
    const auto now = parts_.wallTime();
    if (certificate_.chain.empty() || !covers(certificate_, names, addresses, now)) {
        useCertificate(keptCertificate(settings_.folder, names, addresses, now));
    }
}

void Server::useCertificate(const Certificate& certificate) {
    if (certificate == certificate_) {
        return;
    }
    TLSContext fresh = tlsContext(certificate);
    if (fresh == nullptr) {
        problem_ = "The certificate is refused by OpenSSL.";
        return;
    }
    tls_ = std::move(fresh);
    certificate_ = certificate;
    fingerprint_ = fingerprintOf(certificate);
}

/// Other devices' addresses first; those with an interface in their name work in no browser.
std::vector<std::string> Server::shownAddresses() const {
    std::vector<std::string> shown;
    const std::string port =
        places_.empty() ? "" : ':' + std::to_string(places_.front().listener->port());
    const bool hasUserNames = !settings_.certificateFile.empty() && tls_ != nullptr;
    for (const std::string& name : settings_.hosts) {
        if (hasUserNames && isPlainName(name) && !places_.empty()) {
            shown.push_back("https://" + name + port);
        }
    }
    for (const OpenPlace& open : places_) {
        const std::string& address = open.place.address;
        if (!isLoopbackAddress(address) && address.find('%') == std::string::npos) {
            shown.push_back((open.place.isTLS ? "https://" : "http://") + hostOfAddress(address) +
                            port);
        }
    }
    if (!places_.empty()) {
        shown.push_back("http://localhost" + port);
    }
    return shown;
}

void Server::publishStatus() {
    AccessStatus status;
    status.mode = settings_.mode;
    status.port = places_.empty() ? std::uint16_t{0} : places_.front().listener->port();
    status.addresses = shownAddresses();
    status.fingerprint = fingerprint_;
    status.problem = problem_.empty() ? ownerProblem_ : problem_;
    std::vector<std::string> addresses;
    for (const OpenPlace& open : places_) {
        addresses.push_back(open.place.address);
    }
    parts_.world.site.setHostNames(
        HostNames(addresses, status.port, machineName(), settings_.hosts));
    parts_.world.site.setAccess(status);
    parts_.statusChanged(status);
}

/// Closes unread what may not come in.
void Server::accepted(StreamSocket socket, const Place& place) {
    const std::string address = peerAddress(socket);
    const bool isNear = isLoopbackAddress(address) ||
                        (!isLoopbackAddress(place.address) && isPrivateAddress(address));
    if (isStopped_ || !isNear || !hasRoomFor(address)) {
        return;
    }
    prepare(socket);
    const auto way = place.isTLS ? Caller::Way::tls : Caller::Way::plain;
    serve(std::move(socket), {way, address}, place.isTLS ? tls_ : nullptr);
}

void Server::acceptedOwner(StreamSocket socket) {
    if (!isStopped_ && isPeerThisUser(socket.native_handle()) && hasRoomFor({})) {
        serve(std::move(socket), {Caller::Way::owner, {}}, nullptr);
    }
}

bool Server::hasRoomFor(const std::string& address) const {
    const Limits& limits = parts_.world.limits;
    const auto others = connectionsOf_.find(address);
    const bool isOwner = address.empty();
    return (isOwner || browserConnections_ < limits.connections) &&
           (others == connectionsOf_.end() || others->second < limits.connectionsPerAddress);
}

void Server::serve(StreamSocket socket, Caller caller, TLSContext tls) {
    const std::string address = caller.address;
    const auto connection = std::make_shared<Connection>(std::move(socket), std::move(caller),
                                                         std::move(tls), parts_.world);
    connections_.insert(connection);
    ++connectionsOf_[address];
    browserConnections_ += address.empty() ? 0 : 1;
    connection->start([this, address, key = connection.get()] {
        std::erase_if(connections_, [key](const auto& each) { return each.get() == key; });
        browserConnections_ -= address.empty() ? 0 : 1;
        if (--connectionsOf_[address] == 0) {
            connectionsOf_.erase(address);
        }
    });
    if (!isKeepingTime_) {
        isKeepingTime_ = true;
        asio::co_spawn(parts_.context, keepTime(), asio::detached);
    }
}

void Server::closeConnections() {
    const auto connections = connections_; // they leave while they close
    for (const auto& connection : connections) {
        if (isStopped_ || connection->caller().way != Caller::Way::owner) {
            connection->close();
        }
    }
}

/// Holds connections to their deadlines while there are any.
asio::awaitable<void> Server::keepTime() {
    while (!connections_.empty() && !isStopped_) {
        ErrorCode ignored;
        tickTimer_.expires_after(kTick);
        co_await tickTimer_.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
        const auto connections = connections_;
        for (const auto& connection : connections) {
            connection->tick();
        }
    }
    isKeepingTime_ = false;
}

/// Looks now and then whether the network is another.
asio::awaitable<void> Server::keepWatch() {
    while (!isStopped_) {
        ErrorCode ignored;
        watchTimer_.expires_after(kWatch);
        co_await watchTimer_.async_wait(asio::redirect_error(asio::use_awaitable, ignored));
        if (!isStopped_ && settings_.mode != AccessSettings::Mode::off) {
            follow();
        }
    }
}

} // namespace navrel
