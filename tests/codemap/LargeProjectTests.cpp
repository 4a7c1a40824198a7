// A map of 20,000 files that is kept up to date: another branch is checked out below it, folders
// are renamed, and the system's watches are used up.

#include "codemap/CodeMap.h"
#include "codemap/MapBuilder.h"
#include "codemap/tree/FolderWatch.h"
#include "tests/Sanitizers.h"
#include "tests/WaitUntil.h"
#include "tests/codemap/ScratchProject.h"

#include <QProcess>
#include <QStringList>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace navrel {
namespace {

constexpr int kFolders = loadOf(400, 60);
constexpr int kFilesOfFolder = 50;

/// What a snapshot shows: a line for each file, with its symbols.
std::vector<std::string> shownBy(const CodeMapSnapshot& snapshot) {
    std::vector<std::string> lines;
    for (const MapNodePtr& node : snapshot.nodes()) {
        std::string line = node->path + (node->missing ? " missing" : "");
        for (std::size_t symbol = 0; node->outline && symbol < node->outline->symbols().size();
             ++symbol) {
            line += ' ';
            line += node->outline->nameOf(node->outline->symbols()[symbol]);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

/// Watches so many folders and no more, as a system does whose limit is used up.
class LimitedFolderWatch : public FolderWatch {
public:
    explicit LimitedFolderWatch(int most) : left_(most) {}

    bool add(const std::string& folder) override {
        if (left_ == 0) {
            return false;
        }
        --left_;
        return watch_->add(folder);
    }
    void remove(const std::string& folder) override { watch_->remove(folder); }
    std::vector<FolderEvent> wait(std::chrono::milliseconds timeout) override {
        return watch_->wait(timeout);
    }
    void wake() override { watch_->wake(); }

private:
    int left_;
    std::unique_ptr<FolderWatch> watch_ = makeFolderWatch();
};

class LargeProjectTests : public testing::Test {
protected:
    LargeProjectTests() {
        for (int folder = 0; folder < kFolders; ++folder) {
            for (int file = 0; file < kFilesOfFolder; ++file) {
                write(folder, file, "struct S" + std::to_string(folder) + " {}\n");
            }
        }
        bundle_ = scratch_.writeProject("App.xcodeproj",
                                        group("MAIN", "S") + synchronizedGroup("S", "App"));
    }

    static std::string folderOf(int folder) { return "App/Part" + std::to_string(folder); }

    void write(int folder, int file, const std::string& text) const {
        scratch_.write(folderOf(folder) + "/File" + std::to_string(file) + ".swift", text);
    }

    void git(const QStringList& arguments) const {
        QProcess process;
        process.setWorkingDirectory(QString::fromStdString(scratch_.path()));
        process.start(QStringLiteral("git"),
                      QStringList{QStringLiteral("-c"), QStringLiteral("user.name=N"),
                                  QStringLiteral("-c"), QStringLiteral("user.email=n@x.invalid"),
                                  QStringLiteral("-c"), QStringLiteral("init.defaultBranch=main")} +
                          arguments);
        ASSERT_TRUE(process.waitForFinished(-1));
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    }
    void commitAll() const {
        git({QStringLiteral("add"), QStringLiteral("-A")});
        git({QStringLiteral("commit"), QStringLiteral("-qm"), QStringLiteral("Change")});
    }

    void editAnyFolder(int folder, int edit) const {
        const std::string text = "class C" + std::to_string(edit) + " { var v = 1 }\n";
        const std::string aside = "Aside" + std::to_string(folder);
        const std::string renamed = folderOf(folder) + "Renamed" + std::to_string(edit);
        switch (edit % 5) {
        case 0:
            return write(folder, edit, text);
        case 1:
            return scratch_.replace(folderOf(folder) + "/Saved.swift", text);
        case 2:
            write(folder, 0, text);
            scratch_.remove(aside);
            scratch_.remove(renamed);
            scratch_.rename(folderOf(folder), aside);
            return scratch_.rename(aside, renamed);
        case 3:
            return scratch_.remove(folderOf(folder));
        default:
            return scratch_.write(folderOf(folder) + "/Deep/Deeper/New.swift", text);
        }
    }

    /// Another branch: a tenth of the folders is changed, some are renamed, some are gone.
    void makeBranches() const {
        git({QStringLiteral("init"), QStringLiteral("-q")});
        commitAll();
        git({QStringLiteral("checkout"), QStringLiteral("-qb"), QStringLiteral("other")});
        for (int folder = 0; folder < kFolders; folder += 10) {
            for (int file = 0; file < kFilesOfFolder; ++file) {
                write(folder, file, "class Other { func f() {} }\n");
            }
            scratch_.rename(folderOf(folder + 1), folderOf(folder + 1) + "Renamed");
            scratch_.remove(folderOf(folder + 2));
            scratch_.write(folderOf(folder) + "/Deep/Deeper/New.swift", "enum New {}\n");
        }
        commitAll();
        git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("main")});
    }

    /// The disk must rest.
    void expectEqualToAFreshMap(const CodeMap& map) const {
        const std::vector<std::string> fresh = shownBy(*MapBuilder(bundle_).build(1).snapshot);
        std::uint64_t seen = 0;
        const bool isEqual = waitUntil([&] {
            const CodeMapSnapshotPtr snapshot = map.snapshot();
            return std::exchange(seen, snapshot->revision()) != snapshot->revision() &&
                   shownBy(*snapshot) == fresh;
        });
        EXPECT_TRUE(isEqual);
    }

    ScratchProject scratch_;
    std::string bundle_;
};

TEST_F(LargeProjectTests, followsACheckoutOfAnotherBranch) {
    makeBranches();
    CodeMap map;
    map.open(bundle_);
    expectEqualToAFreshMap(map);
    const std::size_t files = map.snapshot()->fileCount();
    EXPECT_EQ(files, std::size_t{kFolders * kFilesOfFolder});
    git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("other")});
    expectEqualToAFreshMap(map);
    EXPECT_LT(map.snapshot()->fileCount(), files);
    git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("main")});
    expectEqualToAFreshMap(map);
    EXPECT_EQ(map.snapshot()->fileCount(), files);
}

