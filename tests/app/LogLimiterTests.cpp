#include "app/LogLimiter.h"
#include "tests/FakeClock.h"
#include "tests/LogRecorder.h"

#include <gtest/gtest.h>

#include <chrono>

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
    FakeClock clock_;
    LogLimiter limiter_{clock_, QStringLiteral("devices")};
};

TEST_F(LogLimiterTest, fewLinesAreLoggedAtOnce) {
    log(lines(LogLimiter::kMostLinesASecond));
    EXPECT_EQ(log_.messages(), lines(LogLimiter::kMostLinesASecond));
}

TEST_F(LogLimiterTest, ofAFloodTheRestIsCountedAndTheNextSecondLogsAgain) {
    log(lines(1000));
    EXPECT_EQ(log_.take(), lines(20));
    clock_.advance(std::chrono::milliseconds(999));
    EXPECT_EQ(log_.messages(), QStringList());
    clock_.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(log_.take(),
              QStringList{QStringLiteral("980 more lines about devices were left out")});
    log(lines(1));
    EXPECT_EQ(log_.take(), lines(1));
}

} // namespace
} // namespace navrel
