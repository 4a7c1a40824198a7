#include "desktop/SecondStart.h"
#include "tests/WaitUntil.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

namespace navrel {
namespace {

class SecondStartTest : public ::testing::Test {
protected:
    std::unique_ptr<SecondStart> listener() {
        return std::make_unique<SecondStart>(path_, [this] { ++starts_; });
    }

    QTemporaryDir folder_;
    QString path_ = folder_.filePath(QStringLiteral("nl.kelvane.Navrel.start"));
    int starts_ = 0;
};

TEST_F(SecondStartTest, isToldToTheFirstAsOftenAsItHappens) {
    const auto first = listener();
    for (int start = 1; start <= 2; ++start) {
        EXPECT_TRUE(SecondStart::tellFirst(path_));
        EXPECT_TRUE(waitUntil([&] { return starts_ == start; }));
    }
}

TEST_F(SecondStartTest, hasNobodyToTellWithoutAFirst) {
    EXPECT_FALSE(SecondStart::tellFirst(path_));
}

TEST_F(SecondStartTest, isHeardOfByThisUserAloneAndWhereAKilledProgramHasLeftItsSocket) {
    const auto killed = listener(); // as far as the file goes, which another takes over
    const auto first = listener();
    EXPECT_TRUE(SecondStart::tellFirst(path_));
    EXPECT_TRUE(waitUntil([&] { return starts_ == 1; }));
    EXPECT_FALSE(QFileInfo(path_).permissions().testAnyFlags(QFile::ReadGroup | QFile::WriteGroup |
                                                             QFile::ReadOther | QFile::WriteOther));
}

} // namespace
} // namespace navrel
