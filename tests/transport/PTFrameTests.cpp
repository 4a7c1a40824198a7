#include "transport/frames/PTFrame.h"

#include <QByteArray>
#include <gtest/gtest.h>

namespace navrel {
namespace {

const QByteArray kHeaderBytes = QByteArray::fromHex("00000001"   // version
                                                    "000000C8"   // type 200
                                                    "FEDCBA98"   // tag
                                                    "00010203"); // payload size

constexpr PTFrameHeader kFields = {200, 0xFEDCBA98, 0x00010203};

TEST(PTFrame, encodesItsWordsMostSignificantByteFirst) {
    const auto bytes = encodedFrameHeader(kFields);
    EXPECT_EQ(QByteArray(bytes.data(), bytes.size()).toHex(), kHeaderBytes.toHex());
}

TEST(PTFrame, decodesWhatItEncodes) {
    EXPECT_EQ(decodedFrameHeader(kHeaderBytes), kFields);
}

TEST(PTFrame, decodesTheLargestValues) {
    const auto bytes = QByteArray::fromHex("00000001FFFFFFFFFFFFFFFFFFFFFFFF");
    EXPECT_EQ(decodedFrameHeader(bytes), (PTFrameHeader{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}));
}

TEST(PTFrame, refusesEveryOtherVersion) {
    for (const char* version : {"00000000", "00000002", "01000000", "FFFFFFFF"}) {
        QByteArray bytes = kHeaderBytes;
        bytes.replace(0, 4, QByteArray::fromHex(version));
        EXPECT_FALSE(decodedFrameHeader(bytes)) << version;
    }
}

TEST(PTFrame, refusesFewerBytesThanAHeaderHas) {
    for (qsizetype size = 0; size < kHeaderBytes.size(); ++size) {
        EXPECT_FALSE(decodedFrameHeader(QByteArrayView(kHeaderBytes).first(size))) << size;
    }
}

} // namespace
} // namespace navrel
