#include "support/ToolRunner.h"
#include "tests/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using std::chrono::seconds;

const QString kShell = QStringLiteral("/bin/sh");

TEST(ToolRunner, argumentsReachTheToolAsTheyAreAndItsOutputComesBack) {
    const auto output = outputOfTool(kShell,
                                     {QStringLiteral("-c"), QStringLiteral("printf '%s|' \"$@\""),
                                      QStringLiteral("sh"), QStringLiteral("a b"),
                                      QStringLiteral("$(id)\"'"), QStringLiteral("-x\ny")},
                                     seconds(20));

    EXPECT_EQ(output, QByteArray("a b|$(id)\"'|-x\ny|"));
}

TEST(ToolRunner, anEmptyAnswerIsNotNoAnswer) {
    EXPECT_EQ(outputOfTool(kShell, {QStringLiteral("-c"), QStringLiteral(":")}, seconds(20)),
              QByteArray(""));
    EXPECT_EQ(outputOfTool(QStringLiteral("/nonexistent/tool"), {}, seconds(20)), std::nullopt);
}

TEST(ToolRunner, theExitStatusIsNotExamined) {
    EXPECT_EQ(
        outputOfTool(kShell, {QStringLiteral("-c"), QStringLiteral("echo x; exit 3")}, seconds(20)),
        QByteArray("x\n"));
}

TEST(ToolRunner, aToolThatDoesNotEndIsKilledAndCountsAsNoAnswer) {
    EXPECT_EQ(outputOfTool(kShell, {QStringLiteral("-c"), QStringLiteral("exec sleep 1000")},
                           std::chrono::milliseconds(100)),
              std::nullopt);
}

TEST(ToolRunner, aToolThatWritesForEverIsKilledAndCountsAsNoAnswer) {
    EXPECT_EQ(outputOfTool(kShell, {QStringLiteral("-c"), QStringLiteral("exec yes")}, seconds(60)),
              std::nullopt);
}

TEST(ToolRunner, aDetachedToolRunsWithoutBeingWaitedFor) {
    QTemporaryDir folder;
    const QString trace = folder.filePath(QStringLiteral("trace"));

    EXPECT_TRUE(
        startDetachedTool(kShell, {QStringLiteral("-c"), QStringLiteral("echo \"$1\" >\"$0\""),
                                   trace, QStringLiteral("here")}));
    EXPECT_TRUE(waitUntil([&] {
        QFile file(trace);
        return file.open(QIODevice::ReadOnly) && file.readAll() == "here\n";
    }));
    EXPECT_FALSE(startDetachedTool(QStringLiteral("/nonexistent/tool"), {}));
}

TEST(ToolRunner, toolsAreFoundInThePath) {
    EXPECT_TRUE(findTool(QStringLiteral("sh")).has_value());
    EXPECT_EQ(findTool(QStringLiteral("no-such-tool-anywhere")), std::nullopt);
}

} // namespace
} // namespace navrel
