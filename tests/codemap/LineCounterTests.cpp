#include "codemap/LineCounter.h"

#include <gtest/gtest.h>

#include <string>

namespace navrel {
namespace {

TEST(LineCounter, theFirstLineIsLineOne) {
    EXPECT_EQ(LineCounter("let a = 1").lineAt(0), 1u);
}

TEST(LineCounter, aLineFeedBelongsToTheLineThatItEnds) {
    LineCounter counter("a\nb\n");
    EXPECT_EQ(counter.lineAt(1), 1u);
    EXPECT_EQ(counter.lineAt(2), 2u);
    EXPECT_EQ(counter.lineAt(4), 3u);
}

TEST(LineCounter, placesMayBeAskedForBackwards) {
    LineCounter counter("a\nb\nc\nd");
    EXPECT_EQ(counter.lineAt(6), 4u);
    EXPECT_EQ(counter.lineAt(2), 2u);
    EXPECT_EQ(counter.lineAt(4), 3u);
}

TEST(LineCounter, anEmptyTextHasNoLines) {
    EXPECT_EQ(LineCounter("").lines(), 0u);
}

TEST(LineCounter, aLastLineCountsWithAndWithoutItsLineFeed) {
    EXPECT_EQ(LineCounter("a\nb").lines(), 2u);
    EXPECT_EQ(LineCounter("a\nb\n").lines(), 2u);
    EXPECT_EQ(LineCounter("\n").lines(), 1u);
}

TEST(LineCounter, longTextsAreCountedWhole) {
    const std::string line = "0123456\n";
    std::string text;
    for (int count = 0; count < 100'000; ++count) {
        text += line;
    }
    EXPECT_EQ(countLineFeeds(text), 100'000u);
    EXPECT_EQ(countLineFeeds(std::string(99'999, '\n')), 99'999u);
}

} // namespace
} // namespace navrel
