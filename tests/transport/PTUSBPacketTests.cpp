#include "transport/usb/PTUSBPacket.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

QByteArray bytes(const char* hex) {
    return QByteArray::fromHex(hex);
}

const QByteArray kEmptyPacketWithTag7 = bytes("10000000" // size 16
                                              "01000000" // protocol 1
                                              "08000000" // type 8
                                              "07000000" // tag 7
);

TEST(PTUSBPacket, anAllocatedPacketHasItsSizeAndIsZeroOtherwise) {
    const auto packet = usbmuxPacketAlloc(3);
    EXPECT_EQ(QByteArray(packet.get(), 16), bytes("13000000" // size 19
                                                  "00000000"
                                                  "00000000"
                                                  "00000000"));
}

TEST(PTUSBPacketDeathTest, aPayloadBeyond32BitsStopsTheProgram) {
    EXPECT_DEATH(usbmuxPacketAlloc(size_t{4294967296}), "payloadSize <= UINT32_MAX");
}

TEST(PTUSBPacket, headerWordsAreLittleEndianAndThePayloadFollows) {
    EXPECT_EQ(createPTUSBPacket(8, 1, 0x01020304, "abc").toByteArray(),
              bytes("13000000" // size 19
                    "01000000" // protocol 1
                    "08000000" // type 8
                    "04030201" // tag
                    "616263"   // payload
                    ));
    EXPECT_EQ(createPTUSBPacket(8, 1, 7, {}).toByteArray(), kEmptyPacketWithTag7);
}

TEST(PTUSBPacket, anEmptyPacketHasATagAndNoMessage) {
    const PTUSBPacket packet = decodedPTUSBPacket(kEmptyPacketWithTag7);
    EXPECT_EQ(packet.tag, 7U);
    EXPECT_EQ(packet.error, std::nullopt);
    EXPECT_EQ(packet.message, std::nullopt);
}

TEST(PTUSBPacket, aPayloadIsAPropertyListInAnyFormat) {
    for (const QByteArray payload :
         {"<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Number</key>"
          "<integer>3</integer></dict></plist>",
          "{ Number = 3; }"}) {
        const PTUSBPacket packet =
            decodedPTUSBPacket(createPTUSBPacket(8, 1, 2, payload).toByteArray());
        EXPECT_EQ(packet.error, std::nullopt);
        ASSERT_TRUE(packet.message.has_value());
        EXPECT_EQ(packet.message->value(QStringLiteral("Number")).toInt(), 3);
    }
}

TEST(PTUSBPacket, anotherProtocolOrTypeIsRejectedWithItsTag) {
    const PTUSBPacket otherProtocol =
        decodedPTUSBPacket(createPTUSBPacket(8, 0, 5, "{}").toByteArray());
    EXPECT_EQ(otherProtocol.error, Error(kPTUSBHubErrorDomain, 0));
    EXPECT_EQ(otherProtocol.error->localizedDescription(),
              QStringLiteral("Unexpected package protocol"));
    EXPECT_EQ(otherProtocol.tag, 5U);
    EXPECT_EQ(otherProtocol.message, std::nullopt);

    const PTUSBPacket otherType =
        decodedPTUSBPacket(createPTUSBPacket(1, 1, 5, "{}").toByteArray());
    EXPECT_EQ(otherType.error, Error(kPTUSBHubErrorDomain, 0));
    EXPECT_EQ(otherType.error->localizedDescription(), QStringLiteral("Unexpected package type"));
    EXPECT_EQ(otherType.tag, 5U);
}

TEST(PTUSBPacket, malformedXMLIsTheReadersError) {
    const PTUSBPacket packet = decodedPTUSBPacket(
        createPTUSBPacket(8, 1, 5, "<plist version=\"1.0\"><dict>").toByteArray());
    ASSERT_TRUE(packet.error.has_value());
    EXPECT_NE(packet.error->domain(), kPTUSBHubErrorDomain);
    EXPECT_EQ(packet.message, std::nullopt);
    EXPECT_EQ(packet.tag, 5U);
}

TEST(PTUSBPacket, aListThatIsNoDictionaryIsNoMessage) {
    const PTUSBPacket packet =
        decodedPTUSBPacket(createPTUSBPacket(8, 1, 5, "(1, 2)").toByteArray());
    EXPECT_EQ(packet.error, std::nullopt);
    EXPECT_EQ(packet.message, std::nullopt);
}

TEST(PTUSBPacket, packetsAreTakenOffOneByOneOnceTheyAreWhole) {
    QByteArray received;
    for (const char byte : kEmptyPacketWithTag7) {
        EXPECT_EQ(takePTUSBPacket(received).packet, std::nullopt);
        received += byte;
    }
    received += kEmptyPacketWithTag7 + "rest";
    EXPECT_EQ(takePTUSBPacket(received).packet, kEmptyPacketWithTag7);
    EXPECT_EQ(takePTUSBPacket(received).packet, kEmptyPacketWithTag7);
    EXPECT_EQ(received, "rest");
}

TEST(PTUSBPacket, aSizeThatNoPacketHasIsMalformed) {
    for (const char* size : {"00000000", "0f000000", "ffffffff", "01001000"}) {
        QByteArray received = bytes(size);
        EXPECT_TRUE(takePTUSBPacket(received).isMalformed) << size;
    }
}

TEST(PTUSBPacket, theLargestSizeIsOneMebibyte) {
    EXPECT_TRUE(isPTUSBPacketSizeAllowed(16));
    EXPECT_TRUE(isPTUSBPacketSizeAllowed(1048576));
    EXPECT_FALSE(isPTUSBPacketSizeAllowed(1048577));
}

TEST(PTUSBPacket, replyCodesHaveTheirTexts) {
    const auto text = [](quint32 code) {
        return *errorOfPTUSBReplyCode(code).localizedDescription();
    };
    EXPECT_EQ(text(1), QStringLiteral("illegal command"));
    EXPECT_EQ(text(2), QStringLiteral("unknown device"));
    EXPECT_EQ(text(3), QStringLiteral("connection refused"));
    EXPECT_EQ(text(6), QStringLiteral("invalid version"));
    for (const quint32 code : {4U, 5U, 7U, 4294967295U}) {
        EXPECT_EQ(text(code), QStringLiteral("Unspecified error")) << code;
    }
    EXPECT_EQ(errorOfPTUSBReplyCode(3), Error(QStringLiteral("PTUSBHubError"), 3));
}

TEST(PTUSBPacket, onlyIntegersAreNumbers) {
    const QString key = QStringLiteral("Number");
    EXPECT_EQ(numberInMessage({{key, qlonglong{3}}}, key), 3);
    EXPECT_EQ(numberInMessage({{key, QStringLiteral("3")}}, key), std::nullopt);
    EXPECT_EQ(numberInMessage({{key, 3.5}}, key), std::nullopt);
    EXPECT_EQ(numberInMessage({}, key), std::nullopt);
}

TEST(PTUSBPacket, aDescriptionIsOneLineOfBoundedLength) {
    EXPECT_EQ(descriptionOfMessage(std::nullopt), QStringLiteral("(null)"));
    EXPECT_EQ(descriptionOfMessage(QVariantMap{{QStringLiteral("DeviceID"), 7}}),
              QStringLiteral("{\"DeviceID\":7}"));
    const QVariantMap large = {{QStringLiteral("a"), QString(1'000'000, QLatin1Char('x'))}};
    EXPECT_EQ(descriptionOfMessage(large).size(), 1025);
}

} // namespace
} // namespace navrel
