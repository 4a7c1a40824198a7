#include "editors/FolderEntries.h"
#include "tests/editors/ScratchEnvironment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace navrel {
namespace {

using ::testing::IsSupersetOf;

const QDeadlineTimer kWithoutEnd(QDeadlineTimer::Forever);

class FolderEntries : public ::testing::Test {
protected:
    FolderEntries() {
        for (const char* name : {"folder/a", "folder/.b", "folder/\xFF"}) {
            ScratchEnvironment::write(environment.bytesOf(name), "");
        }
    }

    ScratchEnvironment environment;
    const QByteArray folder = environment.bytesOf("folder");
};

TEST_F(FolderEntries, everyEntryIsSeenByItsBytes) {
    QByteArrayList names;
    EXPECT_EQ(forEachFolderEntry(folder, kWithoutEnd,
                                 [&](const QByteArray& name) {
                                     names.append(name);
                                     return true;
                                 }),
              FolderEnd::Reached);
    EXPECT_THAT(names, IsSupersetOf({"a", ".b", "\xFF"}));
}

TEST_F(FolderEntries, whoHasSeenEnoughSeesNoMore) {
    int seen = 0;
    EXPECT_EQ(
        forEachFolderEntry(folder, kWithoutEnd, [&](const QByteArray&) { return ++seen < 2; }),
        FolderEnd::Stopped);
    EXPECT_EQ(seen, 2);
}

TEST_F(FolderEntries, theDeadlineIsLookedAtBetweenTwoEntries) {
    QDeadlineTimer deadline(QDeadlineTimer::Forever);
    int seen = 0;
    const auto visit = [&](const QByteArray&) {
        ++seen;
        deadline.setRemainingTime(0); // while this entry was looked at, the time ran out
        return true;
    };
    EXPECT_EQ(forEachFolderEntry(folder, deadline, visit), FolderEnd::Overdue);
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(forEachFolderEntry(folder, deadline, visit), FolderEnd::Overdue);
    EXPECT_EQ(seen, 1);
}

TEST_F(FolderEntries, aFolderThatCannotBeReadHasNothing) {
    const auto fail = [](const QByteArray& name) {
        ADD_FAILURE() << name.constData();
        return true;
    };
    EXPECT_EQ(forEachFolderEntry(folder + "/none", kWithoutEnd, fail), FolderEnd::Reached);
    EXPECT_EQ(forEachFolderEntry(folder + "/a", kWithoutEnd, fail), FolderEnd::Reached);
}

TEST_F(FolderEntries, aFolderIsLookedThroughSoFarAndNoFurther) {
    std::filesystem::create_directory(environment.bytesOf("large").toStdString());
    for (int i = 0; i < kMaximumFolderEntries; ++i) {
        const QByteArray link = environment.bytesOf("large/") + QByteArray::number(i);
        ASSERT_EQ(::symlink("x", link.constData()), 0);
    }
    int seen = 0;
    EXPECT_EQ(forEachFolderEntry(environment.bytesOf("large"), kWithoutEnd,
                                 [&](const QByteArray&) { return ++seen > 0; }),
              FolderEnd::TooLarge); // "." and ".." are entries too
    EXPECT_EQ(seen, kMaximumFolderEntries);
}

} // namespace
} // namespace navrel
