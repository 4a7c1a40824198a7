#include "tests/editors/FakeServer.h"

#include "editors/neovim/MessagePack.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
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

FakeNeovim::FakeNeovim(const QByteArray& path, QByteArray file, Mood mood)
    : path_(path), file_(std::move(file)), mood_(mood),
      server_(std::make_unique<FakeServer>(
          path, [this](int connection, const std::atomic<bool>& isEnding) {
              converse(connection, isEnding);
          })) {}

FakeNeovim::~FakeNeovim() {
    server_ = nullptr;
    ::unlink(path_.constData()); // as the real one does at its end
}

void FakeNeovim::converse(int connection, const std::atomic<bool>& isEnding) {
    QByteArray received;
    pollfd waited = {connection, POLLIN, 0};
    pollfd hangUp = {connection, POLLRDHUP, 0};
    while (!isEnding) {
        if (received.isEmpty() && ::poll(&waited, 1, kTurnMilliseconds) <= 0) {
            continue;
        }
        std::array<char, 4096> piece;
        const ssize_t count =
            ::recv(connection, piece.data(), piece.size(), received.isEmpty() ? 0 : MSG_DONTWAIT);
        if (count == 0 || (count < 0 && received.isEmpty())) {
            return;
        }
        received.append(piece.data(), std::max<ssize_t>(0, count));
        const MessagePackReading reading = readMessagePack(received);
        if (reading.outcome != MessagePackReading::Outcome::Complete) {
            continue;
        }
        if (mood_ == Mood::Silent) { // it reads on once it is continued
            if (::poll(&hangUp, 1, kTurnMilliseconds) > 0) {
                return;
            }
            continue;
        }
        received.remove(0, reading.length);
        const QByteArray reply = replyTo(reading.value.toList());
        ::send(connection, reply.constData(), static_cast<size_t>(reply.size()), MSG_NOSIGNAL);
    }
}

/// The bytes that answer a request.
QByteArray FakeNeovim::replyTo(const QVariantList& request) {
    const Mood mood = mood_;
    const QByteArray beginning = QByteArray("\x94\x01") + messagePackOf(request[1]);
    if (request[2] == QByteArray("nvim_get_mode")) {
        const bool isFirst = modesTold_++ == 0;
        const bool waits = mood == Mood::WaitsForAKey || (mood == Mood::WaitsSoon && !isFirst);
        return beginning + "\xC0\x81" + messagePackOf(QByteArray("blocking")) +
               messagePackOf(waits);
    }
    if (mood == Mood::Refuses) {
        return beginning + messagePackOf(QVariantList{0, QByteArray("Refused")}) + '\xC0';
    }
    return beginning + '\xC0' + messagePackOf(file_);
}

void makeOlder(const QByteArray& path, int seconds) {
    const timespec date = {::time(nullptr) - seconds, 0};
    const std::array<timespec, 2> dates = {date, date};
    ::utimensat(AT_FDCWD, path.constData(), dates.data(), 0);
}

void leaveStaleSocket(const QByteArray& path) {
    ::close(boundSocket(path));
}

} // namespace navrel
