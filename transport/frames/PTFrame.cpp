#include "transport/frames/PTFrame.h"

#include <QtEndian>

namespace navrel {

namespace {

// Where the words of a header begin.
constexpr size_t kVersionOffset = 0;
constexpr size_t kTypeOffset = 4;
constexpr size_t kTagOffset = 8;
constexpr size_t kPayloadSizeOffset = 12;

} // namespace

std::array<char, kPTFrameHeaderSize> encodedFrameHeader(const PTFrameHeader& header) {
    std::array<char, kPTFrameHeaderSize> bytes = {};
    qToBigEndian(kPTFrameVersion, bytes.data() + kVersionOffset);
    qToBigEndian(header.type, bytes.data() + kTypeOffset);
    qToBigEndian(header.tag, bytes.data() + kTagOffset);
    qToBigEndian(header.payloadSize, bytes.data() + kPayloadSizeOffset);
    return bytes;
}

std::optional<PTFrameHeader> decodedFrameHeader(QByteArrayView bytes) {
    if (static_cast<size_t>(bytes.size()) < kPTFrameHeaderSize ||
        qFromBigEndian<quint32>(bytes.data() + kVersionOffset) != kPTFrameVersion) {
        return std::nullopt;
    }
    return PTFrameHeader{qFromBigEndian<quint32>(bytes.data() + kTypeOffset),
                         qFromBigEndian<quint32>(bytes.data() + kTagOffset),
                         qFromBigEndian<quint32>(bytes.data() + kPayloadSizeOffset)};
}

} // namespace navrel
