#include "project/FolderListings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FolderListingsTest : public ::testing::Test {
protected:
    QByteArray path(const char* name = "") const {
        return QFile::encodeName(folder_.filePath(QString::fromUtf8(name)));
    }
    void write(const char* name) const {
        QFile file(folder_.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    void makeFolder(const char* name) const { ASSERT_EQ(::mkdir(path(name).constData(), 0700), 0); }
    /// The names, folders with a slash.
    std::vector<std::string> namesIn(const QByteArray& folder) {
        std::vector<std::string> names;
        for (const ListedEntry& entry : listings_.entriesOf(folder)) {
            names.push_back(entry.name.toStdString() + (entry.isFolder ? "/" : ""));
        }
        return names;
    }
    /// Waits until a change would give the folder another date.
    void settle(const QByteArray& folder) {
        for (quint64 before = listings_.readings();; before = listings_.readings()) {
            listings_.entriesOf(folder);
            if (listings_.readings() == before) {
                return;
            }
        }
    }

    FolderListings listings_;

private:
    QTemporaryDir folder_;
};

TEST_F(FolderListingsTest, filesAndFoldersAreListedByName) {
    write("b.m");
    makeFolder("a");
    write("B.h");
    EXPECT_THAT(namesIn(path()), ElementsAre("B.h", "a/", "b.m"));
}

TEST_F(FolderListingsTest, whatIsHiddenOrNoFileIsLeftOut) {
    write(".DS_Store");
    makeFolder(".git");
    ASSERT_EQ(::mkfifo(path("pipe").constData(), 0600), 0);
    ASSERT_EQ(::symlink("/dev/zero", path("zero").constData()), 0);
    ASSERT_EQ(::symlink("/nowhere/at/all", path("gone").constData()), 0);
    const int badName =
        ::open(path().append("/\xFF.m").constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ::close(badName);
    EXPECT_THAT(namesIn(path()), IsEmpty());
    ::unlink(path().append("/\xFF.m").constData()); // Qt would not remove it
}

TEST_F(FolderListingsTest, aBundleIsOneFile) {
    makeFolder("Assets.xcassets");
    makeFolder("Main.XCASSETS");
    makeFolder("xcassets");
    makeFolder("v1.2");
    EXPECT_THAT(namesIn(path()),
                ElementsAre("Assets.xcassets", "Main.XCASSETS", "v1.2/", "xcassets/"));
}

TEST_F(FolderListingsTest, aLinkCountsAsWhatItLeadsTo) {
    makeFolder("a");
    write("f.m");
    ASSERT_EQ(::symlink("a", path("link").constData()), 0);
    ASSERT_EQ(::symlink("f.m", path("other.m").constData()), 0);
    EXPECT_THAT(namesIn(path()), ElementsAre("a/", "f.m", "link/", "other.m"));
    EXPECT_FALSE(listings_.entriesOf(path())[0].isLink);
    EXPECT_TRUE(listings_.entriesOf(path())[2].isLink);
}

TEST_F(FolderListingsTest, whatIsNoFolderHasNoEntries) {
    write("f.m");
    EXPECT_THAT(namesIn(path("f.m")), IsEmpty());
    EXPECT_THAT(namesIn(path("missing")), IsEmpty());
    EXPECT_THAT(namesIn(QByteArray("/tmp\0/x", 7)), IsEmpty());
}

TEST_F(FolderListingsTest, aFolderThatDidNotChangeIsNotReadAgain) {
    write("a.m");
    settle(path());
    const quint64 readings = listings_.readings();
    EXPECT_TRUE(listings_.stillHold());
    EXPECT_THAT(namesIn(path()), ElementsAre("a.m"));
    EXPECT_EQ(listings_.readings(), readings);

    write("b.m");
    EXPECT_FALSE(listings_.stillHold());
    EXPECT_THAT(namesIn(path()), ElementsAre("a.m", "b.m"));
    EXPECT_GT(listings_.readings(), readings);
}

TEST_F(FolderListingsTest, aChangeThatKeepsTheDateIsSeen) {
    settle(path());
    struct stat before = {};
    ASSERT_EQ(::stat(path().constData(), &before), 0);
    write("a.m");
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, path().constData(), times, 0), 0);
    EXPECT_FALSE(listings_.stillHold());
}

TEST_F(FolderListingsTest, twoChangesInOneStepOfTheDateAreSeen) {
    for (int round = 0; round < 200; ++round) {
        const QByteArray name = "f" + QByteArray::number(round);
        write(name.constData());
        ASSERT_EQ(namesIn(path()).size(), std::size_t(round) + 1);
    }
}

TEST_F(FolderListingsTest, aFolderThatIsNotAskedForInAPassIsForgotten) {
    listings_.entriesOf(path());
    listings_.beginPass();
    write("a.m");
    EXPECT_TRUE(listings_.stillHold());
}

} // namespace
} // namespace navrel
