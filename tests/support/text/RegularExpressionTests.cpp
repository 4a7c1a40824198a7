#include "support/text/RegularExpression.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using namespace Qt::StringLiterals;
using Steps = RegularExpression::Steps;

constexpr Steps kAmple = 1'000'000'000;

RegularExpression expression(const QString& pattern, quint32 options = 0) {
    auto compiled = RegularExpression::compile(pattern, options);
    EXPECT_TRUE(std::holds_alternative<RegularExpression>(compiled)) << pattern.toStdString();
    return std::get<RegularExpression>(std::move(compiled));
}

/// The texts of one group of all matches.
QStringList found(const QString& pattern, const QString& text, quint32 options = 0,
                  std::size_t group = 0) {
    QStringList texts;
    const auto result = expression(pattern, options).matchesIn(text);
    EXPECT_EQ(result.error, std::nullopt);
    for (const auto& match : result.matches) {
        const auto range = match.ranges.at(group);
        texts += text.mid(range.location, range.length);
    }
    return texts;
}

TEST(RegularExpression, allMatchesAreFoundInOrder) {
    EXPECT_EQ(found(u"[0-9]+"_s, u"a1b22c333"_s), (QStringList{u"1"_s, u"22"_s, u"333"_s}));
    EXPECT_EQ(found(u"x"_s, u"abc"_s), QStringList());
    EXPECT_EQ(found(u"x"_s, u""_s), QStringList());
}

TEST(RegularExpression, groupsTellTheirRanges) {
    const auto result = expression(u"(a)|(b)"_s).matchesIn(u"xb");
    ASSERT_EQ(result.matches.size(), 1U);
    const auto& ranges = result.matches[0].ranges;
    ASSERT_EQ(ranges.size(), 3U);
    EXPECT_EQ(ranges[0].location, 1);
    EXPECT_EQ(ranges[0].length, 1);
    EXPECT_EQ(ranges[1].location, -1);
    EXPECT_EQ(ranges[1].length, 0);
    EXPECT_EQ(ranges[2].location, 1);
}

TEST(RegularExpression, emptyMatchesAdvance) {
    const auto result = expression(u"a*"_s).matchesIn(u"ba");
    ASSERT_EQ(result.matches.size(), 3U);
    EXPECT_EQ(result.matches[1].ranges[0].location, 1);
    EXPECT_EQ(result.matches[2].ranges[0].location, 2);
}

TEST(RegularExpression, letterCaseCountsUnlessTheOptionSaysOtherwise) {
    EXPECT_EQ(found(u"mark"_s, u"MARK mark"_s), QStringList{u"mark"_s});
    EXPECT_EQ(found(u"mark"_s, u"MARK mark"_s, RegularExpression::kCaseInsensitive),
              (QStringList{u"MARK"_s, u"mark"_s}));
    EXPECT_EQ(found(u"mark"_s, u"mar\u212A"_s, RegularExpression::kCaseInsensitive).size(), 1);
    EXPECT_EQ(found(u"class"_s, u"cla\u00DF"_s, RegularExpression::kCaseInsensitive).size(), 1);
}

TEST(RegularExpression, dotTakesLineBreaksOnlyWithTheOption) {
    EXPECT_EQ(found(u"a.*"_s, u"ab\rc"_s), QStringList{u"ab"_s});
    EXPECT_EQ(found(u"a.*"_s, u"ab\u2028c"_s), QStringList{u"ab"_s});
    EXPECT_EQ(found(u"a.*"_s, u"ab\rc"_s, RegularExpression::kDotMatchesLineSeparators),
              QStringList{u"ab\rc"_s});
}

TEST(RegularExpression, aPatternThatIsNoneIsAnError) {
    const auto compiled = RegularExpression::compile(u"(a", 0);
    const auto* error = std::get_if<Error>(&compiled);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), kRegularExpressionErrorDomain);
    EXPECT_EQ(error->localizedDescription(), u"U_REGEX_MISMATCHED_PAREN"_s);
}

TEST(RegularExpression, theLimitEndsAMatchThatBacktracksWithoutEnd) {
    constexpr Steps kLimit = 5 * RegularExpression::kStepsAtATime;
    const QString text = u"x"_s + QString(200, u'a');
    const auto result = expression(u"x|(a+)+b"_s).matchesIn(text, kLimit);
    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(result.error->localizedDescription(), u"U_REGEX_STOPPED_BY_CALLER"_s);
    EXPECT_EQ(result.matches.size(), 1U);
    EXPECT_GT(result.steps, kLimit);
    EXPECT_LE(result.steps, kLimit + RegularExpression::kStepsAtATime);
}

TEST(RegularExpression, theSameSearchTakesTheSameStepsEachTime) {
    RegularExpression hard = expression(u"(a+)+b"_s);
    const QString text(18, u'a');
    const Steps steps = hard.matchesIn(text, kAmple).steps;
    EXPECT_GT(steps, 10 * RegularExpression::kStepsAtATime);
    EXPECT_EQ(hard.matchesIn(text, kAmple).steps, steps);
    EXPECT_EQ(hard.matchesIn(text, steps).error, std::nullopt);
    EXPECT_NE(hard.matchesIn(text, steps - 1).error, std::nullopt);
}

TEST(RegularExpression, aPlaceWhereAMatchIsTriedIsAStep) {
    EXPECT_GE(expression(u"[ab]c"_s).matchesIn(QString(1000, u'a'), kAmple).steps, 990);
}

TEST(RegularExpression, backtrackingMemoryIsLimited) {
    const auto result = expression(u"(a|b)*c"_s).matchesIn(QString(4'000'000, u'a'));
    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(result.error->localizedDescription(), u"U_REGEX_STACK_OVERFLOW"_s);
}

TEST(RegularExpression, anExpressionIsUsedAgainWithAndWithoutALimit) {
    RegularExpression digits = expression(u"[0-9]"_s);
    EXPECT_EQ(digits.matchesIn(u"1", 100).matches.size(), 1U);
    EXPECT_EQ(digits.matchesIn(u"12").matches.size(), 2U);
}

} // namespace
} // namespace navrel
