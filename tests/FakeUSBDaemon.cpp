#include "tests/FakeUSBDaemon.h"

#include "support/propertylist/PropertyList.h"
#include "tests/WaitUntil.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

constexpr qsizetype kHeaderSize = 16;
constexpr int kUnknownDevice = 2;

const QString kMessageType = QStringLiteral("MessageType");
const QString kDeviceID = QStringLiteral("DeviceID");

quint32 word(const QByteArray& bytes, qsizetype index) {
    return qFromLittleEndian<quint32>(bytes.constData() + index * 4);
}

QVariantMap result(int number) {
    return {{kMessageType, QStringLiteral("Result")}, {QStringLiteral("Number"), number}};
}

} // namespace

struct FakeUSBDaemon::Client {
    int descriptor = -1;
    std::unique_ptr<QSocketNotifier, QScopedPointerDeleteLater> notifier;
    QByteArray received;
    QByteArray unsent;
    bool listens = false;
    bool connects = false; ///< has asked for a device
    bool isDevice = false; ///< a device's connection as soon as everything is sent
    bool isGone = false;
};

FakeUSBDaemon::FakeUSBDaemon() {
    pump_.setInterval(0);
    QObject::connect(&pump_, &QTimer::timeout, &pump_, [this] { flushAll(); });
}

FakeUSBDaemon::~FakeUSBDaemon() {
    stop();
    for (const int descriptor : deviceConnections_) {
        ::close(descriptor);
    }
}

QString FakeUSBDaemon::socketPath() const {
    return folder_.filePath(QStringLiteral("usbmuxd"));
}

bool FakeUSBDaemon::start() {
    QFile::remove(socketPath());
    listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(socketPath());
    std::memcpy(address.sun_path, path.constData(), static_cast<size_t>(path.size()));
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener_, 16) != 0) {
        return false;
    }
    listenNotifier_ = std::make_unique<QSocketNotifier>(listener_, QSocketNotifier::Read);
    QObject::connect(listenNotifier_.get(), &QSocketNotifier::activated, listenNotifier_.get(),
                     [this] { accept(); });
    return true;
}

void FakeUSBDaemon::stop() {
    listenNotifier_.reset();
    if (listener_ >= 0) {
        ::close(std::exchange(listener_, -1));
    }
    for (Client& client : clients_) {
        client.isGone = true;
    }
    removeGone();
    devices_.clear();
}

void FakeUSBDaemon::accept() {
    const int descriptor = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (descriptor < 0) {
        return;
    }
    Client& client = clients_.emplace_back();
    client.descriptor = descriptor;
    client.notifier.reset(new QSocketNotifier(descriptor, QSocketNotifier::Read));
    QObject::connect(client.notifier.get(), &QSocketNotifier::activated, client.notifier.get(),
                     [this, &client] {
                         read(client);
                         removeGone();
                     });
}

void FakeUSBDaemon::read(Client& client) {
    std::array<char, 4096> buffer;
    const ssize_t count = ::recv(client.descriptor, buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        client.isGone = count == 0 || errno != EAGAIN;
        return;
    }
    client.received.append(buffer.data(), count);
    while (!client.isDevice && client.received.size() >= kHeaderSize &&
           client.received.size() >= word(client.received, 0)) {
        const QByteArray bytes = client.received.first(word(client.received, 0));
        client.received.remove(0, bytes.size());
        const auto message = propertyListWithData(QByteArrayView(bytes).sliced(kHeaderSize));
        requests_.push_back({word(bytes, 3), message.value_or(QVariant()).toMap(), bytes});
        answer(client, Request(requests_.back()));
    }
}

void FakeUSBDaemon::answer(Client& client, const Request& request) {
    if (request.message.value(kMessageType).toString() == QStringLiteral("Listen")) {
        client.listens = true;
        if (listenAnswer) {
            send(client, packet(request.tag, result(*listenAnswer)));
        }
        for (const qlonglong deviceID : devices_) {
            send(client, attachedPacket(deviceID));
        }
        return;
    }
    client.connects = true;
    if (connectAnswer) {
        const int number = answerToConnect(request);
        client.isDevice = number == 0;
        send(client, packet(request.tag, result(number)) +
                         (client.isDevice ? behindConnectReply : QByteArray()));
    }
}

int FakeUSBDaemon::answerToConnect(const Request& request) const {
    const bool isAttached = devices_.count(request.message.value(kDeviceID).toLongLong()) > 0;
    return isAttached ? *connectAnswer : kUnknownDevice;
}

