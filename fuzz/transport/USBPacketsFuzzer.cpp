#include "fuzz/transport/CutInput.h"
#include "support/core/Assertion.h"
#include "support/core/Log.h"
#include "support/core/NotificationCentre.h"
#include "transport/usb/PTUSBChannel.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/PTUSBPacket.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// What a hostile daemon sends, read without a stream. The first byte of an input says into how many
// pieces the rest is cut, the next ones where. However the bytes are cut, the packets must be the
// same; the hub must tell of each device that was attached or detached, and of no other.
namespace navrel {
namespace {

/// The packets of bytes that arrive piece by piece.
class Reader {
public:
    void take(QByteArrayView bytes) {
        if (isMalformed_) {
            return;
        }
        received_.append(bytes);
        for (;;) {
            PTUSBPacketTaken taken = takePTUSBPacket(received_);
            isMalformed_ = taken.isMalformed;
            if (isMalformed_) {
                received_.clear(); // how much had arrived by then says nothing
            }
            if (!taken.packet) {
                return;
            }
            packets_.push_back(*std::move(taken.packet));
        }
    }

    const std::vector<QByteArray>& packets() const { return packets_; }
    bool operator==(const Reader&) const = default;

private:
    QByteArray received_;
    std::vector<QByteArray> packets_;
    bool isMalformed_ = false;
};

/// How often devices came and went.
struct Traffic {
    size_t attached = 0;
    size_t detached = 0;
    bool operator==(const Traffic&) const = default;
};

/// A hub without a daemon, and what it told.
class Listener {
public:
    Listener() {
        auto& centre = NotificationCentre::defaultCentre();
        tokens_.push_back(centre.addObserver(PTUSBDeviceDidAttachNotification, hub_.get(),
                                             [this](const Notification&) { ++told_.attached; }));
        tokens_.push_back(centre.addObserver(PTUSBDeviceDidDetachNotification, hub_.get(),
                                             [this](const Notification&) { ++told_.detached; }));
    }

    void hear(const PTUSBPacket& packet) const { hub_->handleBroadcastPacket(packet.message); }
    const Traffic& told() const { return told_; }

private:
    const std::shared_ptr<PTUSBHub> hub_ = PTUSBHub::create(nullptr);
    Traffic told_;
    std::vector<NotificationCentre::Token> tokens_;
};

/// What one broadcast says.
Traffic trafficOf(const PTUSBPacket& packet) {
    const QString type = packet.message
                             ? packet.message->value(QStringLiteral("MessageType")).toString()
                             : QString();
    return {type == QStringLiteral("Attached") ? 1U : 0U,
            type == QStringLiteral("Detached") ? 1U : 0U};
}

void readReply(const PTUSBPacket& packet) {
    std::optional<Error> error = packet.error;
    const bool isSuccess = PTUSBChannel::errorFromPlistResponse(packet.message, error);
    NAVREL_ASSERT(packet.error || isSuccess == !error);
    NAVREL_ASSERT(!descriptionOfMessage(packet.message).contains(QLatin1Char('\n')));
}

void run(QByteArrayView cuts, QByteArrayView bytes) {
    Reader whole;
    whole.take(bytes);
    Reader pieces;
    for (const char cut : cuts) {
        const auto size = std::min<qsizetype>(static_cast<uint8_t>(cut), bytes.size());
        pieces.take(bytes.first(size));
        bytes = bytes.sliced(size);
    }
    pieces.take(bytes);
    NAVREL_ASSERT(pieces == whole);

    const Listener listener;
    Traffic expected;
    for (const QByteArray& bytesOfPacket : whole.packets()) {
        const PTUSBPacket packet = decodedPTUSBPacket(bytesOfPacket);
        NAVREL_ASSERT(!packet.error || !packet.message);
        if (packet.tag != kPTUSBBroadcastTag) {
            readReply(packet);
            continue;
        }
        const Traffic traffic = trafficOf(packet);
        expected.attached += traffic.attached;
        expected.detached += traffic.detached;
        listener.hear(packet);
    }
    NAVREL_ASSERT(listener.told() == expected);
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    navrel::setLogReceiver([](const QString&) {}); // odd packets are logged, one by one
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    if (bytes.isEmpty()) {
        return 0;
    }
    const auto input = navrel::CutInput::from(bytes);
    navrel::run(input.cuts, input.bytes);
    return 0;
}
