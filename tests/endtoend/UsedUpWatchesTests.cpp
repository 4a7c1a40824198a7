// The real program where the system watches too few folders for it: it looks at the disk itself,
// and says so.

#include "tests/SmallProject.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"
#include "tests/web/WebClient.h"

#include <QDir>
#include <gtest/gtest.h>

#include <ostream>
#include <regex>
#include <string>

namespace navrel {
namespace {

struct KernelLimit {
    const char* name;
    int value;
};

void PrintTo(const KernelLimit& limit, std::ostream* out) {
    *out << limit.name << " = " << limit.value;
}

constexpr int kFolders = 8;

class WatchesTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (int folder = 0; folder < kFolders; ++folder) {
            QDir(project_.folder()).mkpath(folderOf(folder));
            project_.writeFile(fileOf(folder), "class Tide {}\n");
        }
        project_.writeFile(QStringLiteral("App.xcodeproj/project.pbxproj"),
                           "// !$*UTF8*$!\n{ objects = {\n"
                           "  PROJ = {isa = PBXProject; mainGroup = MAIN; };\n"
                           "  MAIN = {isa = PBXGroup; name = App; children = (SYNC); };\n"
                           "  SYNC = {isa = PBXFileSystemSynchronizedRootGroup; path = App;"
                           " sourceTree = \"<group>\"; };\n"
                           "}; rootObject = PROJ; }\n");
        navrel_.setLastKnownProject(project_.bundle());
    }

    static QString folderOf(int folder) { return QStringLiteral("App/Folder%1").arg(folder); }
    static QString fileOf(int folder) { return folderOf(folder) + QStringLiteral("/Tide.swift"); }

    std::string state() const {
        const QString socket = navrel_.runtimeFolder() + QStringLiteral("/nl.kelvane.Navrel.sock");
        return WebClient(socket.toStdString()).ask("GET /api/state HTTP/1.1\r\n\r\n").body;
    }
    /// Waits until the state has a sentence that a pattern fits.
    [[nodiscard]] bool waitForSentence(const std::string& pattern) const {
        const std::regex sentence("\"text\":\"" + pattern + "\"");
        return waitUntil([&] { return std::regex_search(state(), sentence); });
    }

    SmallProject project_;
    NavrelProcess navrel_;
};

class UsedUpWatchesTest : public WatchesTest, public ::testing::WithParamInterface<KernelLimit> {};

TEST_P(UsedUpWatchesTest, looksForChangesOnceASecond) {
    if (!navrel_.setLimit(GetParam().name, GetParam().value)) {
        GTEST_SKIP() << "no user namespace can be made here";
    }
    ASSERT_TRUE(navrel_.start());
    const std::string looks = " can be searched; Navrel looks for changes once a second\\.";
    EXPECT_TRUE(waitForSentence("8 symbols in 8 files" + looks)) << state();
    project_.writeFile(fileOf(0), "class Tide {}\nclass Ebb {}\n");
    EXPECT_TRUE(waitForSentence("9 symbols in 8 files" + looks)) << state();
    project_.writeFile(folderOf(kFolders - 1) + QStringLiteral("/New.swift"), "class New {}\n");
    EXPECT_TRUE(waitForSentence("10 symbols in 9 files" + looks)) << state();
    ASSERT_TRUE(QDir(project_.folder()).rename(folderOf(1), QStringLiteral("Gone")));
    EXPECT_TRUE(waitForSentence("9 symbols in 8 files" + looks)) << state();
}

TEST_F(WatchesTest, areEnoughWithoutALimit) {
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence("8 symbols in 8 files can be searched\\.")) << state();
}

INSTANTIATE_TEST_SUITE_P(Limits, UsedUpWatchesTest,
                         ::testing::Values(KernelLimit{"max_inotify_watches", 4},
                                           KernelLimit{"max_inotify_watches", 0},
                                           KernelLimit{"max_inotify_instances", 0}));

} // namespace
} // namespace navrel
