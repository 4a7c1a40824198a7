#include "support/text/FilePath.h"

#include <QString>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(FilePath, appendingJoinsWithOneSlash) {
    EXPECT_EQ(appendingPathComponent("/a", "b"), "/a/b");
    EXPECT_EQ(appendingPathComponent("/a/", "b"), "/a/b");
    EXPECT_EQ(appendingPathComponent("/", "b"), "/b");
    EXPECT_EQ(appendingPathComponent("/a", "/b"), "/a/b");
    EXPECT_EQ(appendingPathComponent("/a//b", "c//d"), "/a/b/c/d");
}

TEST(FilePath, appendingDropsASlashAtTheEndAndKeepsDots) {
    EXPECT_EQ(appendingPathComponent("/a", "b/"), "/a/b");
    EXPECT_EQ(appendingPathComponent("/a", "../b/./c"), "/a/../b/./c");
    EXPECT_EQ(appendingPathComponent("/", "/"), "/");
}

TEST(FilePath, appendingNothingLeavesThePath) {
    EXPECT_EQ(appendingPathComponent("/a/b", ""), "/a/b");
    EXPECT_EQ(appendingPathComponent("", "b"), "b");
    EXPECT_EQ(appendingPathComponent("", ""), "");
}

TEST(FilePath, theLastComponentIsTakenWithoutItsSlash) {
    EXPECT_EQ(lastPathComponent("/a/b.h"), "b.h");
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("b"), "b");
    EXPECT_EQ(lastPathComponent("/a"), "a");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(FilePath, noFileHasNoNameOrOneWithANulOrOneThatIsTooLong) {
    EXPECT_TRUE(canNameAFile("/a/\xFF"));
    EXPECT_TRUE(canNameAFile(QByteArray(kMaximumPathLength, 'x')));
    EXPECT_FALSE(canNameAFile(QByteArray(kMaximumPathLength + 1, 'x')));
    EXPECT_FALSE(canNameAFile(QByteArray("/a\0b", 4)));
    EXPECT_FALSE(canNameAFile(""));
}

TEST(FilePath, aTextNamesAFileAsItsBytesDo) {
    EXPECT_TRUE(canNameAFile(QStringLiteral("/caf\u00E9 \U0001F600.m")));
    EXPECT_TRUE(canNameAFile(QString(kMaximumPathLength, QLatin1Char('x'))));
    EXPECT_FALSE(canNameAFile(QString(kMaximumPathLength + 1, QLatin1Char('x'))));
    EXPECT_FALSE(canNameAFile(QString(kMaximumPathLength, QChar(0x00E9)))) << "two bytes each";
    EXPECT_FALSE(canNameAFile(QStringLiteral("/a") + QChar(u'\0') + QStringLiteral("b")));
    EXPECT_FALSE(canNameAFile(QStringView()));
    for (const char16_t half : {u'\xD83D', u'\xDE00'}) {
        EXPECT_FALSE(canNameAFile(QStringLiteral("/a") + QChar(half) + QStringLiteral(".m")));
    }
}

TEST(FilePath, deletingTheLastComponentLeavesTheFolder) {
    EXPECT_EQ(deletingLastPathComponent("/a/b"), "/a");
    EXPECT_EQ(deletingLastPathComponent("/a/b/"), "/a");
    EXPECT_EQ(deletingLastPathComponent("/a"), "/");
    EXPECT_EQ(deletingLastPathComponent("/"), "/");
    EXPECT_EQ(deletingLastPathComponent("a"), "");
    EXPECT_EQ(deletingLastPathComponent(""), "");
}

TEST(FilePath, theExtensionIsWhatFollowsTheLastDotAsItIsSpelled) {
    EXPECT_EQ(pathExtension("/a/Foo.h"), "h");
    EXPECT_EQ(pathExtension("/a/Foo.tar.GZ"), "GZ");
    EXPECT_EQ(pathExtension("/a/Base.lproj/"), "lproj");
    EXPECT_EQ(pathExtension("/a.b/Makefile"), "");
    EXPECT_EQ(pathExtension("/a/.profile"), "");
    EXPECT_EQ(pathExtension("/a/Foo."), "");
    EXPECT_EQ(pathExtension("/a/.."), "");
    EXPECT_EQ(pathExtension(""), "");
}

TEST(FilePath, viewsArePartsOfThePath) {
    const QByteArray path = "/a.b/Foo.tar.gz/";
    const QByteArrayView component = lastPathComponentView(path);
    EXPECT_EQ(component, "Foo.tar.gz");
    EXPECT_EQ(component.data(), path.constData() + 5);
    EXPECT_EQ(pathExtensionView(path).data(), path.constData() + 13);
    EXPECT_EQ(pathExtensionView(path), "gz");
    EXPECT_TRUE(pathExtensionView("/a.b/Makefile").isEmpty());
}

TEST(FilePath, deletingTheExtensionTakesTheDotWithIt) {
    EXPECT_EQ(deletingPathExtension("Foo.m"), "Foo");
    EXPECT_EQ(deletingPathExtension("/a/Foo.tar.gz"), "/a/Foo.tar");
    EXPECT_EQ(deletingPathExtension("/a.b/Makefile"), "/a.b/Makefile");
    EXPECT_EQ(deletingPathExtension(".profile"), ".profile");
}

} // namespace
} // namespace navrel
