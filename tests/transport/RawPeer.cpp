#include "tests/transport/RawPeer.h"

#include "tests/WaitUntil.h"

#include <QtEndian>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

sockaddr_in loopbackAddress(quint16 port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

RawPeer::RawPeer(RawPeer&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

RawPeer& RawPeer::operator=(RawPeer&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

RawPeer::~RawPeer() {
    close();
}

RawPeer RawPeer::connectedTo(quint16 port) {
    RawPeer peer(::socket(AF_INET, SOCK_STREAM, 0));
    const sockaddr_in address = loopbackAddress(port);
    EXPECT_EQ(
        ::connect(peer.descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
        0);
    return peer;
}

void RawPeer::send(const QByteArray& bytes) const {
    EXPECT_EQ(sendSome(bytes), bytes.size());
}

qsizetype RawPeer::sendSome(const QByteArray& bytes) const {
    const ssize_t count = ::send(descriptor_, bytes.constData(), static_cast<size_t>(bytes.size()),
                                 MSG_NOSIGNAL | MSG_DONTWAIT);
    return count > 0 ? count : 0;
}

QByteArray RawPeer::receive() const {
    QByteArray received;
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t count = ::recv(descriptor_, buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count <= 0) {
            return received;
        }
        received.append(buffer.data(), count);
    }
}

bool RawPeer::hasEnded() const {
    char byte = 0;
    const ssize_t count = ::recv(descriptor_, &byte, 1, MSG_DONTWAIT | MSG_PEEK);
    return count == 0 || (count < 0 && errno != EAGAIN);
}

void RawPeer::close() {
    if (descriptor_ >= 0) {
        ::close(std::exchange(descriptor_, -1));
    }
}

void RawPeer::reset() {
    const linger atOnce = {1, 0};
    EXPECT_EQ(::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce), 0);
    close();
}

RawListener::RawListener(quint16 port) : descriptor_(::socket(AF_INET, SOCK_STREAM, 0)) {
    const int on = 1;
    const sockaddr_in address = loopbackAddress(port);
    EXPECT_EQ(::setsockopt(descriptor_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on), 0);
    EXPECT_EQ(::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(descriptor_, 5), 0);
}

RawListener::~RawListener() {
    ::close(descriptor_);
}

RawPeer RawListener::accept() const {
    pollfd connection = {descriptor_, POLLIN, 0};
    EXPECT_TRUE(waitUntil([&] { return ::poll(&connection, 1, 0) == 1; })) << "nobody connects";
    if (connection.revents == 0) {
        return {};
    }
    const int descriptor = ::accept(descriptor_, nullptr, nullptr);
    EXPECT_GE(descriptor, 0);
    return RawPeer(descriptor);
}

QByteArray frameBytes(quint32 type, quint32 tag, const QByteArray& payload) {
    QByteArray bytes;
    for (const quint32 word : {quint32{1}, type, tag, static_cast<quint32>(payload.size())}) {
        const quint32 ordered = qToBigEndian(word);
        bytes.append(reinterpret_cast<const char*>(&ordered), sizeof ordered);
    }
    return bytes + payload;
}

} // namespace navrel
