#include "support/text/UTF8.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(UTF8, wellFormedTextIsValidToItsEnd) {
    EXPECT_EQ(validUTF8Length("abc"), 3);
    EXPECT_EQ(validUTF8Length("\xC2\x80 \xDF\xBF"), 5);                // U+0080, U+07FF
    EXPECT_EQ(validUTF8Length("\xE0\xA0\x80\xEF\xBF\xBF"), 6);         // U+0800, U+FFFF
    EXPECT_EQ(validUTF8Length("\xED\x9F\xBF\xEE\x80\x80"), 6);         // beside the surrogates
    EXPECT_EQ(validUTF8Length("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"), 8); // U+10000, U+10FFFF
    EXPECT_EQ(validUTF8Length(""), 0);
}

TEST(UTF8, theFirstInvalidSequenceEndsWhatIsValid) {
    EXPECT_EQ(validUTF8Length("ab\x80"), 2);            // a continuation by itself
    EXPECT_EQ(validUTF8Length("a\xC0\xAF"), 1);         // an overlong slash
    EXPECT_EQ(validUTF8Length("a\xC1\xBF"), 1);         // overlong
    EXPECT_EQ(validUTF8Length("a\xE0\x9F\xBF"), 1);     // overlong
    EXPECT_EQ(validUTF8Length("a\xF0\x8F\xBF\xBF"), 1); // overlong
    EXPECT_EQ(validUTF8Length("a\xED\xA0\x80"), 1);     // a surrogate
    EXPECT_EQ(validUTF8Length("a\xF4\x90\x80\x80"), 1); // above U+10FFFF
    EXPECT_EQ(validUTF8Length("a\xF5\x80\x80\x80"), 1); // no such first byte
    EXPECT_EQ(validUTF8Length("a\xFF"), 1);             // no such byte
    EXPECT_EQ(validUTF8Length("\xC3\xA9\xC3"), 2);      // cut off
    EXPECT_EQ(validUTF8Length("a\xE2\x84\n"), 1);       // cut off by a line feed
}

TEST(UTF8, anInvalidByteIsFoundWhereverItStands) {
    for (qsizetype position = 0; position < 200; ++position) {
        QByteArray bytes(200, 'a');
        bytes[position] = '\xE9';
        EXPECT_EQ(validUTF8Length(bytes), position);
    }
}

TEST(UTF8, aCharacterAcrossBlocksIsOne) {
    for (qsizetype position = 0; position < 200; ++position) {
        const QByteArray bytes =
            QByteArray(position, 'a') + "\xF0\x9F\x99\x82" + QByteArray(90, 'b');
        EXPECT_TRUE(isValidUTF8(bytes)) << position;
    }
}

TEST(UTF8, decodingRefusesWhatIsInvalidAndReplacesNothing) {
    EXPECT_EQ(decodeUTF8("gr\xC3\xBC\xC3\x9F"), QStringLiteral("gr\u00FC\u00DF"));
    EXPECT_EQ(decodeUTF8("ab\xE9"), std::nullopt);
    EXPECT_EQ(decodeUTF8("\xED\xA0\x80"), std::nullopt);
    EXPECT_EQ(decodeUTF8(""), QString());
    EXPECT_FALSE(decodeUTF8("")->isNull());
}

TEST(UTF8, decodingKeepsNulAndTheByteOrderMark) {
    const QByteArray bytes("\xEF\xBB\xBF"
                           "a\0b",
                           6);
    const auto text = decodeUTF8(bytes);
    ASSERT_TRUE(text.has_value());
    EXPECT_EQ(text->size(), 4);
    EXPECT_EQ(text->at(0), QChar(0xFEFF));
    EXPECT_EQ(text->at(2), QChar(u'\0'));
}

TEST(UTF8, whatIsShownKeepsByteOrderMarksAndReplacesWhatIsInvalid) {
    EXPECT_EQ(shownUTF8(QByteArray()), QString());
    EXPECT_EQ(shownUTF8("\xEF\xBB\xBF"), QString(QChar(0xFEFF)));
    EXPECT_EQ(shownUTF8("\xEF\xBB\xBF\xEF\xBB\xBF"
                        "a\xEF\xBB\xBF"),
              QStringLiteral("\uFEFF\uFEFFa\uFEFF"));
    EXPECT_EQ(shownUTF8("\xEF\xBB\xBF"
                        "\xFF"
                        "a"),
              QStringLiteral("\uFEFF\uFFFDa"));
    EXPECT_EQ(shownUTF8(QByteArray("a\0b", 3)), QString::fromLatin1("a\0b", 3));
}

TEST(UTF8, decodingAndValidityAgreeOnRandomBytes) {
    constexpr quint32 kSeed = 20261;
    SCOPED_TRACE(kSeed);
    QRandomGenerator random(kSeed);
    const QByteArray telling = "a\n\x80\xBF\xC0\xC2\xE0\xED\xEF\xF0\xF4\xF5\x90\x9F\xA0\x8F";
    int valid = 0;
    for (int round = 0; round < 50000; ++round) {
        QByteArray bytes;
        for (quint32 count = random.bounded(1U, 7U); count > 0; --count) {
            bytes += telling[random.bounded(telling.size())];
        }
        valid += isValidUTF8(bytes) ? 1 : 0;
        ASSERT_EQ(isValidUTF8(bytes), decodeUTF8(bytes).has_value()) << bytes.toHex().constData();
    }
    EXPECT_GT(valid, 100);
}

} // namespace
} // namespace navrel
