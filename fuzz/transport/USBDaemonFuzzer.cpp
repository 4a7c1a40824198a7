#include "fuzz/transport/CutInput.h"
#include "support/core/Assertion.h"
#include "support/core/Log.h"
#include "support/core/NotificationCentre.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/PTUSBPacket.h"
#include "transport/usb/daemon/KeptUSBStream.h"
#include "transport/usb/daemon/USBDaemonKeeper.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QEventLoop>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <set>
#include <sys/socket.h>
#include <unistd.h>

// A hostile daemon. The first byte of an input says whether the hub listens or connects to a
// device, and into how many pieces the daemon's bytes are cut; the next ones say where; the rest is
// what the daemon sends before it goes. What the hub tells is compared with what a plain walk over
// the packets finds.
namespace navrel {
namespace {

constexpr uint8_t kConnects = 0x80;
constexpr quint32 kRequestTag = 1;

void serve() {
    QCoreApplication::processEvents();
}

template <typename Condition>
void serveUntil(Condition condition) {
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

/// A daemon that accepts one connection, whose other end is the fuzzer's.
class OneConnection final : public USBDaemon {
public:
    OwnedDescriptor openStream() override {
        std::array<int, 2> ends = {};
        if (isTaken || ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) {
            errno = ECONNREFUSED;
            return {};
        }
        isTaken = true;
        peer = OwnedDescriptor(ends[1]);
        return OwnedDescriptor(ends[0]);
    }

    bool isTaken = false;
    OwnedDescriptor peer;
};

/// The program's side of a kept stream on such a daemon.
class KeptConnection final : public USBDaemon {
public:
    OwnedDescriptor openStream() override {
        std::array<int, 2> ends = {};
        NAVREL_ASSERT(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0);
        stream_ = KeptUSBStream::create(OwnedDescriptor(ends[1]), daemon, systemClock(),
                                        USBDaemonKeeper::kReplyTimeout,
                                        {[] {}, [this] { stream_ = nullptr; }});
        return OwnedDescriptor(ends[0]);
    }

    OneConnection daemon;

private:
    std::shared_ptr<KeptUSBStream> stream_;
};

void sendAll(const OwnedDescriptor& peer, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t count = ::send(peer.value(), bytes.data(), static_cast<size_t>(bytes.size()),
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN) {
            return; // the keeper has had enough
        }
        serve();
        bytes = bytes.sliced(std::max<ssize_t>(count, 0));
    }
}

void sendAndGo(OneConnection& daemon, QByteArrayView cuts, QByteArrayView bytes) {
    serveUntil([&] { return daemon.isTaken; });
    for (const char cut : cuts) {
        const auto size = std::min<qsizetype>(static_cast<uint8_t>(cut), bytes.size());
        sendAll(daemon.peer, bytes.first(size));
        bytes = bytes.sliced(size);
    }
    sendAll(daemon.peer, bytes);
    daemon.peer = OwnedDescriptor();
}

/// Calls back with each packet of the bytes, until there is none or false is returned.
template <typename OnPacket>
void walk(QByteArray& bytes, OnPacket onPacket) {
    while (const auto packet = takePTUSBPacket(bytes).packet) {
        if (!onPacket(decodedPTUSBPacket(*packet))) {
            return;
        }
    }
}

std::optional<Error> refusalIn(const PTUSBPacket& reply) {
    std::optional<Error> error = reply.error;
    PTUSBChannel::errorFromPlistResponse(reply.message, error);
    return error;
}

/// How often devices come and go.
struct Traffic {
    size_t attached = 0;
    size_t detached = 0;
    bool operator==(const Traffic&) const = default;
};

/// What a listening hub is to tell of a daemon that sends these bytes and goes.
Traffic trafficIn(QByteArray bytes) {
    Traffic traffic;
    std::set<qlonglong> devices;
    walk(bytes, [&](const PTUSBPacket& packet) {
        if (packet.tag == kRequestTag) {
            return !refusalIn(packet); // a daemon that refuses is left
        }
        if (packet.tag != kPTUSBBroadcastTag || !packet.message) {
            return true;
        }
        const QString type = packet.message->value(QStringLiteral("MessageType")).toString();
        const auto device = numberInMessage(*packet.message, QStringLiteral("DeviceID"));
        if (type == QStringLiteral("Attached")) {
            ++traffic.attached;
            if (device) {
                devices.insert(*device);
            }
        } else if (type == QStringLiteral("Detached")) {
            ++traffic.detached;
            devices.erase(device.value_or(0));
        }
        return true;
    });
    traffic.detached += devices.size();
    return traffic;
}

void listen(QByteArrayView cuts, QByteArrayView bytes) {
    const auto kept = std::make_shared<KeptConnection>();
    auto hub = PTUSBHub::create(kept);
    Traffic told;
    auto& centre = NotificationCentre::defaultCentre();
    const auto attached = centre.addObserver(PTUSBDeviceDidAttachNotification, hub.get(),
                                             [&](const Notification&) { ++told.attached; });
    const auto detached = centre.addObserver(PTUSBDeviceDidDetachNotification, hub.get(),
                                             [&](const Notification&) { ++told.detached; });
    int starts = 0;
    bool hasEnded = false;
    hub->listenOnQueue(
        DispatchQueue::mainQueue(), [&](const auto&) { ++starts; },
        [&](const auto&) { hasEnded = true; });
    sendAndGo(kept->daemon, cuts, bytes);
    const Traffic expected = trafficIn(bytes.toByteArray());
    serveUntil([&] { return told == expected && starts == 1; });
    serve();
    NAVREL_ASSERT(told == expected && starts == 1 && !hasEnded);
    hub = nullptr;
    serveUntil([&] { return hasEnded; });
}

/// What follows the reply to a request; nothing when there is none, or a refusal.
std::optional<QByteArray> bytesBehindReply(QByteArray bytes) {
    std::optional<Error> error = Error::posix(ECONNREFUSED);
    walk(bytes, [&](const PTUSBPacket& packet) {
        if (packet.tag != kRequestTag) {
            return true;
        }
        error = refusalIn(packet);
        return false;
    });
    return error ? std::nullopt : std::optional(bytes);
}

void connect(QByteArrayView cuts, QByteArrayView bytes) {
    const auto kept = std::make_shared<KeptConnection>();
    const auto hub = PTUSBHub::create(kept);
    std::optional<Error> refusal;
    std::shared_ptr<DispatchIO> stream;
    bool hasEnded = false;
    hub->connectToDevice(
        qlonglong{7}, 2345,
        [&](const std::optional<Error>& error, const std::shared_ptr<DispatchIO>& channel) {
            NAVREL_ASSERT(!refusal && !stream);
            refusal = error;
            stream = channel;
        },
        [&](const auto&) { hasEnded = true; });
    sendAndGo(kept->daemon, cuts, bytes);
    serveUntil([&] { return refusal || stream; });
    const auto expected = bytesBehindReply(bytes.toByteArray());
    NAVREL_ASSERT(expected.has_value() == (stream != nullptr));
    if (stream) {
        QByteArray received;
        bool isDone = false;
        stream->read(static_cast<quint64>(expected->size()) + 1, DispatchQueue::mainQueue(),
                     [&](bool done, const DispatchData& data, int) {
                         received += data.toByteArray();
                         isDone = done;
                     });
        serveUntil([&] { return isDone; });
        NAVREL_ASSERT(received == *expected);
        stream = nullptr;
    }
    serveUntil([&] { return hasEnded; });
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static QCoreApplication application(*argc, *argv);
    navrel::setLogReceiver([](const QString&) {}); // odd packets are logged, one by one
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    if (bytes.isEmpty()) {
        return 0;
    }
    const auto input = navrel::CutInput::from(bytes);
    const auto run = (data[0] & navrel::kConnects) != 0 ? navrel::connect : navrel::listen;
    run(input.cuts, input.bytes);
    return 0;
}
