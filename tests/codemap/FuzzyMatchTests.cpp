#include "codemap/FuzzyMatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace navrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::optional<int> scoreOf(std::string_view query, std::string_view name) {
    return FuzzyMatch(query).score(name);
}

std::vector<std::uint32_t> positionsOf(std::string_view query, std::string_view name) {
    return FuzzyMatch(query).positions(name);
}

TEST(FuzzyMatchTests, findsTheCharactersInTheirOrder) {
    EXPECT_THAT(positionsOf("tv", "TideView"), ElementsAre(0, 4));
    EXPECT_THAT(positionsOf("vt", "TideView"), IsEmpty());
    EXPECT_FALSE(scoreOf("vt", "TideView"));
    EXPECT_FALSE(scoreOf("tvv", "TideView"));
}

TEST(FuzzyMatchTests, letterCaseNeverDecides) {
    EXPECT_EQ(scoreOf("TIDEview", "tideVIEW"), scoreOf("tideview", "tideVIEW"));
    EXPECT_THAT(positionsOf("ÜBER", "xüberx"), ElementsAre(1, 2, 3, 4));
}

// A character counts 16. The beginning of a word adds 10 at the beginning of the name, 9 after
// "/,:;|", 8 after other signs and 7 at a capital or digit, twice for the query's first character;
// characters in a row keep the bonus of their first, at least 4. A gap costs 3 and 1 for each more.
TEST(FuzzyMatchTests, scoresOnTheKnownScale) {
    EXPECT_EQ(scoreOf("t", "tide"), 16 + 20);
    EXPECT_EQ(scoreOf("d", "tide"), 16);
    EXPECT_EQ(scoreOf("ti", "tide"), 16 + 20 + 16 + 10);
    EXPECT_EQ(scoreOf("de", "tide"), 16 + 16 + 4);
    EXPECT_EQ(scoreOf("td", "tide"), 16 + 20 - 3 + 16);
    EXPECT_EQ(scoreOf("te", "tide"), 16 + 20 - 3 - 1 + 16);
    EXPECT_EQ(scoreOf("tv", "tideView"), 16 + 20 - 3 - 1 - 1 + 16 + 7);
    EXPECT_EQ(scoreOf("v", "tide_view"), 16 + 16);
    EXPECT_EQ(scoreOf("v", "tide/view"), 16 + 18);
    EXPECT_EQ(scoreOf("v", "tide view"), 16 + 20);
    EXPECT_EQ(scoreOf("2", "tide2"), 16 + 14);
}

TEST(FuzzyMatchTests, takesTheBestPlacementAndNotTheFirst) {
    EXPECT_THAT(positionsOf("view", "vTideWellView"), ElementsAre(9, 10, 11, 12));
    EXPECT_THAT(positionsOf("bar", "xbaxr_bar"), ElementsAre(6, 7, 8));
}

TEST(FuzzyMatchTests, wordsAreFoundEachByItself) {
    EXPECT_THAT(positionsOf("view tide", "TideView"), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_EQ(scoreOf("tide view", "TideView"),
              *scoreOf("tide", "TideView") + *scoreOf("view", "TideView"));
    EXPECT_FALSE(scoreOf("tide wave", "TideView"));
}

TEST(FuzzyMatchTests, positionsCountUTF16Units) {
    EXPECT_THAT(positionsOf("b", "\xF0\x9F\x98\x80"
                                 "b"),
                ElementsAre(2));
    EXPECT_THAT(positionsOf("b", "\xC3\xA9"
                                 "b"),
                ElementsAre(1));
}

TEST(FuzzyMatchTests, survivesWhatIsNotUTF8AndWhatIsLong) {
    EXPECT_THAT(positionsOf("b", "\xFF"
                                 "b"),
                ElementsAre(1));
    EXPECT_TRUE(FuzzyMatch("").isEmpty());
    EXPECT_TRUE(FuzzyMatch("  ").isEmpty());
    const std::string longText(100'000, 'a');
    EXPECT_TRUE(FuzzyMatch(longText).score(longText));
}

TEST(FuzzyMatchTests, theLettersHoldWhateverIsFound) {
    EXPECT_TRUE(mayHold(letterSetOf("TideView"), FuzzyMatch("tv").letters()));
    EXPECT_FALSE(mayHold(letterSetOf("TideView"), FuzzyMatch("tx").letters()));
    EXPECT_TRUE(mayHold(letterSetOf("Über"), FuzzyMatch("ü").letters()));
}

std::string randomText(std::mt19937& random, std::string_view characters, std::size_t length) {
    std::string text;
    while (text.size() < length) {
        text += characters[random() % characters.size()];
    }
    return text;
}

// Short names are scored by the places of the query's characters alone. What is behind the last of
// them costs nothing, and makes a name long.
TEST(FuzzyMatchTests, shortNamesScoreAsLongOnesDo) {
    constexpr std::string_view kCharacters = "abcABC12_/( ";
    std::mt19937 random(11);
    const auto textOf = [&](std::size_t length) { return randomText(random, kCharacters, length); };
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        const std::string name = textOf(1 + random() % ShortName::kMaximumLength);
        FuzzyMatch match(textOf(2 + random() % 6));
        const std::optional<int> score = match.score(name);
        ASSERT_EQ(score, match.score(name + std::string(ShortName::kMaximumLength, '~'))) << name;
        found += score ? 1 : 0;
    }
    EXPECT_GT(found, 4000);
}

// Few characters, so that queries are found often, at each kind of place.
TEST(FuzzyMatchTests, noScoreIsAboveItsBound) {
    constexpr std::string_view kCharacters = "abcABC12_/( \xC3";
    std::mt19937 random(7);
    const auto textOf = [&](std::size_t length) { return randomText(random, kCharacters, length); };
    int found = 0;
    for (int round = 0; round < 20'000; ++round) {
        const std::string name = textOf(1 + random() % 16);
        const std::string query = textOf(1 + random() % 4);
        FuzzyMatch match(query);
        if (const std::optional<int> score = match.score(name)) {
            ASSERT_LE(*score, match.bound(name, nameLettersOf(name))) << query << " in " << name;
            ++found;
        }
    }
    EXPECT_GT(found, 1000);
}

} // namespace
} // namespace navrel
