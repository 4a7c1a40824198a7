#include "scanning/search/ByteScan.h"

#include <QByteArray>
#include <QRandomGenerator>
#include <gtest/gtest.h>

#include <algorithm>

namespace navrel {
namespace {

/// A random text in which one byte is frequent.
QByteArray textWith(char frequent, qsizetype size, QRandomGenerator& random) {
    QByteArray text(size, 'a');
    for (char& byte : text) {
        byte = random.bounded(8) == 0 ? frequent : byte;
    }
    return text;
}

TEST(ByteScan, everyStretchOfATextHasTheLineFeedsThatAreInIt) {
    QRandomGenerator random(1);
    const QByteArray text = textWith('\n', 300, random);
    for (qsizetype begin = 0; begin <= text.size(); ++begin) {
        for (qsizetype end = begin; end <= text.size(); ++end) {
            const char* const from = text.constData() + begin;
            const char* const to = text.constData() + end;
            const auto expected = static_cast<quint32>(std::count(from, to, '\n'));
            ASSERT_EQ(countLineFeeds(from, to), expected);
            ASSERT_EQ(countLineFeedsPortably(from, to), expected);
        }
    }
}

TEST(ByteScan, moreLineFeedsThanAByteCountsAreCounted) {
    const QByteArray text(100'000, '\n');
    EXPECT_EQ(countLineFeeds(text.cbegin(), text.cend()), 100'000U);
    EXPECT_EQ(countLineFeedsPortably(text.cbegin(), text.cend()), 100'000U);
}

TEST(ByteScan, theASCIIPrefixEndsBeforeTheFirstOtherByte) {
    constexpr qsizetype kSlack = 128; // what a prefix may fall short by
    for (qsizetype place = 0; place < 600; ++place) {
        QByteArray text(600, 'a');
        text[place] = '\x80';
        for (const qsizetype length :
             {asciiPrefixLength(text), asciiPrefixLengthPortably(text.constData(), text.size())}) {
            ASSERT_LE(length, place);
            ASSERT_GT(length + kSlack, place);
        }
    }
}

TEST(ByteScan, anASCIITextIsItsOwnPrefixButForAFewBytes) {
    EXPECT_EQ(asciiPrefixLength(QByteArray()), 0);
    EXPECT_EQ(asciiPrefixLength(QByteArray(1024, '\x7F')), 1024);
    EXPECT_EQ(asciiPrefixLengthPortably(QByteArray(1024, '\x7F').constData(), 1024), 1024);
}

} // namespace
} // namespace navrel
