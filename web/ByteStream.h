#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/system/error_code.hpp>
#include <memory>
#include <string_view>

namespace navrel {

using StreamSocket = boost::asio::generic::stream_protocol::socket;
using TLSContext = std::shared_ptr<boost::asio::ssl::context>;

/// A connected socket, with or without TLS. Network thread; one read and one write at a time.
class ByteStream {
public:
    using ErrorCode = boost::system::error_code;

    virtual ~ByteStream() = default;

    /// What comes before the first byte of content. Nothing without TLS.
    virtual boost::asio::awaitable<void> shakeHands(ErrorCode& error) = 0;
    /// Reads what has arrived, at least a byte; 0 with an error.
    virtual boost::asio::awaitable<std::size_t> read(boost::asio::mutable_buffer buffer,
                                                     ErrorCode& error) = 0;
    /// Writes both texts as if they were one.
    virtual boost::asio::awaitable<void> write(std::string_view head, std::string_view body,
                                               ErrorCode& error) = 0;
    /// Says that nothing more comes.
    virtual void shutDown() = 0;
    /// Ends whatever is under way, with an error.
    virtual void close() = 0;
};

std::unique_ptr<ByteStream> plainStream(StreamSocket socket);
std::unique_ptr<ByteStream> tlsStream(StreamSocket socket, TLSContext context);

} // namespace navrel
