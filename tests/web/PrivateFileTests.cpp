#include "web/PrivateFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

class PrivateFileTests : public ::testing::Test {
protected:
    std::string path(const char* name) const {
        return folder_.filePath(QString::fromUtf8(name)).toStdString();
    }
    static mode_t modeOf(const std::string& path) {
        struct stat status = {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status.st_mode & 0777U;
    }

    QTemporaryDir folder_;
};

TEST_F(PrivateFileTests, itIsTheUsersAloneWhateverOtherFilesAre) {
    const mode_t before = ::umask(0);
    EXPECT_FALSE(replacePrivateFile(path("new/secret"), "one").has_value());
    ::umask(before);
    EXPECT_EQ(modeOf(path("new/secret")), 0600U);
    EXPECT_EQ(modeOf(path("new")), 0700U);
    EXPECT_EQ(readSmallFile(path("new/secret"), 3), "one");
    EXPECT_EQ(readSmallFile(path("new/secret"), 2), std::nullopt);
}

/// Who reads the former one meanwhile reads all of it.
TEST_F(PrivateFileTests, itIsReplacedAsAWhole) {
    ASSERT_FALSE(replacePrivateFile(path("secret"), "one").has_value());
    ASSERT_EQ(::link(path("secret").c_str(), path("former").c_str()), 0);
    ASSERT_FALSE(replacePrivateFile(path("secret"), "two").has_value());
    EXPECT_EQ(readSmallFile(path("secret"), 9), "two");
    EXPECT_EQ(readSmallFile(path("former"), 9), "one");
    EXPECT_NE(::access(path("secret.new").c_str(), F_OK), 0);
}

TEST_F(PrivateFileTests, aLinkInItsWayIsNotFollowed) {
    ASSERT_FALSE(replacePrivateFile(path("other"), "another's").has_value());
    for (const char* name : {"secret", "secret.new"}) {
        ASSERT_EQ(::symlink(path("other").c_str(), path(name).c_str()), 0);
    }
    ASSERT_FALSE(replacePrivateFile(path("secret"), "one").has_value());
    EXPECT_EQ(readSmallFile(path("other"), 9), "another's");
    EXPECT_EQ(readSmallFile(path("secret"), 9), "one");
}

TEST_F(PrivateFileTests, whereItCannotBeWrittenTheFormerOneStays) {
    ASSERT_FALSE(replacePrivateFile(path("secret"), "one").has_value());
    ASSERT_EQ(::mkdir(path("secret.new").c_str(), 0700), 0); // in the way of the next one
    EXPECT_TRUE(replacePrivateFile(path("secret"), "two").has_value());
    EXPECT_EQ(readSmallFile(path("secret"), 9), "one");
    EXPECT_TRUE(replacePrivateFile("/dev/null/secret", "two").has_value());
}

} // namespace
} // namespace navrel
