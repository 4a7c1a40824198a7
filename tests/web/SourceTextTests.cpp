#include "web/SourceText.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace navrel {
namespace {

std::string numberedLines(int count) {
    std::string text;
    for (int line = 1; line <= count; ++line) {
        text += std::to_string(line) + '\n';
    }
    return text;
}

TEST(SourceTextTests, anAnswerHasAtMostTwoThousandLines) {
    const std::string text = numberedLines(2500);
    const SourceLines lines = linesOfText(text, 101, 2500);
    EXPECT_EQ(lines.from, 101U);
    EXPECT_EQ(lines.to, 2100U);
    EXPECT_EQ(lines.total, 2500U);
    EXPECT_EQ(std::count(lines.text.begin(), lines.text.end(), '\n'), 1999);
    EXPECT_EQ(lines.text.substr(0, 8), "101\n102\n");
    EXPECT_EQ(lines.text.substr(lines.text.size() - 4), "2100");
}

TEST(SourceTextTests, linesBehindTheEndAreLeftOut) {
    const std::string text = numberedLines(3);
    EXPECT_EQ(linesOfText(text, 2, 9).text, "2\n3");
    EXPECT_EQ(linesOfText(text, 2, 9).to, 3U);
    for (const auto& [from, to] : {std::pair{4U, 9U}, std::pair{3U, 2U}}) {
        const SourceLines none = linesOfText(text, from, to);
        EXPECT_EQ(none.text, "") << from;
        EXPECT_LT(none.to, none.from) << from;
        EXPECT_EQ(none.total, 3U) << from;
    }
    EXPECT_EQ(linesOfText(text, 0, 1).text, "1"); // lines count from 1
    EXPECT_EQ(linesOfText("", 1, 9).total, 0U);
}

TEST(SourceTextTests, linesEndAsInAnySystem) {
    EXPECT_EQ(linesOfText("a\r\n\nb", 1, 9).text, "a\n\nb");
    EXPECT_EQ(linesOfText("a\r\n\nb", 1, 9).total, 3U);
}

TEST(SourceTextTests, aLongLineIsCutBetweenTwoCharacters) {
    std::string line = "x";
    for (int count = 0; count < 1024 * 1024; ++count) {
        line += "\xc3\xa4";
    }
    const SourceLines lines = linesOfText(line + "\nbehind it\n", 1, 2);
    EXPECT_EQ(lines.text.size(), 1024U * 1024U - 1); // the last byte would be half a character
    EXPECT_EQ(lines.to, 1U);
    EXPECT_EQ(lines.total, 2U);
}

} // namespace
} // namespace navrel
