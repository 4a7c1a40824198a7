#include "scanning/QWAdditions.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(QWAdditions, aPatternIsFoundAtItsFirstPlace) {
    EXPECT_EQ(rangeOfData_qw("a\nb", "\n"), (ByteRange{1, 1}));
    EXPECT_EQ(rangeOfData_qw("\r\na\r\n", "\r\n"), (ByteRange{0, 2}));
    EXPECT_EQ(rangeOfData_qw("xabab", "ab"), (ByteRange{1, 2}));
}

TEST(QWAdditions, notFoundTellsThePatternsLengthToo) {
    EXPECT_EQ(rangeOfData_qw("abc", "\n"), (ByteRange{kNotFound, 1}));
    EXPECT_EQ(rangeOfData_qw("", "ab"), (ByteRange{kNotFound, 2}));
    EXPECT_EQ(kNotFound, 9223372036854775807U);
}

TEST(QWAdditions, aPartialMatchAtTheEndIsReturned) {
    EXPECT_EQ(rangeOfData_qw("xxa", "ab"), (ByteRange{2, 2}));
    EXPECT_EQ(rangeOfData_qw("a\r", "\r\n"), (ByteRange{1, 2}));
}

TEST(QWAdditions, theSearchNeverBacksUp) {
    EXPECT_EQ(rangeOfData_qw("aab", "ab"), (ByteRange{kNotFound, 2}));
    EXPECT_EQ(rangeOfData_qw("aabab", "ab"), (ByteRange{3, 2}));
}

TEST(QWAdditions, anEmptyPatternIsNowhere) {
    EXPECT_EQ(rangeOfData_qw("abc", ""), (ByteRange{kNotFound, 0}));
}

} // namespace
} // namespace navrel
