#include "scanning/SuperclassBudget.h"
#include "scanning/SuperclassSearch.h"

#include <QByteArrayList>
#include <gtest/gtest.h>

#include <chrono>

namespace navrel {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using Duration = SuperclassBudget::Duration;

constexpr Duration kNothing = Duration::zero();

// The budget.

TEST(SuperclassBudget, aHeaderMaySpendUpToItsLimit) {
    SuperclassBudget budget;
    budget.beginHeader();
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader);
    budget.spend(milliseconds(1));
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader - milliseconds(1));
    budget.spend(milliseconds(30));
    EXPECT_EQ(budget.left(), kNothing);
}

TEST(SuperclassBudget, theNextHeaderHasALimitOfItsOwn) {
    SuperclassBudget budget;
    budget.beginHeader();
    budget.spend(milliseconds(30));
    budget.beginHeader();
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader);
}

TEST(SuperclassBudget, aCheckMaySpendAsMuchAsItWasMadeFor) {
    SuperclassBudget budget(std::chrono::minutes(1));
    for (int header = 0; header < 2; ++header) {
        budget.beginHeader();
        budget.spend(milliseconds(30));
        EXPECT_GT(budget.left(), std::chrono::seconds(59));
    }
}

TEST(SuperclassBudget, headersThatSpendLessThanTheirAllowanceNeverGoWithout) {
    SuperclassBudget budget;
    budget.beginHeader();
    budget.spend(SuperclassBudget::kMostSaved);
    for (int header = 0; header < 100'000; ++header) {
        budget.beginHeader();
        ASSERT_GE(budget.left(), SuperclassBudget::kAllowance);
        budget.spend(SuperclassBudget::kAllowance - microseconds(1));
    }
}

TEST(SuperclassBudget, headersThatSpendAllTheyMayTakeTheirAllowancesInTheLongRun) {
    constexpr int kHeaders = 100'000;
    SuperclassBudget budget;
    Duration spent = kNothing;
    for (int header = 0; header < kHeaders; ++header) {
        budget.beginHeader();
        spent += budget.left();
        budget.spend(budget.left());
    }
    EXPECT_GT(spent, SuperclassBudget::kMostSaved);
    EXPECT_LE(spent, SuperclassBudget::kMostSaved + kHeaders * SuperclassBudget::kAllowance);
}

TEST(SuperclassBudget, whatIsSpentBeyondTheLimitIsOwedByTheHeadersThatFollow) {
    SuperclassBudget budget;
    budget.beginHeader();
    budget.spend(SuperclassBudget::kMostSaved + 10 * SuperclassBudget::kAllowance);
    for (int header = 0; header < 10; ++header) {
        budget.beginHeader();
        EXPECT_EQ(budget.left(), kNothing) << header;
    }
    budget.beginHeader();
    EXPECT_EQ(budget.left(), SuperclassBudget::kAllowance);
}

TEST(SuperclassBudget, noMoreThanTheMostIsSaved) {
    SuperclassBudget budget;
    for (int header = 0; header < 1000; ++header) {
        budget.beginHeader();
    }
    budget.spend(SuperclassBudget::kMostSaved);
    budget.beginHeader();
    EXPECT_EQ(budget.left(), SuperclassBudget::kAllowance);
}

// The search.

SuperclassBudget spentBudget() {
    SuperclassBudget budget;
    budget.beginHeader();
    budget.spend(std::chrono::hours(1));
    return budget;
}

TEST(SuperclassSearch, aLineAfterTheOtherIsAskedUntilOneHoldsASuperclass) {
    SuperclassBudget budget;
    SuperclassSearch search("Foo+", budget);
    EXPECT_EQ(search.superclassOnLine("int a;"), std::nullopt);
    EXPECT_EQ(search.superclassOnLine("@import A; // a:b"), std::nullopt);
    EXPECT_FALSE(search.isOver());
    EXPECT_EQ(search.superclassOnLine("@Interface Fooo : A"), "A");
    EXPECT_TRUE(search.isOver());
    EXPECT_EQ(search.superclassOnLine("@interface Foo : B"), std::nullopt);
}

