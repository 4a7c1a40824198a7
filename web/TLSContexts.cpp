#include "web/TLSContexts.h"

#include <boost/asio/ssl/context.hpp>
#include <openssl/ssl.h>

namespace navrel {

namespace {

namespace ssl = boost::asio::ssl;

/// Ephemeral keys and authenticated encryption only. This limits TLS 1.2; TLS 1.3 has no others.
constexpr const char* kCiphers = "ECDHE+AESGCM:ECDHE+CHACHA20";

} // namespace

TLSContext tlsContext(const Certificate& certificate) {
    auto context = std::make_shared<ssl::context>(ssl::context::tls_server);
    SSL_CTX* const native = context->native_handle();
    SSL_CTX_set_min_proto_version(native, TLS1_2_VERSION);
    SSL_CTX_set_cipher_list(native, kCiphers);
    SSL_CTX_set_options(native, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION |
                                    SSL_OP_CIPHER_SERVER_PREFERENCE);
    // A connection that waits for requests gives its buffers back.
    SSL_CTX_set_mode(native, SSL_MODE_RELEASE_BUFFERS);
    boost::system::error_code error;
    const auto bytes = [](const std::string& text) { return boost::asio::buffer(text); };
    context->use_certificate_chain(bytes(certificate.chain), error);
    if (!error) {
        context->use_private_key(bytes(certificate.key), ssl::context::pem, error);
    }
    return error ? nullptr : context;
}

} // namespace navrel
