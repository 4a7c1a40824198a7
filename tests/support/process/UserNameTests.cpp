#include "support/process/UserName.h"

#include <gtest/gtest.h>

#include <limits>

namespace navrel {
namespace {

TEST(UserName, isTheSystemsOrElseTheNumber) {
    EXPECT_EQ(nameOfUser(0), QStringLiteral("root"));
    constexpr qint64 kNobodys = std::numeric_limits<quint32>::max() - 7;
    EXPECT_EQ(nameOfUser(kNobodys), QString::number(kNobodys));
    EXPECT_EQ(nameOfUser(-1), QString());
}

} // namespace
} // namespace navrel
