#include "tests/web/WebClient.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <netdb.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

constexpr int kDeadlineMilliseconds = 20'000;

struct FreeAddress {
    void operator()(addrinfo* address) const { ::freeaddrinfo(address); }
};

/// Of IPv4 or IPv6, in numbers.
std::unique_ptr<addrinfo, FreeAddress> addressOf(const std::string& text, std::uint16_t port) {
    addrinfo hints = {};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* address = nullptr;
    ::getaddrinfo(text.c_str(), std::to_string(port).c_str(), &hints, &address);
    return std::unique_ptr<addrinfo, FreeAddress>(address);
}

int connectedTo(std::uint16_t port, const std::string& address, const std::string& from) {
    const auto target = addressOf(address, port);
    if (target == nullptr) {
        return -1;
    }
    const int descriptor = ::socket(target->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (const auto source = from.empty() ? nullptr : addressOf(from, 0)) {
        ::bind(descriptor, source->ai_addr, source->ai_addrlen);
    }
    if (::connect(descriptor, target->ai_addr, target->ai_addrlen) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

int connectedTo(const std::string& path) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return std::tolower(character); });
    return text;
}

} // namespace

class WebClient::Socket {
public:
    Socket(int value, Kind kind) : descriptor(value) {
        if (kind == Kind::tls && descriptor >= 0) {
            static SSL_CTX* const context = SSL_CTX_new(TLS_client_method());
            tls_ = SSL_new(context);
            SSL_set_fd(tls_, descriptor);
            if (SSL_connect(tls_) != 1) {
                ERR_clear_error();
                ::close(descriptor);
                descriptor = -1;
            }
        }
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() {
        SSL_free(tls_);
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }

    ssize_t write(std::string_view bytes) const {
        return tls_ != nullptr ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                               : ::send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    }

    /// Negative where nothing comes before the deadline.
    ssize_t read(char* bytes, std::size_t size) const {
        pollfd ready = {descriptor, POLLIN, 0};
        if ((tls_ == nullptr || SSL_pending(tls_) == 0) &&
            ::poll(&ready, 1, kDeadlineMilliseconds) != 1) {
            return -1;
        }
        if (tls_ == nullptr) {
            return std::max<ssize_t>(::recv(descriptor, bytes, size, 0), 0); // a reset ends, too
        }
        const int count = SSL_read(tls_, bytes, static_cast<int>(size));
        ERR_clear_error();
        return std::max(count, 0);
    }

    int descriptor;

private:
    SSL* tls_ = nullptr;
};

WebClient::WebClient(std::uint16_t port, Kind kind, const std::string& address,
                     const std::string& from)
    : socket_(std::make_unique<Socket>(connectedTo(port, address, from), kind)) {}

WebClient::WebClient(const std::string& path)
    : socket_(std::make_unique<Socket>(connectedTo(path), Kind::plain)) {}

WebClient::WebClient(WebClient&&) noexcept = default;
WebClient::~WebClient() = default;

bool WebClient::isConnected() const {
    return socket_->descriptor >= 0;
}

int WebClient::descriptor() const {
    return socket_->descriptor;
}

bool WebClient::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = socket_->write(bytes);
        if (count <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool WebClient::readSome() {
    std::array<char, 65536> bytes = {};
    const ssize_t count =
        hasEnded_ || !isConnected() ? -1 : socket_->read(bytes.data(), bytes.size());
    hasEnded_ = hasEnded_ || count == 0;
    if (count > 0) {
        arrived_.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return count > 0;
}

std::string WebClient::readUntil(std::string_view end) {
    while (arrived_.find(end) == std::string::npos) {
        if (!readSome()) {
            return std::exchange(arrived_, {});
        }
    }
    const auto size = arrived_.find(end) + end.size();
    std::string text = arrived_.substr(0, size);
    arrived_.erase(0, size);
    return text;
}

std::optional<std::string> WebClient::readToEnd() {
    while (readSome()) {
    }
    return hasEnded_ ? std::optional(std::exchange(arrived_, {})) : std::nullopt;
}

WebAnswer WebClient::answer(bool hasBody) {
    WebAnswer answer;
    const std::string head = readUntil("\r\n\r\n");
    if (!head.starts_with("HTTP/1.1 ")) {
        answer.hasEnded = hasEnded_;
        return answer;
    }
    answer.status = std::atoi(head.c_str() + std::strlen("HTTP/1.1 "));
    for (std::size_t at = head.find("\r\n") + 2; at + 2 < head.size();) {
        const auto end = head.find("\r\n", at);
        const auto colon = head.find(": ", at);
        answer.fields[lowered(head.substr(at, colon - at))] =
            head.substr(colon + 2, end - colon - 2);
        at = end + 2;
    }
    const auto length = answer.fields.find("content-length");
    const std::size_t size =
        length == answer.fields.end() || !hasBody ? 0 : std::stoul(length->second);
    while (arrived_.size() < size && readSome()) {
    }
    answer.body = arrived_.substr(0, size);
    arrived_.erase(0, std::min(size, arrived_.size()));
    answer.hasEnded = hasEnded_;
    return answer;
}

} // namespace navrel
