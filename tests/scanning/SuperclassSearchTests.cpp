#include "scanning/SuperclassBudget.h"
#include "scanning/SuperclassSearch.h"

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
