#include "support/text/Collation.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(Collation, letterCaseDoesNotDecide) {
    EXPECT_LT(localizedCaseInsensitiveCompare("A.h", "b.m"), 0);
    EXPECT_LT(localizedCaseInsensitiveCompare("a.h", "B.m"), 0);
    EXPECT_GT(localizedCaseInsensitiveCompare("gamma", "Beta"), 0);
    EXPECT_LT(localizedCaseInsensitiveCompare("alpha", "Beta"), 0);
    EXPECT_EQ(localizedCaseInsensitiveCompare("Main.swift", "main.SWIFT"), 0);
}

TEST(Collation, accentsDecideOnlyBetweenEqualLetters) {
    EXPECT_LT(localizedCaseInsensitiveCompare("\xC3\xA9t\xC3\xA9", "f"), 0); // été, f
    EXPECT_NE(localizedCaseInsensitiveCompare("e", "\xC3\xA9"), 0);
}

TEST(Collation, anyBytesCanBeCompared) {
    EXPECT_EQ(localizedCaseInsensitiveCompare("", ""), 0);
    EXPECT_LT(localizedCaseInsensitiveCompare("", "a"), 0);
    EXPECT_NE(localizedCaseInsensitiveCompare("\xFF\xFE", "a"), 0);
}

} // namespace
} // namespace navrel
