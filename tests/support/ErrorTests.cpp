#include "support/core/Error.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace navrel {
namespace {

TEST(Error, aPOSIXErrorCarriesTheErrnoValueAndTheSystemsText) {
    const Error error = Error::posix(ECONNREFUSED);

    EXPECT_EQ(error.domain(), kPOSIXErrorDomain);
    EXPECT_EQ(error.code(), ECONNREFUSED);
    EXPECT_EQ(error.localizedDescription(), QStringLiteral("Connection refused"));
    EXPECT_TRUE(error.isPOSIX(ECONNREFUSED));
    EXPECT_FALSE(error.isPOSIX(ETIMEDOUT));
}

TEST(Error, theDescriptionNamesDomainCodeTextReasonAndCause) {
    Error error(QStringLiteral("Domain"), 7, QStringLiteral("It broke"));
    error.setLocalizedFailureReason(QStringLiteral("too old"));
    error.setUnderlyingError(Error(QStringLiteral("Deeper"), 0));

    EXPECT_EQ(error.description(),
              QStringLiteral("Error Domain=Domain Code=7 \"It broke\" Reason=\"too old\" "
                             "Underlying={Error Domain=Deeper Code=0}"));
}

TEST(Error, equalityIsDomainAndCode) {
    EXPECT_EQ(Error(QStringLiteral("A"), 1), Error(QStringLiteral("A"), 1, QStringLiteral("text")));
    EXPECT_FALSE(Error(QStringLiteral("A"), 1) == Error(QStringLiteral("B"), 1));
    EXPECT_FALSE(Error(QStringLiteral("A"), 1) == Error(QStringLiteral("A"), 2));
}

TEST(Error, errnoZeroIsNoError) {
    EXPECT_EQ(errorFromErrno(0), std::nullopt);
    EXPECT_EQ(errorFromErrno(EPIPE), Error::posix(EPIPE));
}

} // namespace
} // namespace navrel
