#include "scanning/SuperclassBudget.h"
#include "scanning/SuperclassSearch.h"

#include <QByteArrayList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using Steps = SuperclassBudget::Steps;

/// One with nothing saved up.
SuperclassBudget spentBudget() {
    SuperclassBudget budget;
    for (Steps left = 1; left > 0;) {
        budget.beginHeader();
        left = budget.left() - SuperclassBudget::kAllowance;
        budget.spend(budget.left());
    }
    return budget;
}

// The budget.

TEST(SuperclassBudget, aHeaderMaySpendUpToItsLimit) {
    SuperclassBudget budget;
    budget.beginHeader();
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader);
    budget.spend(1000);
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader - 1000);
    budget.spend(SuperclassBudget::kMostForHeader);
    EXPECT_EQ(budget.left(), 0);
}

TEST(SuperclassBudget, theNextHeaderHasALimitOfItsOwn) {
    SuperclassBudget budget;
    budget.beginHeader();
    budget.spend(SuperclassBudget::kMostForHeader);
    budget.beginHeader();
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader);
}

TEST(SuperclassBudget, aCheckMaySpendAsMuchAsItWasMadeFor) {
    constexpr Steps kAmple = 1'000'000'000;
    SuperclassBudget budget(kAmple);
    for (int header = 0; header < 2; ++header) {
        budget.beginHeader();
        budget.spend(SuperclassBudget::kMostForHeader);
        EXPECT_GE(budget.left(), kAmple - 2 * SuperclassBudget::kMostForHeader);
    }
}

TEST(SuperclassBudget, headersThatSpendTheirAllowanceNeverGoWithout) {
    SuperclassBudget budget = spentBudget();
    for (int header = 0; header < 100'000; ++header) {
        budget.beginHeader();
        ASSERT_GE(budget.left(), SuperclassBudget::kAllowance);
        budget.spend(SuperclassBudget::kAllowance);
    }
}

TEST(SuperclassBudget, headersThatSpendAllTheyMayTakeTheirAllowancesInTheLongRun) {
    constexpr int kHeaders = 100'000;
    SuperclassBudget budget;
    Steps spent = 0;
    for (int header = 0; header < kHeaders; ++header) {
        budget.beginHeader();
        spent += budget.left();
        budget.spend(budget.left());
    }
    EXPECT_GT(spent, SuperclassBudget::kMostSaved);
    EXPECT_LE(spent, SuperclassBudget::kMostSaved + kHeaders * SuperclassBudget::kAllowance);
}

TEST(SuperclassBudget, noMoreThanTheMostIsSaved) {
    SuperclassBudget budget;
    for (int header = 0; header < 1000; ++header) {
        budget.beginHeader();
    }
    Steps spent = 0;
    for (int header = 0; header < 20; ++header) {
        spent += budget.left();
        budget.spend(budget.left());
        budget.beginHeader();
    }
    EXPECT_LE(spent, SuperclassBudget::kMostSaved + 20 * SuperclassBudget::kAllowance);
}

// The search.

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
    SuperclassSearch search("[\\p{L}]oo", budget);
    EXPECT_EQ(search.superclassOnLine("@end : A"), std::nullopt);
    EXPECT_EQ(search.superclassOnLine("@import Foo; // : A"), std::nullopt);
    EXPECT_FALSE(search.isOver());
    EXPECT_EQ(search.superclassOnLine("@interface Foo : A"), std::nullopt);
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
                SuperclassBudget budget(1'000'000'000);
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

TEST(SuperclassSearch, aCostlyNameWithoutBudgetGoesWithoutASuperclass) {
    SuperclassBudget budget = spentBudget();
    SuperclassSearch search("[\\p{L}]oo", budget);
    EXPECT_EQ(search.superclassOnLine("@interface Foo : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
}

TEST(SuperclassSearch, theNameOfACategoryTakesNoMoreThanItsAllowance) {
    SuperclassBudget budget = spentBudget();
    SuperclassSearch search("NSFoo+Bar", budget);
    EXPECT_EQ(search.superclassOnLine("@interface NSFooBar (Bar) <B>: A"), std::nullopt);
    EXPECT_FALSE(search.isOver());
}

TEST(SuperclassSearch, aNameThatBacktracksWithoutEndSpendsItsStepsAndNoMore) {
    SuperclassBudget budget;
    SuperclassSearch search("(a+)+b", budget);
    EXPECT_EQ(search.superclassOnLine("@interface " + QByteArray(40, 'a') + " : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
    EXPECT_EQ(budget.left(), 0);
    EXPECT_EQ(SuperclassSearch("Foo+", budget).superclassOnLine("@interface Foo : A"), "A");
}

TEST(SuperclassSearch, makingAnExpressionIsSpentToo) {
    SuperclassBudget budget;
    SuperclassSearch search("[\\p{L}\\p{N}]+", budget);
    EXPECT_EQ(search.superclassOnLine("@interface Foo : A"), "A");
    EXPECT_LT(budget.left(), SuperclassBudget::kMostForHeader);
}

TEST(SuperclassSearch, anExpressionThatCostsTooMuchIsNotMade) {
    SuperclassBudget budget;
    SuperclassSearch search(QByteArray("\\p{L}").repeated(45) + "|Foo", budget);
    EXPECT_EQ(search.superclassOnLine("@interface Foo : A"), std::nullopt);
    EXPECT_TRUE(search.isOver());
    EXPECT_EQ(budget.left(), SuperclassBudget::kMostForHeader);
}

TEST(SuperclassSearch, whatASearchSpendsIsTheSameEachTime) {
    const auto leftAfter = [](const QByteArray& baseName, QByteArrayView line) {
        SuperclassBudget budget;
        SuperclassSearch(baseName, budget).superclassOnLine(line);
        return budget.left();
    };
    const QByteArray line = "@interface " + QByteArray(14, 'a') + " : A";
    const Steps left = leftAfter("(a+)+b", line);
    EXPECT_LT(left, SuperclassBudget::kMostForHeader);
    EXPECT_GT(left, 0);
    EXPECT_EQ(leftAfter("(a+)+b", line), left);
}

} // namespace
} // namespace navrel
