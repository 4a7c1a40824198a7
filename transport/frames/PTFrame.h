#pragma once

#include <QByteArrayView>
#include <QtGlobal>

#include <array>
#include <cstddef>
#include <optional>

namespace navrel {

// A frame on the wire: a header of four unsigned 32-bit words in network byte order (the most
// significant byte first), and right behind it the payload, without padding or trailer.
//
//    0               4               8               12              16
//   +---------------+---------------+---------------+---------------+- - - - - - -
//   | version (1)   | type          | tag           | payloadSize   | payload ...
//   +---------------+---------------+---------------+---------------+- - - - - - -
//
// version      always 1 on send; any other value on receive is an error
// type         chosen by the application; 0 is reserved and means end of stream
// tag          chosen by the application, for example to pair a reply with its request
// payloadSize  how many bytes follow; 0 for no payload
//
// Type 5, tag 7 and the payload "abc" are
//
//   00 00 00 01  00 00 00 05  00 00 00 07  00 00 00 03  61 62 63

inline constexpr quint32 kPTFrameVersion = 1;
inline constexpr quint32 kPTFrameTypeEndOfStream = 0;
inline constexpr size_t kPTFrameHeaderSize = 16; ///< in bytes

/// The fields of a header, in host byte order. The version is left out: there is only one.
struct PTFrameHeader {
    quint32 type = kPTFrameTypeEndOfStream;
    quint32 tag = 0;
    quint32 payloadSize = 0; ///< in bytes

    bool operator==(const PTFrameHeader&) const = default;
};

/// The bytes of a header on the wire.
std::array<char, kPTFrameHeaderSize> encodedFrameHeader(const PTFrameHeader& header);

/// The header at the beginning of `bytes`; those after it are ignored. Nil if there are fewer bytes
/// than a header has, or the version is another.
std::optional<PTFrameHeader> decodedFrameHeader(QByteArrayView bytes);

} // namespace navrel