TEST_F(LargeProjectTests, followsRenamedFolders) {
    CodeMap map;
    map.open(bundle_);
    expectEqualToAFreshMap(map);
    scratch_.rename("App", "Away");
    expectEqualToAFreshMap(map);
    EXPECT_EQ(map.snapshot()->fileCount(), 0u);
    scratch_.rename("Away", "App");
    expectEqualToAFreshMap(map);
    scratch_.rename(folderOf(0), folderOf(1) + "/Inside");
    scratch_.replace(folderOf(1) + "/Inside/File0.swift", "class Saved {}\n");
    expectEqualToAFreshMap(map);
}

/// What people and tools do to a large project in a moment.
TEST_F(LargeProjectTests, equalsAFreshMapAfterEveryBurst) {
    constexpr int kBursts = 4;
    constexpr int kEdits = 80;
    makeBranches();
    CodeMap map;
    map.open(bundle_);
    expectEqualToAFreshMap(map);
    // Other edits with --gtest_shuffle --gtest_random_seed=N.
    std::mt19937 random(4 + static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    for (int burst = 0; burst < kBursts; ++burst) {
        for (int edit = 0; edit < kEdits; ++edit) {
            editAnyFolder(static_cast<int>(random() % kFolders), edit);
        }
        if (burst == kBursts / 2) {
            git({QStringLiteral("checkout"), QStringLiteral("-qf"), QStringLiteral("other")});
        }
        expectEqualToAFreshMap(map);
        EXPECT_TRUE(map.isWatching());
    }
}

/// As over a slow network: a piece, and a while later the next.
TEST_F(LargeProjectTests, followsAFileThatComesInPieces) {
    CodeMap map;
    map.open(bundle_);
    expectEqualToAFreshMap(map);
    const std::size_t before = map.snapshot()->symbolCount();
    std::string text = "// comes in pieces\n";
    for (std::size_t piece = 1; piece <= 10; ++piece) {
        // Half of a class, and the rest of the one before.
        text += "class Piece" + std::to_string(piece) + " {\n    func f() {}\n";
        write(0, kFilesOfFolder, text);
        EXPECT_TRUE(waitUntil([&] { return map.snapshot()->symbolCount() == before + 2 * piece; }))
            << piece;
        text += "}\n";
    }
    write(0, kFilesOfFolder, text);
    expectEqualToAFreshMap(map);
}

TEST_F(LargeProjectTests, looksAtTheDiskWhereTheWatchesAreUsedUp) {
    CodeMap map(std::make_unique<LimitedFolderWatch>(kFolders / 2));
    map.open(bundle_);
    expectEqualToAFreshMap(map);
    EXPECT_FALSE(map.isWatching());
    write(0, 0, "class First {}\n");
    write(kFolders - 1, 0, "class Last {}\n");
    scratch_.replace(folderOf(kFolders - 2) + "/File1.swift", "class Replaced {}\n");
    scratch_.rename(folderOf(kFolders - 3), folderOf(kFolders - 3) + "Renamed");
    expectEqualToAFreshMap(map);
}

} // namespace
} // namespace navrel
