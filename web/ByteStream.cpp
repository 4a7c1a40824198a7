#include "web/ByteStream.h"

#include <array>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>

namespace navrel {

namespace {

namespace asio = boost::asio;

auto into(ByteStream::ErrorCode& error) {
    return asio::redirect_error(asio::use_awaitable, error);
}

/// The same for both: `Stream` reads and writes, `socket` is below it.
template <typename Stream>
class StreamOf : public ByteStream {
public:
    explicit StreamOf(Stream stream) : stream_(std::move(stream)) {}

    asio::awaitable<void> shakeHands(ErrorCode&) override { co_return; }

    asio::awaitable<std::size_t> read(asio::mutable_buffer buffer, ErrorCode& error) override {
        co_return co_await stream_.async_read_some(buffer, into(error));
    }

    asio::awaitable<void> write(std::string_view head, std::string_view body,
                                ErrorCode& error) override {
        const std::array<asio::const_buffer, 2> buffers = {asio::buffer(head), asio::buffer(body)};
        co_await asio::async_write(stream_, buffers, into(error));
    }

    void shutDown() override {
        ErrorCode ignored; // the other end may be gone
        stream_.lowest_layer().shutdown(asio::socket_base::shutdown_send, ignored);
    }

    void close() override {
        ErrorCode ignored;
        stream_.lowest_layer().close(ignored);
    }

protected:
    Stream stream_;
};

using TLS = asio::ssl::stream<StreamSocket>;

class TLSStream final : public StreamOf<TLS> {
public:
    TLSStream(StreamSocket socket, TLSContext context)
        : StreamOf(TLS(std::move(socket), *context)), context_(std::move(context)) {}

    asio::awaitable<void> shakeHands(ErrorCode& error) override {
        co_await stream_.async_handshake(asio::ssl::stream_base::server, into(error));
    }

private:
    TLSContext context_; ///< the stream's, kept while another may have taken its place
};

} // namespace

std::unique_ptr<ByteStream> plainStream(StreamSocket socket) {
    return std::make_unique<StreamOf<StreamSocket>>(std::move(socket));
}

std::unique_ptr<ByteStream> tlsStream(StreamSocket socket, TLSContext context) {
    return std::make_unique<TLSStream>(std::move(socket), std::move(context));
}

} // namespace navrel
