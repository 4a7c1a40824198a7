#include "transport/usb/PTUSBPacket.h"

#include "support/core/Assertion.h"
#include "support/propertylist/PropertyList.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace navrel {

const QString kPTUSBHubErrorDomain = QStringLiteral("PTUSBHubError");

namespace {

/// Offsets of the header's words.
enum : qsizetype {
    kSizeOffset = 0,
    kProtocolOffset = 4,
    kPacketTypeOffset = 8,
    kPacketTagOffset = 12,
};

/// Enough for every message of a real daemon, short enough for one line of the system's log.
constexpr qsizetype kLongestDescription = 1024;

quint32 wordAt(QByteArrayView packet, qsizetype offset) {
    return qFromLittleEndian<quint32>(packet.data() + offset);
}

Error packetError(const QString& text) {
    return {kPTUSBHubErrorDomain, 0, text};
}

QString textOfReplyCode(quint32 code) {
    switch (code) {
    case kPTUSBReplyBadCommand:
        return QStringLiteral("illegal command");
    case kPTUSBReplyBadDevice:
        return QStringLiteral("unknown device");
    case kPTUSBReplyConnectionRefused:
        return QStringLiteral("connection refused");
    case kPTUSBReplyBadVersion:
        return QStringLiteral("invalid version");
    default:
        return QStringLiteral("Unspecified error");
    }
}

} // namespace

Error errorOfPTUSBReplyCode(quint32 code) {
    return {kPTUSBHubErrorDomain, code, textOfReplyCode(code)};
}

MallocedBytes usbmuxPacketAlloc(size_t payloadSize) {
    NAVREL_ASSERT_AS(payloadSize <= std::numeric_limits<quint32>::max(),
                     "payloadSize <= UINT32_MAX");
    const size_t size = payloadSize + kPTUSBPacketHeaderSize;
    MallocedBytes packet(static_cast<char*>(std::malloc(size)));
    if (!packet) {
        throw std::bad_alloc();
    }
    std::memset(packet.get(), 0, kPTUSBPacketHeaderSize);
    qToLittleEndian(static_cast<quint32>(size), packet.get() + kSizeOffset);
    return packet;
}

DispatchData createPTUSBPacket(quint32 type, quint32 protocol, quint32 tag,
                               QByteArrayView payload) {
    const auto payloadSize = static_cast<size_t>(payload.size());
    MallocedBytes packet = usbmuxPacketAlloc(payloadSize);
    qToLittleEndian(protocol, packet.get() + kProtocolOffset);
    qToLittleEndian(type, packet.get() + kPacketTypeOffset);
    qToLittleEndian(tag, packet.get() + kPacketTagOffset);
    if (payloadSize > 0) {
        std::memcpy(packet.get() + kPTUSBPacketHeaderSize, payload.data(), payloadSize);
    }
    return DispatchData::owning(std::move(packet), payloadSize + kPTUSBPacketHeaderSize);
}

quint32 announcedPTUSBPacketSize(const char* sizeWord) {
    return qFromLittleEndian<quint32>(sizeWord);
}

bool isPTUSBPacketSizeAllowed(quint32 size) {
    return size >= kPTUSBPacketHeaderSize && size <= kMaxPTUSBPacketSize;
}

quint32 tagOfPTUSBPacket(QByteArrayView packet) {
    return wordAt(packet, kPacketTagOffset);
}

PTUSBPacket decodedPTUSBPacket(QByteArrayView packet) {
    PTUSBPacket result;
    result.tag = tagOfPTUSBPacket(packet);
    if (wordAt(packet, kProtocolOffset) != kPTUSBPacketProtocolPlist) {
        result.error = packetError(QStringLiteral("Unexpected package protocol"));
    } else if (wordAt(packet, kPacketTypeOffset) != kPTUSBPacketTypePlist) {
        result.error = packetError(QStringLiteral("Unexpected package type"));
    } else if (const auto payload = packet.sliced(kPTUSBPacketHeaderSize); !payload.isEmpty()) {
        const auto list = propertyListWithData(payload, &result.error);
        if (list && list->typeId() == QMetaType::QVariantMap) {
            result.message = list->toMap();
        }
    }
    return result;
}

PTUSBPacketTaken takePTUSBPacket(QByteArray& received) {
    if (received.size() < static_cast<qsizetype>(kPTUSBPacketSizeWordSize)) {
        return {};
    }
    const quint32 size = announcedPTUSBPacketSize(received.constData());
    if (!isPTUSBPacketSizeAllowed(size)) {
        return {true, std::nullopt};
    }
    if (received.size() < static_cast<qsizetype>(size)) {
        return {};
    }
    QByteArray packet = received.first(size);
    received.remove(0, size);
    return {false, std::move(packet)};
}

std::optional<qlonglong> numberInMessage(const QVariantMap& message, const QString& key) {
    const QVariant value = message.value(key);
    switch (value.typeId()) {
    case QMetaType::LongLong:
    case QMetaType::Int:
    case QMetaType::Bool:
        return value.toLongLong();
    default:
        return std::nullopt;
    }
}

QString descriptionOfMessage(const std::optional<QVariantMap>& message) {
    if (!message) {
        return QStringLiteral("(null)");
    }
    const QJsonDocument document(QJsonObject::fromVariantMap(*message));
    const QString text = QString::fromUtf8(document.toJson(QJsonDocument::Compact));
    return text.size() <= kLongestDescription ? text
                                              : text.first(kLongestDescription) + QChar(0x2026);
}

} // namespace navrel
