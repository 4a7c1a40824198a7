#include "support/process/ToolRunner.h"
#include "tests/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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

TEST(ToolRunner, aToolRunsToItsEndInASessionOfItsOwn) {
    QTemporaryDir folder;
    const QString trace = folder.filePath(QStringLiteral("trace"));

    EXPECT_TRUE(runTool(kShell, {QStringLiteral("-c"),
                                 QStringLiteral("sleep 0.2; read -r line </proc/$$/stat; "
                                                "echo \"$line\" >\"$0\"; exit 3"),
                                 trace}));
    QFile file(trace);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << "it has not ended";
    // The process, its command and state, its parent, its process group, its session.
    const QByteArrayList status = file.readAll().split(' ');
    ASSERT_GT(status.size(), 6);
    EXPECT_EQ(status[5], status[0]);

    EXPECT_EQ(runTool(QStringLiteral("/nonexistent/tool"), {}), std::nullopt);
}

/// Ends this process while eight threads start programs.
[[noreturn]] void endWhileToolsAreStarted() {
    std::atomic<int> started = 0;
    for (int i = 0; i < 8; ++i) {
        std::thread([&started] {
            while (true) {
                outputOfTool(kShell, {QStringLiteral("-c"), QStringLiteral(":")}, seconds(20));
                ++started;
            }
        }).detach();
    }
    while (started < 16) {
        std::this_thread::yield();
    }
    std::exit(0);
}

TEST(ToolRunner, aProcessThatEndsLeavesNoHalfStartedTool) {
    std::fflush(nullptr);
    for (int i = 0; i < 20; ++i) {
        // Each process that is forked holds the pipe open until it becomes another program or ends.
        std::array<int, 2> ends = {};
        ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        const pid_t process = ::fork();
        if (process == 0) {
            endWhileToolsAreStarted();
        }
        ::close(ends[1]);
        int status = -1;
        EXPECT_EQ(::waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0);
        pollfd pipe = {ends[0], POLLIN, 0};
        const int closed = ::poll(&pipe, 1, 20'000);
        ::close(ends[0]);
        ASSERT_EQ(closed, 1) << "a child waits for a process that has ended";
    }
}

TEST(ToolRunner, toolsAreFoundInThePath) {
    EXPECT_TRUE(findTool(QStringLiteral("sh")).has_value());
    EXPECT_EQ(findTool(QStringLiteral("no-such-tool-anywhere")), std::nullopt);
}

} // namespace
} // namespace navrel
