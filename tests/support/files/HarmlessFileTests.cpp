#include "support/files/HarmlessFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

class HarmlessFileTest : public ::testing::Test {
protected:
    std::string path(const char* name) const {
        return folder_.filePath(QString::fromUtf8(name)).toStdString();
    }
    std::string write(const char* name, mode_t mode = 0644) const {
        QFile file(QString::fromStdString(path(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(::chmod(path(name).c_str(), mode), 0);
        return path(name);
    }
    std::string link(const char* name, const std::string& target) const {
        EXPECT_EQ(::symlink(target.c_str(), path(name).c_str()), 0);
        return path(name);
    }

    QTemporaryDir folder_;
};

TEST_F(HarmlessFileTest, filesThatNothingRunsMayBeOpened) {
    for (const char* name : {"View.swift", "desktop", "View.desktop.m", ".swift"}) {
        EXPECT_TRUE(isHarmlessToOpen(write(name))) << name;
    }
    EXPECT_TRUE(isHarmlessToOpen(link("link.m", write("target.m"))));
}

TEST_F(HarmlessFileTest, aFileThatSomebodyMayExecuteIsNotOpened) {
    for (const mode_t mode : {0744, 0654, 0645, 0111}) {
        EXPECT_FALSE(isHarmlessToOpen(write("tool", mode))) << std::oct << mode;
        ::unlink(path("tool").c_str());
    }
    EXPECT_FALSE(isHarmlessToOpen(link("link.m", write("script.sh", 0755))));
}

TEST_F(HarmlessFileTest, menuEntriesAreNotOpenedHoweverTheyAreSpelled) {
    for (const char* name : {"entry.desktop", "entry.DESKTOP", "entry.Desktop", ".desktop"}) {
        EXPECT_FALSE(isHarmlessToOpen(write(name))) << name;
    }
    EXPECT_FALSE(isHarmlessToOpen(link("link.m", path("entry.desktop"))));
    EXPECT_FALSE(isHarmlessToOpen(link("link.desktop", write("plain.m"))));
}

TEST_F(HarmlessFileTest, whatIsNoRegularFileIsNotOpened) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    for (const std::string& other :
         {path("pipe"), path("."), path("missing"), link("nowhere.m", path("gone")),
          link("round.m", path("round.m")), std::string("/dev/null"), std::string()}) {
        EXPECT_FALSE(isHarmlessToOpen(other)) << other;
    }
}

} // namespace
} // namespace navrel
