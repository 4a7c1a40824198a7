#include "support/process/DesktopOpener.h"
#include "tests/LogRecorder.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

TEST(DesktopOpener, aPathReachesTheOpenerAsItIs) {
    const RecordingTool opener(QStringLiteral("xdg-open"));
    const QString path = QStringLiteral("/a b/$(id)`id`;'\"\n&|%20#é.html");

    EXPECT_TRUE(openWithDesktop(path));
    EXPECT_TRUE(waitUntil([&] { return !opener.arguments().isEmpty(); }));
    EXPECT_EQ(opener.arguments(), QByteArrayList{path.toUtf8()});
}

TEST(DesktopOpener, neitherAnOptionNorAURLCanBeMadeOfAPath) {
    for (const char* path : {"--help", "https://example.org/x", "mailto:a"}) {
        const RecordingTool opener(QStringLiteral("xdg-open"));
        EXPECT_TRUE(openWithDesktop(QLatin1String(path)));
        EXPECT_TRUE(waitUntil([&] { return !opener.arguments().isEmpty(); }));
        EXPECT_EQ(opener.arguments(), QByteArrayList{QDir::currentPath().toUtf8() + '/' + path});
    }
}

TEST(DesktopOpener, anAddressThatTheOpenerRefusesByItsExitStatusIsToldOf) {
    for (const int status : {0, 3}) {
        const RecordingTool opener(QStringLiteral("xdg-open"), status);
        const auto failures = std::make_shared<std::atomic<int>>(0);
        const QUrl url(QStringLiteral("http://127.0.0.1/a"));
        EXPECT_TRUE(openURLWithDesktop(url, [failures] { ++*failures; }));
        // The thread lets go of the function when the opener has ended.
        EXPECT_TRUE(waitUntil([&] { return failures.use_count() == 1; }));
        EXPECT_EQ(*failures, status == 0 ? 0 : 1);
        EXPECT_EQ(opener.arguments(), QByteArrayList{"http://127.0.0.1/a"});
    }
}

TEST(DesktopOpener, withoutAnOpenerNothingIsOpened) {
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    EXPECT_FALSE(openWithDesktop(QStringLiteral("/a")));
    qputenv("PATH", path);
}

TEST(DesktopOpener, aPathThatNamesNoFileIsRefused) {
    const RecordingTool opener(QStringLiteral("xdg-open"));
    EXPECT_FALSE(openWithDesktop(QStringLiteral("")));
    EXPECT_FALSE(
        openWithDesktop(QStringLiteral("/etc/hosts") + QChar(u'\0') + QStringLiteral(".pdf")));
    EXPECT_EQ(opener.arguments(), QByteArrayList{});
}

/// An opener that lives until it is let go, as where no desktop environment runs.
class LastingOpener {
public:
    LastingOpener() {
        ::mkfifo(fifo_.constData(), 0600);
        QFile tool(folder_.filePath(QStringLiteral("xdg-open")));
        if (tool.open(QIODevice::WriteOnly)) {
            tool.write("#!/bin/sh\necho >>'" + calls_ + "'\nexec timeout 60 sh -c \": <'" + fifo_ +
                       "'\"\n");
        }
        tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", folder_.path().toUtf8() + ':' + oldPath_);
    }
    ~LastingOpener() {
        letGo();
        qputenv("PATH", oldPath_);
        ::close(end_);
    }
    LastingOpener(const LastingOpener&) = delete;
    LastingOpener& operator=(const LastingOpener&) = delete;

    qint64 calls() const { return QFileInfo(QString::fromUtf8(calls_)).size(); }
    void letGo() {
        if (end_ < 0) {
            end_ = ::open(fifo_.constData(), O_RDWR | O_CLOEXEC);
        }
    }

private:
    QTemporaryDir folder_;
    const QByteArray fifo_ = folder_.filePath(QStringLiteral("fifo")).toUtf8();
    const QByteArray calls_ = folder_.filePath(QStringLiteral("calls")).toUtf8();
    const QByteArray oldPath_ = qgetenv("PATH");
    int end_ = -1;
};

TEST(DesktopOpener, aDeviceThatAsksWithoutEndStartsOnlySoMany) {
    LastingOpener opener;
    LogRecorder log;
    for (int i = 0; i < kMaximumRunningOpeners; ++i) {
        EXPECT_TRUE(openWithDesktop(QStringLiteral("/a")));
    }
    EXPECT_FALSE(openWithDesktop(QStringLiteral("/a")));
    EXPECT_FALSE(openURLWithDesktop(QUrl(QStringLiteral("https://example.org/"))));
    EXPECT_EQ(log.take().size(), 2) << "a line for each that was refused";

    opener.letGo();
    EXPECT_TRUE(waitUntil([] { return openWithDesktop(QStringLiteral("/a")); }));
    EXPECT_TRUE(waitUntil([&] { return opener.calls() == kMaximumRunningOpeners + 1; }));
}

} // namespace
} // namespace navrel
