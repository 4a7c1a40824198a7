#pragma once

#include "support/core/Error.h"
#include "support/dispatch/DispatchData.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QVariantMap>

#include <cstddef>
#include <optional>

namespace navrel {

// A packet on the stream of the USB multiplexing daemon: a header of four unsigned 32-bit words,
// the least significant byte first, and right behind it the payload, without padding or trailer.
//
//    0               4               8               12              16
//   +---------------+---------------+---------------+---------------+- - - - - - -
//   | size          | protocol (1)  | type (8)      | tag           | payload ...
//   +---------------+---------------+---------------+---------------+- - - - - - -
//
// size      the whole packet's, header included
// protocol  always 1; a received packet with any other value is rejected
// type      always 8, a property list; a received packet with any other value is rejected
// tag       a request's number, in the request and in its reply; 0 in broadcasts
// payload   an XML property list that holds one dictionary; may be empty
//
// An empty packet with tag 7 is
//
//   10 00 00 00  01 00 00 00  08 00 00 00  07 00 00 00

constexpr size_t kPTUSBPacketHeaderSize = 16;
constexpr size_t kPTUSBPacketSizeWordSize = 4;
constexpr quint32 kPTUSBPacketProtocolPlist = 1;
constexpr quint32 kPTUSBPacketTypePlist = 8;
constexpr quint32 kPTUSBBroadcastTag = 0;
/// The key of every message's type.
inline const QString kMessageType = QStringLiteral("MessageType");

/// In bytes. Real packets take one or two kilobytes; a larger announced size than this is an error.
constexpr quint32 kMaxPTUSBPacketSize = 1024 * 1024;

/// Domain of the errors of packets and replies. The code is that of the reply (PTUSBReplyCode), or
/// 0 for a packet or reply that is not understood.
extern const QString kPTUSBHubErrorDomain;

/// The values of the key "Number" of a reply.
enum PTUSBReplyCode : quint32 {
    kPTUSBReplyOK = 0,
    kPTUSBReplyBadCommand = 1,
    kPTUSBReplyBadDevice = 2,
    kPTUSBReplyConnectionRefused = 3,
    kPTUSBReplyBadVersion = 6,
};

/// The error of a reply code that is not 0, with its text.
Error errorOfPTUSBReplyCode(quint32 code);

/// Memory for a packet with that many payload bytes. Its header is zero except for `size`. More
/// than 4294967295 bytes abort the program.
MallocedBytes usbmuxPacketAlloc(size_t payloadSize);

/// A whole packet, with a copy of the payload.
DispatchData createPTUSBPacket(quint32 type, quint32 protocol, quint32 tag, QByteArrayView payload);

/// The packet size that the first four bytes announce. There must be at least four.
quint32 announcedPTUSBPacketSize(const char* sizeWord);

/// Whether a packet may have that size: at least that of a header, and within the limit.
bool isPTUSBPacketSizeAllowed(quint32 size);

/// The contents of a received packet.
struct PTUSBPacket {
    quint32 tag = kPTUSBBroadcastTag;
    /// Why there is no message: another protocol or type, or a payload that is not a property list.
    std::optional<Error> error;
    /// Nil without an error for an empty packet, and for a list that is not a dictionary.
    std::optional<QVariantMap> message;
};

/// Decodes a whole packet, which must have at least its header. Its size word is ignored.
PTUSBPacket decodedPTUSBPacket(QByteArrayView packet);

/// The tag of a whole packet, which must have at least its header.
quint32 tagOfPTUSBPacket(QByteArrayView packet);

/// Takes the first packet off bytes that have arrived.
struct PTUSBPacketTaken {
    bool isMalformed = false;         ///< nothing behind it can be made sense of
    std::optional<QByteArray> packet; ///< nothing while it has not arrived as a whole
};
PTUSBPacketTaken takePTUSBPacket(QByteArray& received);

/// The integer under a key; nil if there is none, or a value of another kind.
std::optional<qlonglong> numberInMessage(const QVariantMap& message, const QString& key);

/// Text for the log, on one line and of bounded length; "(null)" for nil.
QString descriptionOfMessage(const std::optional<QVariantMap>& message);

} // namespace navrel
