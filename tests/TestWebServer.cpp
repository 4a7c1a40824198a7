#include "tests/TestWebServer.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

constexpr int kPollMilliseconds = 20;

QByteArray response(const QByteArray& status, const QByteArray& headers, const QByteArray& body) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n" + headers + "\r\n" + body;
}

bool isReadable(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, kPollMilliseconds) > 0;
}

/// The request as far as the empty line; less when the peer goes first.
QByteArray readRequest(int connection, const TestWebServer& server) {
    QByteArray request;
    while (!request.contains("\r\n\r\n") && !server.isEnding()) {
        if (!isReadable(connection)) {
            continue;
        }
        char buffer[1024];
        const ssize_t count = ::recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) {
            break;
        }
        request.append(buffer, count);
    }
    return request;
}

} // namespace

TestWebServer::TestWebServer(Answer answer) : answer_(std::move(answer)) {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    const bool isListening = ::bind(listener_, generic, length) == 0 &&
                             ::listen(listener_, 8) == 0 &&
                             ::getsockname(listener_, generic, &length) == 0;
    EXPECT_TRUE(isListening);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

TestWebServer::~TestWebServer() {
    isEnding_ = true;
    thread_.join();
    ::close(listener_);
}

void TestWebServer::serve() {
    while (!isEnding_) {
        if (!isReadable(listener_)) {
            continue;
        }
        const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) {
            continue;
        }
        const QByteArray request = readRequest(connection, *this);
        // A client may open more connections than it uses.
        if (!request.isEmpty()) {
            {
                const std::lock_guard lock(mutex_);
                requests_.push_back(request.left(request.indexOf("\r\n")).toStdString());
            }
            answer_(connection, *this);
        }
        ::close(connection);
    }
}

TestWebServer::Answer TestWebServer::text(const QByteArray& body, const QByteArray& status) {
    return raw(response(status, "Content-Type: text/plain\r\n", body));
}

TestWebServer::Answer TestWebServer::redirection(const QByteArray& location) {
    return raw(response("302 Found", "Location: " + location + "\r\n", QByteArray()));
}

TestWebServer::Answer TestWebServer::raw(const QByteArray& bytes) {
    return [bytes](int connection, const TestWebServer&) { send(connection, bytes); };
}

TestWebServer::Answer TestWebServer::stall() {
    return [](int, const TestWebServer& server) {
        while (!server.isEnding()) {
            ::poll(nullptr, 0, kPollMilliseconds);
        }
    };
}

QUrl TestWebServer::url(const QByteArray& path) const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port_).arg(QString::fromUtf8(path)));
}

std::vector<std::string> TestWebServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

bool TestWebServer::send(int connection, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count =
            ::send(connection, bytes.data(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        bytes = bytes.sliced(count);
    }
    return true;
}

} // namespace navrel