void FakeUSBDaemon::send(Client& client, const QByteArray& bytes) {
    client.unsent += bytes;
    pump_.start();
}

void FakeUSBDaemon::flush(Client& client) {
    const qsizetype count =
        splitsWrites ? qMin<qsizetype>(1, client.unsent.size()) : client.unsent.size();
    const ssize_t sent = ::send(client.descriptor, client.unsent.constData(),
                                static_cast<size_t>(count), MSG_NOSIGNAL);
    if (sent > 0) {
        client.unsent.remove(0, sent);
    } else if (sent < 0 && errno != EAGAIN) {
        client.isGone = true;
    }
    if (client.isDevice && client.unsent.isEmpty() && !client.isGone) {
        client.notifier->setEnabled(false);
        deviceConnections_.push_back(std::exchange(client.descriptor, -1));
        client.isGone = true;
    }
}

void FakeUSBDaemon::flushAll() {
    bool isDone = true;
    for (Client& client : clients_) {
        if (!client.unsent.isEmpty()) {
            flush(client);
        }
        isDone = isDone && client.unsent.isEmpty();
    }
    removeGone();
    if (isDone) {
        pump_.stop();
    }
}

void FakeUSBDaemon::removeGone() {
    clients_.remove_if([](Client& client) {
        if (client.isGone && client.descriptor >= 0) {
            client.notifier->setEnabled(false);
            ::close(client.descriptor);
        }
        return client.isGone;
    });
}

void FakeUSBDaemon::attach(qlonglong deviceID) {
    devices_.insert(deviceID);
    sendToListeners(attachedPacket(deviceID));
}

void FakeUSBDaemon::detach(qlonglong deviceID) {
    devices_.erase(deviceID);
    sendToListeners(detachedPacket(deviceID));
}

int FakeUSBDaemon::countOfRequests(const QString& messageType) const {
    return static_cast<int>(
        std::count_if(requests_.begin(), requests_.end(), [&](const Request& request) {
            return request.message.value(kMessageType).toString() == messageType;
        }));
}

int FakeUSBDaemon::listenerCount() const {
    return static_cast<int>(std::count_if(clients_.begin(), clients_.end(),
                                          [](const Client& client) { return client.listens; }));
}

void FakeUSBDaemon::sendToListeners(const QByteArray& bytes) {
    for (Client& client : clients_) {
        if (client.listens) {
            send(client, bytes);
        }
    }
}

void FakeUSBDaemon::sendToConnecting(const QByteArray& bytes) {
    for (Client& client : clients_) {
        if (client.connects) {
            send(client, bytes);
        }
    }
}

void FakeUSBDaemon::closeConnecting() {
    for (Client& client : clients_) {
        client.isGone = client.isGone || client.connects;
    }
    removeGone();
}

bool FakeUSBDaemon::hasSentAll() const {
    return std::all_of(clients_.begin(), clients_.end(),
                       [](const Client& client) { return client.unsent.isEmpty(); });
}

int FakeUSBDaemon::waitForDeviceConnection(std::chrono::milliseconds atMost) {
    if (!waitUntil([this] { return !deviceConnections_.empty(); }, atMost)) {
        return -1;
    }
    const int descriptor = deviceConnections_.front();
    deviceConnections_.pop_front();
    return descriptor;
}

QByteArray FakeUSBDaemon::rawPacket(quint32 protocol, quint32 type, quint32 tag,
                                    const QByteArray& payload) {
    QByteArray bytes(kHeaderSize, '\0');
    qToLittleEndian(static_cast<quint32>(kHeaderSize + payload.size()), bytes.data());
    qToLittleEndian(protocol, bytes.data() + 4);
    qToLittleEndian(type, bytes.data() + 8);
    qToLittleEndian(tag, bytes.data() + 12);
    return bytes + payload;
}

QByteArray FakeUSBDaemon::packet(quint32 tag, const QVariantMap& message) {
    return rawPacket(1, 8, tag, XMLDataWithPropertyList(message).value_or(QByteArray()));
}

QByteArray FakeUSBDaemon::attachedPacket(qlonglong deviceID) {
    return packet(0, {{kMessageType, QStringLiteral("Attached")},
                      {kDeviceID, deviceID},
                      {QStringLiteral("Properties"),
                       QVariantMap{{QStringLiteral("ConnectionType"), QStringLiteral("USB")},
                                   {kDeviceID, deviceID}}}});
}

QByteArray FakeUSBDaemon::detachedPacket(qlonglong deviceID) {
    return packet(0, {{kMessageType, QStringLiteral("Detached")}, {kDeviceID, deviceID}});
}

} // namespace navrel
