#include "tests/TestDevice.h"

#include "support/propertylist/PropertyList.h"
#include "tests/WaitUntil.h"

#include <QtEndian>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace navrel {

namespace {

constexpr quint16 kPort = 2345;
constexpr qsizetype kHeaderSize = 16;
constexpr quint32 kVersionRequest = 211;
constexpr std::chrono::milliseconds kAskAgainAfter{100};

bool isReadable(int descriptor) {
    pollfd poller = {descriptor, POLLIN, 0};
    return ::poll(&poller, 1, 0) > 0;
}

void closeIfOpen(int& descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    descriptor = -1;
}

quint32 word(const QByteArray& bytes, qsizetype index) {
    return qFromBigEndian<quint32>(bytes.constData() + index * 4);
}

} // namespace

TestDevice::~TestDevice() {
    stopListening();
    disconnect();
}

bool TestDevice::listen() {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int yes = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return ::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
           ::listen(listener_, 8) == 0;
}

void TestDevice::stopListening() {
    closeIfOpen(listener_);
}

bool TestDevice::isConnectionWaiting() const {
    return isReadable(listener_);
}

bool TestDevice::waitForConnection(std::chrono::milliseconds atMost) {
    if (!waitUntil([this] { return isConnectionWaiting(); }, atMost)) {
        return false;
    }
    adopt(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC));
    return connection_ >= 0;
}

void TestDevice::adopt(int connection) {
    disconnect();
    connection_ = connection;
}

void TestDevice::disconnect() {
    closeIfOpen(connection_);
    hasEnded_ = false;
    received_.clear();
}

QByteArray TestDevice::frame(quint32 type, quint32 tag, const QByteArray& payload) {
    QByteArray bytes(kHeaderSize, '\0');
    qToBigEndian<quint32>(1, bytes.data());
    qToBigEndian<quint32>(type, bytes.data() + 4);
    qToBigEndian<quint32>(tag, bytes.data() + 8);
    qToBigEndian<quint32>(static_cast<quint32>(payload.size()), bytes.data() + 12);
    return bytes + payload;
}

QByteArray TestDevice::request(quint32 type, quint32 tag, const QVariantMap& dictionary) {
    return frame(type, tag, binaryDataWithPropertyList(dictionary).value_or(QByteArray()));
}

bool TestDevice::sendBytes(const QByteArray& bytes) {
    qsizetype sent = 0;
    return waitUntil([&] {
               const ssize_t count =
                   ::send(connection_, bytes.constData() + sent,
                          static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL | MSG_DONTWAIT);
               sent += count > 0 ? count : 0;
               // What has been answered meanwhile is taken in: a full pipe in both directions
               // stands still.
               receive();
               return sent == bytes.size() || (count < 0 && errno != EAGAIN);
           }) &&
           sent == bytes.size();
}

void TestDevice::receive() {
    while (!hasEnded_ && connection_ >= 0 && isReadable(connection_)) {
        std::array<char, 65536> buffer;
        const ssize_t count = ::recv(connection_, buffer.data(), buffer.size(), MSG_DONTWAIT);
        hasEnded_ = count <= 0;
        received_.append(buffer.data(), count > 0 ? count : 0);
    }
}

std::optional<TestDevice::Frame> TestDevice::takeFrame() {
    if (received_.size() < kHeaderSize) {
        return std::nullopt;
    }
    const qsizetype size = word(received_, 3);
    if (word(received_, 0) != 1 || received_.size() < kHeaderSize + size) {
        return std::nullopt;
    }
    const Frame frame = {word(received_, 1), word(received_, 2), received_.mid(kHeaderSize, size)};
    received_.remove(0, kHeaderSize + size);
    return frame;
}

std::optional<TestDevice::Frame> TestDevice::nextFrame(std::chrono::milliseconds atMost) {
    std::optional<Frame> frame;
    waitUntil(
        [&] {
            receive();
            frame = takeFrame();
            return frame.has_value() || hasEnded_;
        },
        atMost);
    return frame;
}

bool TestDevice::waitForEnd(std::chrono::milliseconds atMost) {
    return waitUntil(
        [this] {
            receive();
            return hasEnded_;
        },
        atMost);
}

bool TestDevice::waitUntilServed(std::chrono::milliseconds atMost) {
    return waitUntil(
        [this] {
            const quint32 tag = ++lastTag_;
            if (!sendBytes(frame(kVersionRequest, tag))) {
                return false;
            }
            // Answers to earlier questions may have been slower than the patience with them.
            auto reply = nextFrame(kAskAgainAfter);
            while (reply && reply->tag != tag) {
                reply = nextFrame(kAskAgainAfter);
            }
            return reply.has_value();
        },
        atMost);
}

std::optional<QVariantMap> TestDevice::ask(quint32 type, const QVariantMap& dictionary) {
    const quint32 tag = ++lastTag_;
    const quint32 endTag = ++lastTag_;
    EXPECT_TRUE(sendBytes(request(type, tag, dictionary) + frame(kVersionRequest, endTag)));
    std::optional<QVariantMap> answer;
    while (const auto reply = nextFrame()) {
        if (reply->tag == tag) {
            answer = dictionaryOf(reply->payload);
        }
        if (reply->tag == endTag) {
            return answer;
        }
    }
    ADD_FAILURE() << "the connection ended, or nothing was answered at all";
    return std::nullopt;
}

QVariantMap dictionaryOf(const QByteArray& payload) {
    const auto value = propertyListWithData(payload);
    return value ? value->toMap() : QVariantMap();
}

} // namespace navrel
