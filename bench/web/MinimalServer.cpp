#include "bench/web/MinimalServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstddef>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace navrel::bench {

namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";

/// Answers the request that has arrived; false at the end of the connection.
bool answerOn(int connection, const std::string& answer) {
    std::array<char, 4096> bytes = {};
    const ssize_t size = ::recv(connection, bytes.data(), bytes.size(), 0);
    if (size <= 0) {
        return false;
    }
    const std::string_view arrived(bytes.data(), static_cast<std::size_t>(size));
    return !arrived.ends_with(kHeadEnd) ||
           ::send(connection, answer.data(), answer.size(), MSG_NOSIGNAL) > 0;
}

int acceptOn(int listener) {
    const int connection = ::accept(listener, nullptr, nullptr);
    const int on = 1;
    ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return connection;
}

} // namespace

MinimalServer::MinimalServer(std::string answer) : answer_(std::move(answer)) {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const name = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    constexpr int kBacklog = 64;
    if (::bind(listener_, name, length) == 0 && ::listen(listener_, kBacklog) == 0 &&
        ::getsockname(listener_, name, &length) == 0) {
        port_ = ntohs(address.sin_port);
    }
    thread_ = std::thread([this] { serve(); });
}

MinimalServer::~MinimalServer() {
    ::shutdown(listener_, SHUT_RDWR);
    thread_.join();
    ::close(listener_);
}

void MinimalServer::serve() {
    std::vector<pollfd> waited = {{listener_, POLLIN, 0}};
    bool isOpen = true;
    while (isOpen || waited.size() > 1) {
        ::poll(waited.data(), waited.size(), -1);
        std::vector<pollfd> kept = {{isOpen ? listener_ : -1, POLLIN, 0}};
        for (std::size_t index = 1; index < waited.size(); ++index) {
            const pollfd& each = waited[index];
            if (each.revents == 0 || answerOn(each.fd, answer_)) {
                kept.push_back({each.fd, POLLIN, 0});
            } else {
                ::close(each.fd);
            }
        }
        if (waited.front().revents != 0) {
            const int connection = acceptOn(listener_);
            isOpen = connection >= 0;
            if (isOpen) {
                kept.push_back({connection, POLLIN, 0});
            } else {
                kept.front().fd = -1;
            }
        }
        waited = std::move(kept);
    }
}

} // namespace navrel::bench
