#include "tests/editors/FakeServer.h"

#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

/// How often the server looks whether it is to end.
constexpr int kTurnMilliseconds = 20;

int boundSocket(const QByteArray& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto* bound = reinterpret_cast<const sockaddr*>(&address);
    return ::bind(descriptor, bound, sizeof address) == 0 ? descriptor : -1;
}

} // namespace

FakeServer::FakeServer(const QByteArray& path, Conversation conversation)
    : conversation_(std::move(conversation)), listener_(boundSocket(path)) {
    constexpr int kQueue = 16;
    ::listen(listener_, kQueue);
    thread_ = std::thread([this] { serve(); });
}

FakeServer::~FakeServer() {
    isEnding_ = true;
    thread_.join();
    ::close(listener_);
}

void FakeServer::serve() {
    pollfd waited = {listener_, POLLIN, 0};
    while (!isEnding_) {
        if (::poll(&waited, 1, kTurnMilliseconds) <= 0) {
            continue;
        }
        const int connection = ::accept(listener_, nullptr, nullptr);
        ++connections_;
        conversation_(connection, isEnding_);
        ::close(connection);
    }
}

void leaveStaleSocket(const QByteArray& path) {
    ::close(boundSocket(path));
}

} // namespace navrel
