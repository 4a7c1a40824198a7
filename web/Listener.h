#pragma once

#include "web/ByteStream.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace navrel {

/// One place where connections arrive: an address and port, or a Unix socket. Network thread.
class Listener : public std::enable_shared_from_this<Listener> {
public:
    using ErrorCode = boost::system::error_code;
    using Accepted = std::function<void(StreamSocket socket)>;

    /// Listens on a port of an address ("::1", "fe80::1%eth0"), 0 for any; null with an error.
    static std::shared_ptr<Listener> onAddress(boost::asio::io_context& context,
                                               const std::string& address, std::uint16_t port,
                                               ErrorCode& error);
    /// Listens on a Unix socket that no other user may connect to. A file that a dead program left
    /// in its place is removed; null with an error where another one listens.
    static std::shared_ptr<Listener> onUnixSocket(boost::asio::io_context& context,
                                                  const std::string& path, ErrorCode& error);
    ~Listener();

    /// Gives every connection to `accepted`, until it is stopped.
    void start(Accepted accepted);
    void stop();

    /// The port that was taken.
    std::uint16_t port() const;

private:
    using Acceptor = boost::asio::basic_socket_acceptor<boost::asio::generic::stream_protocol>;

    explicit Listener(boost::asio::io_context& context) : acceptor_(context) {}
    boost::asio::awaitable<void> run(Accepted accepted);

    Acceptor acceptor_;
    std::string path_; ///< of a Unix socket, removed at the end
};

} // namespace navrel
