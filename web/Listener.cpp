#include "web/Listener.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <chrono>
#include <cstring>
#include <netinet/in.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace navrel {

namespace {

namespace asio = boost::asio;

/// Connections that may wait to be accepted.
constexpr int kBacklog = 64;
/// Descriptors may have run out; connections end all the time.
constexpr std::chrono::milliseconds kTryAgainAfter{100};

/// Whether a program listens on a Unix socket.
bool isServed(const asio::local::stream_protocol::endpoint& endpoint) {
    asio::io_context context;
    asio::local::stream_protocol::socket probe(context);
    boost::system::error_code error;
    probe.connect(endpoint, error);
    return !error;
}

} // namespace

Listener::~Listener() {
    stop();
}

std::shared_ptr<Listener> Listener::onAddress(asio::io_context& context, const std::string& address,
                                              std::uint16_t port, ErrorCode& error) {
    const auto parsed = asio::ip::make_address(address, error);
    if (error) {
        return nullptr;
    }
    const asio::ip::tcp::endpoint endpoint(parsed, port);
    const std::shared_ptr<Listener> listener(new Listener(context));
    Acceptor& acceptor = listener->acceptor_;
    acceptor.open(endpoint.protocol(), error);
    if (!error && parsed.is_v6()) {
        acceptor.set_option(asio::ip::v6_only(true), error);
    }
    if (!error) {
        acceptor.set_option(asio::socket_base::reuse_address(true), error);
    }
    if (!error) {
        acceptor.bind(endpoint, error);
    }
    if (!error) {
        acceptor.listen(kBacklog, error);
    }
    return error ? nullptr : listener;
}

std::shared_ptr<Listener> Listener::onUnixSocket(asio::io_context& context, const std::string& path,
                                                 ErrorCode& error) {
    if (path.size() >= sizeof(sockaddr_un::sun_path)) {
        error = boost::system::errc::make_error_code(boost::system::errc::filename_too_long);
        return nullptr;
    }
    const asio::local::stream_protocol::endpoint endpoint(path);
    struct stat status = {};
    const bool isThere = ::lstat(path.c_str(), &status) == 0;
    if (isThere && S_ISSOCK(status.st_mode) && !isServed(endpoint)) {
        ::unlink(path.c_str());
    }
    const std::shared_ptr<Listener> listener(new Listener(context));
    Acceptor& acceptor = listener->acceptor_;
    acceptor.open(endpoint.protocol(), error);
    if (!error) {
        acceptor.bind(endpoint, error);
    }
    if (!error) {
        listener->path_ = path;
        // Nothing connects before it listens.
        ::chmod(path.c_str(), S_IRUSR | S_IWUSR);
        acceptor.listen(kBacklog, error);
    }
    return error ? nullptr : listener;
}

std::uint16_t Listener::port() const {
    ErrorCode error;
    const auto endpoint = acceptor_.local_endpoint(error);
    sockaddr_storage address = {};
    std::memcpy(&address, endpoint.data(), std::min(endpoint.size(), sizeof address));
    const auto* const four = reinterpret_cast<const sockaddr_in*>(&address);
    const auto* const six = reinterpret_cast<const sockaddr_in6*>(&address);
    return ntohs(address.ss_family == AF_INET6 ? six->sin6_port : four->sin_port);
}

void Listener::start(Accepted accepted) {
    asio::co_spawn(
        acceptor_.get_executor(),
        [self = shared_from_this(), accepted = std::move(accepted)]() -> asio::awaitable<void> {
            co_await self->run(accepted);
        },
        asio::detached);
}

asio::awaitable<void> Listener::run(Accepted accepted) {
    asio::steady_timer pause(acceptor_.get_executor());
    while (acceptor_.is_open()) {
        StreamSocket socket(acceptor_.get_executor());
        ErrorCode error;
        co_await acceptor_.async_accept(socket, asio::redirect_error(asio::use_awaitable, error));
        if (!error) {
            accepted(std::move(socket));
        } else if (acceptor_.is_open()) {
            pause.expires_after(kTryAgainAfter);
            co_await pause.async_wait(asio::redirect_error(asio::use_awaitable, error));
        }
    }
}

void Listener::stop() {
    ErrorCode ignored;
    acceptor_.close(ignored);
    if (!path_.empty()) {
        ::unlink(path_.c_str());
        path_.clear();
    }
}

} // namespace navrel