TEST(SuperclassSearch, linesOfOtherClassesAreNotAskedAbout) {
    SuperclassBudget budget = spentBudget();
    SuperclassSearch search("Foo.pbobjc", budget);
    EXPECT_EQ(search.superclassOnLine("@interface Bar : A"), std::nullopt);
    EXPECT_EQ(search.superclassOnLine("@interface Fan : A"), std::nullopt);
    EXPECT_FALSE(search.isOver());
    EXPECT_EQ(search.superclassOnLine("@interface Foo_pbobjc : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
}

TEST(SuperclassSearch, theClassOfALongGeneratedHeaderIsFoundBehindAllOthers) {
    SuperclassBudget budget;
    SuperclassSearch search("Foo.pbobjc", budget);
    for (int line = 0; line < 100'000; ++line) {
        search.superclassOnLine("@interface GPB" + QByteArray::number(line) + " : GPBMessage");
    }
    EXPECT_EQ(search.superclassOnLine("@interface Foo_pbobjc : A"), "A");
}

TEST(SuperclassSearch, noLineThatHoldsAMatchIsPassedOver) {
    const QByteArrayList names = {
        "Foo+Bar",     "Foo.Bar",   "Foo*Bar", "Foo?Bar",  "Foo{0}Bar",  "Foo(?#x)?Bar",
        "Fo[o]Bar",    "Foo(Bar)?", "?Foo",    "*Foo",     "{0}Foo",     "(?#x)?Foo",
        ".Foo",        "[F]oo",     "Foo Bar", "Foo Ba+r", "Foo\\Bar",   "\\QFoo\\E",
        "^Foo",        "$Foo",      "Foo$",    "A|Foo",    "(A|B)oo",    "Kis+s",
        "Kiss.x",      "Ki.s",      "Kisst?",  "Stff+x",   "\xC3\xA9oo", "Fo\xC3\xA9",
        "Fo\xC3\xA9+", "\xC5\xBF.a"};
    const QByteArrayList written = {"Foo",
                                    "foo",
                                    "FOOBar",
                                    "FoBar",
                                    "FoooBar",
                                    "FoxBar",
                                    "Foo Bar",
                                    " Foo",
                                    "xFoo",
                                    "A",
                                    "Aoo",
                                    "Foo Baar",
                                    "Fooar",
                                    "F",
                                    "Fo\xC3\xA9",
                                    "Fo\xC3\x89\xC3\xA9",
                                    "\xC3\x89oo",
                                    "Kiss",
                                    "Ki\xC3\x9F",
                                    "Kissx",
                                    "Ki\xC3\x9Fx",
                                    "\xE2\x84\xAAisss",
                                    "Ki\xC5\xBFs",
                                    "Kis\xE2\x84\xAA\xEF\xAC\x86",
                                    "Ki\xC3\x9Ft",
                                    "Kis\xEF\xAC\x86",
                                    "\xEF\xAC\x86\xEF\xAC\x80x",
                                    "St\xEF\xAC\x80x",
                                    "Stfffx",
                                    "sxa",
                                    "\xC5\xBFxa",
                                    "Foo\\Bar"};
    std::size_t found = 0;
    for (const QByteArray& name : names) {
        auto expression = SuperclassExpression::forBaseName(name);
        ASSERT_TRUE(expression) << name.constData();
        for (const QByteArray& text : written) {
            for (const char* before : {"@interface ", "@Interface", "@@i@INTERFACE "}) {
                const QByteArray line = before + text + " : A\n";
                SuperclassBudget budget{std::chrono::seconds(10)};
                const auto expected = expression->superclassOnLine(line, std::nullopt);
                EXPECT_EQ(SuperclassSearch(name, budget).superclassOnLine(line), expected)
                    << name.constData() << " " << line.constData();
                found += expected ? 1 : 0;
            }
        }
    }
    EXPECT_GT(found, std::size_t(3 * names.size()));
}

TEST(SuperclassSearch, aNameThatIsNoPatternEndsTheSearch) {
    SuperclassBudget budget;
    SuperclassSearch search("(", budget);
    EXPECT_EQ(search.superclassOnLine("@interface ( : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
}

TEST(SuperclassSearch, aPlainNameNeedsNoBudget) {
    SuperclassBudget budget = spentBudget();
    EXPECT_EQ(SuperclassSearch("Foo", budget).superclassOnLine("@interface Foo : A"), "A");
}

TEST(SuperclassSearch, anotherNameWithoutBudgetGoesWithoutASuperclass) {
    SuperclassBudget budget = spentBudget();
    SuperclassSearch search("Foo+Bar", budget);
    EXPECT_EQ(search.superclassOnLine("@interface FooBar : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
}

TEST(SuperclassSearch, aNameThatBacktracksWithoutEndSpendsItsTimeAndNoMore) {
    SuperclassBudget budget;
    SuperclassSearch search("(a+)+b", budget);
    EXPECT_EQ(search.superclassOnLine("@interface " + QByteArray(40, 'a') + " : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
    EXPECT_EQ(budget.left(), kNothing);
    EXPECT_EQ(SuperclassSearch("Foo+", budget).superclassOnLine("@interface Foo : A"), "A");
}

TEST(SuperclassSearch, makingAnExpressionIsSpentToo) {
    SuperclassBudget budget;
    SuperclassSearch search("[\\p{L}\\p{N}]+", budget);
    EXPECT_EQ(search.superclassOnLine("@interface Foo : A"), "A");
    EXPECT_LT(budget.left(), SuperclassBudget::kMostForHeader);
}

} // namespace
} // namespace navrel
