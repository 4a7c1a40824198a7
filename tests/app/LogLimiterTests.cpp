#include "app/LogLimiter.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

QStringList lines(int count) {
    QStringList result;
    for (int line = 0; line < count; ++line) {
        result.append(QStringLiteral("line %1").arg(line));
    }
    return result;
}

class LogLimiterTest : public ::testing::Test {
protected:
    void log(const QStringList& lines) {
        for (const QString& line : lines) {
            limiter_.log(line);
        }
    }

    LogRecorder log_;
    LogLimiter limiter_{QStringLiteral("devices")};
};

TEST_F(LogLimiterTest, fewLinesAreLoggedAtOnce) {
    log(lines(LogLimiter::kMostLinesASecond));
    EXPECT_EQ(log_.messages(), lines(LogLimiter::kMostLinesASecond));
}

TEST_F(LogLimiterTest, ofAFloodTheRestIsCountedAndTheNextSecondLogsAgain) {
    log(lines(1000));
    EXPECT_EQ(log_.take(), lines(20));
    ASSERT_TRUE(waitUntil([this] { return !log_.messages().isEmpty(); }));
    EXPECT_EQ(log_.take(),
              QStringList{QStringLiteral("980 more lines about devices were left out")});
    log(lines(1));
    EXPECT_EQ(log_.take(), lines(1));
}

} // namespace
} // namespace navrel
