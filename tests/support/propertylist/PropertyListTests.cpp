#include "support/propertylist/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>

namespace navrel {
namespace {

TEST(PropertyList, aNumberIsABooleanWhetherIntegerOrReal) {
    EXPECT_EQ(booleanOf(true), true);
    EXPECT_EQ(booleanOf(0), false);
    EXPECT_EQ(booleanOf(qlonglong{-1}), true);
    EXPECT_EQ(booleanOf(1.0), true);
    EXPECT_EQ(booleanOf(0.0), false);
    EXPECT_EQ(booleanOf(-0.0), false);
    EXPECT_EQ(booleanOf(0.5F), true);
    EXPECT_EQ(booleanOf(std::numeric_limits<double>::infinity()), true);
}

TEST(PropertyList, otherValuesAreNoBooleans) {
    EXPECT_EQ(booleanOf(QVariant()), std::nullopt);
    EXPECT_EQ(booleanOf(QStringLiteral("1")), std::nullopt);
    EXPECT_EQ(booleanOf(QVariantList{1}), std::nullopt);
}

} // namespace
} // namespace navrel
