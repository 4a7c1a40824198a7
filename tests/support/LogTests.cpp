#include "support/core/Assertion.h"
#include "support/core/Log.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(Log, aReceiverGetsTheMessageAsItStands) {
    QStringList messages;
    const LogReceiver previous = setLogReceiver([&](const QString& m) { messages.append(m); });
    log(QStringLiteral("Deleted a\nb"));
    setLogReceiver(previous);

    EXPECT_EQ(messages, QStringList{QStringLiteral("Deleted a\nb")});
}

TEST(Log, aMessageIsOneLineOnStandardErrorAndEndsIt) {
    ::testing::internal::CaptureStderr();
    log(QStringLiteral("Deleted a\nb\r\u2028\x1B é"));

    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Navrel: Deleted a\\nb\\r\\u2028\\u001b é\n");
}

TEST(AssertionDeathTest, aBrokenInvariantReportsFunctionFileAndConditionAndStopsTheProgram) {
    const int size = 5;
    EXPECT_DEATH(NAVREL_ASSERT(size <= 4),
                 "Assertion failed: \\(size <= 4\\), function TestBody, file .*LogTests.cpp");
    EXPECT_DEATH(NAVREL_ASSERT_AS(size <= 4, "payloadSize <= UINT32_MAX"),
                 "payloadSize <= UINT32_MAX");
}

} // namespace
} // namespace navrel
