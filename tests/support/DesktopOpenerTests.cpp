#include "support/DesktopOpener.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"

#include <QDir>
#include <gtest/gtest.h>

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

} // namespace
} // namespace navrel
