#include "codemap/BranchChanges.h"
#include "codemap/MapBuilder.h"
#include "tests/codemap/ScratchProject.h"

#include <QProcess>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BranchChangesTests : public testing::Test {
protected:
    BranchChangesTests() {
        bundle_ = scratch_.writeProject("App.xcodeproj",
                                        group("MAIN", "S") + synchronizedGroup("S", "App"));
        scratch_.write("App/Kept.swift", "struct Kept {}\n");
        scratch_.write("App/Tide.swift", "struct Tide {\n"
                                         "    func rise() {\n"
                                         "        1\n"
                                         "    }\n"
                                         "    func fall() {\n"
                                         "        2\n"
                                         "    }\n"
                                         "}\n");
        scratch_.write("App/Old.swift", "struct Old {\n    var a = 1\n    var b = 2\n}\n");
    }

    void git(const QStringList& arguments) const {
        QProcess process;
        process.setWorkingDirectory(QString::fromStdString(scratch_.path()));
        process.start(QStringLiteral("git"),
                      QStringList{QStringLiteral("-c"), QStringLiteral("user.name=N"),
                                  QStringLiteral("-c"), QStringLiteral("user.email=n@x.invalid"),
                                  QStringLiteral("-c"), QStringLiteral("init.defaultBranch=main")} +
                          arguments);
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    }
    void commitAll() const {
        git({QStringLiteral("add"), QStringLiteral("-A")});
        git({QStringLiteral("commit"), QStringLiteral("-qm"), QStringLiteral("Change")});
    }
    void startRepository() const {
        git({QStringLiteral("init"), QStringLiteral("-q")});
        commitAll();
    }

    BranchChanges changes() const {
        const CodeMapSnapshotPtr snapshot = MapBuilder(bundle_).build(1).snapshot;
        return branchChangesOf(*snapshot);
    }
    /// "modified App/Tide.swift: rise" and so on.
    std::vector<std::string> changedFiles() const {
        const std::vector<std::string> names = {"added", "modified", "deleted", "renamed"};
        std::vector<std::string> lines;
        for (const ChangedFile& file : changes().files) {
            std::string line = names[static_cast<std::size_t>(file.status)] + ' ' +
                               file.absolutePath.substr(scratch_.path().size() + 1) + ':';
            for (const ChangedSymbol& symbol : file.symbols) {
                line += ' ' + symbol.name + '@' + std::to_string(symbol.line);
            }
            lines.push_back(line);
        }
        return lines;
    }

    ScratchProject scratch_;
    std::string bundle_;
};

TEST_F(BranchChangesTests, withoutARepositoryThereIsNothing) {
    EXPECT_EQ(changes().state, ChangesState::noRepository);
    EXPECT_EQ(branchChangesOf(CodeMapSnapshot()).state, ChangesState::noRepository);
}

TEST_F(BranchChangesTests, aRepositoryWithoutACommitIsUnavailable) {
    git({QStringLiteral("init"), QStringLiteral("-q")});
    EXPECT_EQ(changes().state, ChangesState::unavailable);
}

TEST_F(BranchChangesTests, namesTheSymbolsWhoseLinesChanged) {
    startRepository();
    scratch_.write("App/Tide.swift", "struct Tide {\n"
                                     "    func rise() {\n"
                                     "        1\n"
                                     "    }\n"
                                     "    func fall() {\n"
                                     "        3\n"
                                     "    }\n"
                                     "}\n");
    EXPECT_EQ(changes().base, "main");
    EXPECT_THAT(changedFiles(), ElementsAre("modified App/Tide.swift: fall()@5"));
}

TEST_F(BranchChangesTests, comparesWithWhereTheBranchLeftTheDefaultOne) {
    startRepository();
    git({QStringLiteral("checkout"), QStringLiteral("-qb"), QStringLiteral("work")});
    scratch_.write("App/New.swift", "struct New {}\n");
    commitAll();
    git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("main")});
    scratch_.write("App/Kept.swift", "struct Kept { var more = 1 }\n");
    commitAll();
    git({QStringLiteral("checkout"), QStringLiteral("-q"), QStringLiteral("work")});
    scratch_.write("App/Untracked.swift", "struct Untracked {}\n");
    EXPECT_THAT(changedFiles(), ElementsAre("added App/New.swift: New@1",
                                            "added App/Untracked.swift: Untracked@1"));
    EXPECT_EQ(changes().base, "main");
    EXPECT_EQ(changes().mergeBase.size(), 40U);
}

TEST_F(BranchChangesTests, deletedAndRenamedFilesAreNamed) {
    startRepository();
    scratch_.remove("App/Kept.swift");
    scratch_.rename("App/Old.swift", "App/Renamed.swift");
    EXPECT_THAT(changedFiles(),
                ElementsAre("deleted App/Kept.swift:", "renamed App/Renamed.swift:"));
}

TEST_F(BranchChangesTests, whatTheProjectDoesNotListIsLeftOut) {
    startRepository();
    scratch_.write("Elsewhere/x.swift", "struct X {}\n");
    EXPECT_THAT(changedFiles(), IsEmpty());
}

TEST_F(BranchChangesTests, noProgramOfTheRepositoryIsRun) {
    startRepository();
    const std::string proof = scratch_.path("proof");
    const QString command = QString::fromStdString("sh -c 'echo ran > " + proof + "; cat'");
    for (const char* key : {"filter.bad.clean", "filter.bad.smudge", "diff.bad.textconv",
                            "diff.bad.command", "core.fsmonitor", "diff.external"}) {
        git({QStringLiteral("config"), QString::fromLatin1(key), command});
    }
    scratch_.write(".gitattributes", "*.swift filter=bad diff=bad\n");
    scratch_.write("App/Kept.swift", "struct Kept { var a = 1 }\n");
    EXPECT_THAT(changedFiles(), ElementsAre("modified App/Kept.swift: a@1"));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(proof)));
}

TEST_F(BranchChangesTests, aDamagedRepositoryIsUnavailable) {
    startRepository();
    scratch_.write(".git/HEAD", "nothing\n");
    EXPECT_NE(changes().state, ChangesState::ok);
    scratch_.write(".git/HEAD", "ref: refs/heads/main\n");
    scratch_.write(".git/refs/heads/main", "0123456789012345678901234567890123456789\n");
    EXPECT_EQ(changes().state, ChangesState::unavailable);
}

} // namespace
} // namespace navrel
