#include "editors/neovim/MessagePack.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

using Outcome = MessagePackReading::Outcome;

QByteArray bytes(std::initializer_list<int> values) {
    QByteArray result;
    for (const int value : values) {
        result += static_cast<char>(value);
    }
    return result;
}

QVariant valueIn(const QByteArray& encoded) {
    const MessagePackReading reading = readMessagePack(encoded);
    EXPECT_EQ(reading.outcome, Outcome::Complete) << encoded.toHex().constData();
    EXPECT_EQ(reading.length, encoded.size()) << encoded.toHex().constData();
    return reading.value;
}

TEST(MessagePack, aRequestIsWrittenByteForByte) {
    const QVariantList request = {0, 1, QByteArray("f"), QVariant(QVariantList{QVariant(), true})};
    EXPECT_EQ(messagePackOf(request), bytes({
                                          0xDD, 0, 0, 0, 4,                   // an array of four
                                          0xD3, 0, 0, 0, 0, 0,    0,    0, 0, // 0
                                          0xD3, 0, 0, 0, 0, 0,    0,    0, 1, // 1
                                          0xDB, 0, 0, 0, 1, 'f',              // "f"
                                          0xDD, 0, 0, 0, 2, 0xC0, 0xC3, // an array of nil and true
                                      }));
}

TEST(MessagePack, whatIsWrittenIsReadBack) {
    const QVariantList value = {false, -7, QByteArray("a\"\n\0\xFF", 5), QVariant()};
    EXPECT_EQ(valueIn(messagePackOf(value)), QVariant(value));
}

TEST(MessagePack, everyFormOfANumberIsRead) {
    EXPECT_EQ(valueIn(bytes({0x7F})), 127);
    EXPECT_EQ(valueIn(bytes({0xE0})), -32);
    EXPECT_EQ(valueIn(bytes({0xFF})), -1);
    EXPECT_EQ(valueIn(bytes({0xCC, 0xFF})), 255);
    EXPECT_EQ(valueIn(bytes({0xCD, 1, 0})), 256);
    EXPECT_EQ(valueIn(bytes({0xCE, 0xFF, 0xFF, 0xFF, 0xFF})), qint64(4294967295));
    EXPECT_EQ(valueIn(bytes({0xCF, 0x7F, 0, 0, 0, 0, 0, 0, 1})), qint64(0x7F00000000000001));
    EXPECT_EQ(valueIn(bytes({0xD0, 0x80})), -128);
    EXPECT_EQ(valueIn(bytes({0xD1, 0xFF, 0xFE})), -2);
    EXPECT_EQ(valueIn(bytes({0xD2, 0x80, 0, 0, 0})), qint64(-2147483648));
    EXPECT_EQ(valueIn(bytes({0xD3, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFD})), -3);
    EXPECT_EQ(valueIn(bytes({0xCA, 0x3F, 0xC0, 0, 0})), 1.5);
    EXPECT_EQ(valueIn(bytes({0xCB, 0xC0, 0x04, 0, 0, 0, 0, 0, 0})), -2.5);
}

TEST(MessagePack, everyFormOfATextIsReadAsItsBytes) {
    EXPECT_EQ(valueIn(bytes({0xA2, 'a', 0xFF})), QByteArray("a\xFF"));
    EXPECT_EQ(valueIn(bytes({0xD9, 1, 'a'})), QByteArray("a"));
    EXPECT_EQ(valueIn(bytes({0xDA, 0, 1, 'a'})), QByteArray("a"));
    EXPECT_EQ(valueIn(bytes({0xDB, 0, 0, 0, 1, 'a'})), QByteArray("a"));
    EXPECT_EQ(valueIn(bytes({0xC4, 1, 'a'})), QByteArray("a"));
    EXPECT_EQ(valueIn(bytes({0xC5, 0, 1, 'a'})), QByteArray("a"));
    EXPECT_EQ(valueIn(bytes({0xC6, 0, 0, 0, 1, 'a'})), QByteArray("a"));
}

