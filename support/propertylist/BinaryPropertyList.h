#pragma once

#include "support/propertylist/PropertyList.h"

#include <QByteArrayView>

#include <cstdint>
#include <optional>

// The binary format, version "bplist0x". All numbers are big-endian.
//
//   "bplist00"         magic and version
//   objects            a marker byte each, then its contents
//   offset table       the position of each object, offsetSize bytes each
//   trailer (32 bytes) 6 unused | offsetSize 1 | referenceSize 1 | objectCount 8 | topObject 8 |
//                      offsetTable 8 (its position)
//
// Markers have the kind in the upper four bits, and the length n in the lower four. n = 15 means
// that an integer object follows, which is the length:
//
//   0x08 0x09  false, true          0x5n  ASCII text of n bytes
//   0x1n       integer, 2^n bytes   0x6n  UTF-16 text of n units
//   0x2n       real, 2^n bytes      0xAn  array of n references
//   0x33       date, a real of 8    0xDn  dictionary: n references of keys, then n of values
//   0x4n       data of n bytes
//
// Integers of 1, 2 and 4 bytes are unsigned. A date is the seconds since 2001-01-01 UTC.
namespace navrel::propertylist {

inline constexpr char kBinaryMagic[] = "bplist";

enum BinaryMarker : std::uint8_t {
    kFalse = 0x08,
    kTrue = 0x09,
    kInteger = 0x10,
    kReal = 0x20,
    kDate = 0x33,
    kData = 0x40,
    kASCIIText = 0x50,
    kUTF16Text = 0x60,
    kArray = 0xA0,
    kDictionary = 0xD0,
};

inline constexpr std::uint8_t kLongCount = 0x0F;
inline constexpr qsizetype kHeaderSize = 8;
inline constexpr qsizetype kTrailerSize = 32;

/// 2001-01-01 00:00 UTC, from which dates count, in milliseconds since 1970.
inline constexpr qint64 kReferenceDate = 978'307'200'000;

/// Reads the binary format, as `propertyListWithData` does. An object that several others refer to
/// is read once and shared.
std::optional<QVariant> readBinary(QByteArrayView bytes, std::optional<Error>* error);

} // namespace navrel::propertylist