TEST(MessagePack, everyFormOfACollectionIsRead) {
    const QVariant list = QVariantList{true};
    EXPECT_EQ(valueIn(bytes({0x91, 0xC3})), list);
    EXPECT_EQ(valueIn(bytes({0xDC, 0, 1, 0xC3})), list);
    EXPECT_EQ(valueIn(bytes({0xDD, 0, 0, 0, 1, 0xC3})), list);
    const QVariant map = QVariantMap{{QStringLiteral("k"), false}};
    EXPECT_EQ(valueIn(bytes({0x81, 0xA1, 'k', 0xC2})), map);
    EXPECT_EQ(valueIn(bytes({0xDE, 0, 1, 0xA1, 'k', 0xC2})), map);
    EXPECT_EQ(valueIn(bytes({0xDF, 0, 0, 0, 1, 0xA1, 'k', 0xC2})), map);
}

TEST(MessagePack, anExtensionIsReadAsNil) {
    EXPECT_EQ(valueIn(bytes({0xD4, 0, 1})), QVariant());
    EXPECT_EQ(valueIn(bytes({0xD8}) + QByteArray(17, 'x')), QVariant());
    EXPECT_EQ(valueIn(bytes({0xC7, 2, 0, 'a', 'b'})), QVariant());
    EXPECT_EQ(valueIn(bytes({0xC9, 0, 0, 0, 1, 0, 'a'})), QVariant());
}

TEST(MessagePack, whatFollowsAValueIsLeft) {
    const MessagePackReading reading = readMessagePack(bytes({0x05, 0xC1}));
    EXPECT_EQ(reading.outcome, Outcome::Complete);
    EXPECT_EQ(reading.length, 1);
}

TEST(MessagePack, everyBeginningOfAValueIsIncomplete) {
    const QVariantList value = {1, QByteArray("text"), QVariant(QVariantList{QVariant(), true})};
    const QByteArray whole = messagePackOf(value);
    for (qsizetype length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(readMessagePack(whole.first(length)).outcome, Outcome::Incomplete) << length;
    }
}

TEST(MessagePack, whatIsNoValueIsInvalid) {
    EXPECT_EQ(readMessagePack(bytes({0xC1})).outcome, Outcome::Invalid);
    EXPECT_EQ(readMessagePack(bytes({0x81, 0x01, 0x01})).outcome, Outcome::Invalid) << "number key";
    EXPECT_EQ(readMessagePack(bytes({0xCF, 0x80, 0, 0, 0, 0, 0, 0, 0})).outcome, Outcome::Invalid);
}

TEST(MessagePack, nestingBeyondTheLimitIsInvalid) {
    const auto nested = [](int depth) { return QByteArray(depth, '\x91') + '\xC0'; };
    EXPECT_EQ(readMessagePack(nested(kMessagePackDepth)).outcome, Outcome::Complete);
    EXPECT_EQ(readMessagePack(nested(kMessagePackDepth + 1)).outcome, Outcome::Invalid);
    EXPECT_EQ(readMessagePack(QByteArray(1'000'000, '\x91')).outcome, Outcome::Invalid);
}

TEST(MessagePack, anAnnouncedSizeTakesNoMemory) {
    EXPECT_EQ(readMessagePack(bytes({0xDD, 0xFF, 0xFF, 0xFF, 0xFF})).outcome, Outcome::Incomplete);
    EXPECT_EQ(readMessagePack(bytes({0xDF, 0xFF, 0xFF, 0xFF, 0xFF})).outcome, Outcome::Incomplete);
    EXPECT_EQ(readMessagePack(bytes({0xC6, 0xFF, 0xFF, 0xFF, 0xFF})).outcome, Outcome::Incomplete);
    EXPECT_EQ(readMessagePack(bytes({0xC9, 0xFF, 0xFF, 0xFF, 0xFF})).outcome, Outcome::Incomplete);
}

} // namespace
} // namespace navrel
