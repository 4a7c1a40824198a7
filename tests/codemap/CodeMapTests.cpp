#include "codemap/CodeMap.h"
#include "codemap/CodeMapViews.h"
#include "codemap/MapBuilder.h"
#include "codemap/tree/FolderWatch.h"
#include "tests/WaitUntil.h"
#include "tests/codemap/ScratchProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/json/serialize.hpp>
#include <functional>
#include <mutex>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

/// Everything that a snapshot holds, but revisions.
std::string contentOf(const CodeMapSnapshot& snapshot) {
    std::string text = std::string(snapshot.reason()) + '\n';
    boost::json::object tree = treeView(snapshot);
    tree.erase("revision");
    text += boost::json::serialize(tree) + '\n';
    for (const MapNodePtr& node : snapshot.nodes()) {
        if (auto outline = outlineView(snapshot, node->id)) {
            outline->erase("revision");
            text += boost::json::serialize(*outline) + '\n';
        }
    }
    return text;
}

/// A project with a group, a synchronised folder and a package.
class CodeMapTests : public testing::Test {
protected:
    CodeMapTests() {
        for (int file = 0; file < 20; ++file) {
            scratch_.write("App/Part" + std::to_string(file % 4) + "/File" + std::to_string(file) +
                               ".swift",
                           source(file));
        }
        scratch_.write("Listed/Tide.swift", source(100));
        scratch_.write("Kit/Package.swift", "x");
        scratch_.write("Kit/Sources/Kit.swift", source(200));
        bundle_ = writeProject("TIDE, GONE");
    }

    std::string writeProject(const std::string& files) {
        return scratch_.writeProject(
            "App.xcodeproj",
            group("MAIN", "S, L") + synchronizedGroup("S", "App") +
                group("L", files, "path = Listed;") + fileReference("TIDE", "Tide.swift") +
                fileReference("GONE", "Gone.swift") + fileReference("NEW", "New.swift") +
                "R = {isa = XCLocalSwiftPackageReference; relativePath = Kit;};\n",
            "packageReferences = (R);");
    }

    static std::string source(int number) {
        return "struct S" + std::to_string(number) + " { func f() {} }\n";
    }

    std::string fresh() const { return contentOf(*MapBuilder(bundle_).build(1).snapshot); }

    bool showsTheDisk(const CodeMap& map) const {
        return waitUntil([&] {
            return map.snapshot()->state() != MapState::loading &&
                   contentOf(*map.snapshot()) == fresh();
        });
    }

    ScratchProject scratch_;
    std::string bundle_;
};

TEST_F(CodeMapTests, isEmptyWithoutAProject) {
    const CodeMap map;
    EXPECT_EQ(map.snapshot()->state(), MapState::none);
    EXPECT_EQ(map.snapshot()->root(), nullptr);
    EXPECT_TRUE(map.isWatching());
}

TEST_F(CodeMapTests, loadsAProjectAndLeavesIt) {
    CodeMap map;
    map.open(bundle_);
    EXPECT_TRUE(waitUntil([&] { return map.snapshot()->state() == MapState::loaded; }));
    EXPECT_EQ(contentOf(*map.snapshot()), fresh());
    EXPECT_EQ(map.filesMapped(), map.snapshot()->fileCount());
    map.open({});
    EXPECT_TRUE(waitUntil([&] { return map.snapshot()->state() == MapState::none; }));
}

TEST_F(CodeMapTests, whatDidNotChangeIsShared) {
    CodeMap map;
    map.open(bundle_);
    ASSERT_TRUE(waitUntil([&] { return map.snapshot()->state() == MapState::loaded; }));
    const CodeMapSnapshotPtr before = map.snapshot();
    scratch_.replace("Listed/Tide.swift", "class Ebb {}\nclass Flood {}\n");
    ASSERT_TRUE(waitUntil([&] { return map.snapshot()->revision() > before->revision(); }));
    const CodeMapSnapshotPtr after = map.snapshot();
    const MapNode* const changed = after->fileAtPath(scratch_.path("Listed/Tide.swift"));
    EXPECT_EQ(changed->outlineRevision, after->revision());
    for (const MapNodePtr& node : after->nodes()) {
        EXPECT_EQ(node.get() == before->node(node->id), node.get() != changed) << node->name;
    }
}

TEST_F(CodeMapTests, observersLearnWhatChanged) {
    CodeMap map;
    std::mutex mutex;
    std::vector<CodeMap::Change> changes;
    map.addObserver([&](const CodeMap::Change& change) {
        const std::lock_guard lock(mutex);
        changes.push_back(change);
    });
    map.open(bundle_);
    ASSERT_TRUE(waitUntil([&] { return map.snapshot()->state() == MapState::loaded; }));
    const NodeID file = map.snapshot()->fileAtPath(scratch_.path("Listed/Tide.swift"))->id;
    scratch_.write("Listed/Tide.swift", "class Ebb {}\n");
    EXPECT_TRUE(waitUntil([&] {
        const std::lock_guard lock(mutex);
        return changes.back().files == std::vector<NodeID>{file} && !changes.back().tree;
    }));
    scratch_.remove("Listed/Tide.swift");
    EXPECT_TRUE(waitUntil([&] {
        const std::lock_guard lock(mutex);
        return changes.back().files == std::vector<NodeID>{file} && changes.back().tree;
    }));
}

TEST_F(CodeMapTests, aRemovedObserverIsNotCalled) {
    CodeMap map;
    std::atomic<int> calls = 0;
    const std::uint64_t token = map.addObserver([&](const CodeMap::Change&) { ++calls; });
    map.removeObserver(token);
    map.open(bundle_);
    ASSERT_TRUE(waitUntil([&] { return map.snapshot()->state() == MapState::loaded; }));
    EXPECT_EQ(calls, 0);
}

TEST_F(CodeMapTests, anotherProjectOfTheWorkspaceIsIncludedByItsNode) {
    const std::string other =
        scratch_.writeProject("Two/Two.xcodeproj", group("MAIN", "F") + fileReference("F", "f.c"));
    scratch_.write("All.xcworkspace/contents.xcworkspacedata",
                   "<Workspace><FileRef location='group:App.xcodeproj'/>"
                   "<FileRef location='group:Two/Two.xcodeproj'/></Workspace>");
    CodeMap map;
    map.open(bundle_);
    ASSERT_TRUE(waitUntil([&] { return map.snapshot()->state() == MapState::loaded; }));
    for (const MapNodePtr& node : map.snapshot()->nodes()) {
        if (node->absolutePath == other) {
            map.include(node->id);
        }
    }
    EXPECT_TRUE(
        waitUntil([&] { return map.snapshot()->fileAtPath(scratch_.path("Two/f.c")) != nullptr; }));
}

TEST_F(CodeMapTests, followsWhatASymbolicLinkLeadsTo) {
    scratch_.write("Elsewhere/Real.swift", "class Ebb {}\n");
    ASSERT_EQ(::symlink("../Elsewhere/Real.swift", scratch_.path("App/Link.swift").c_str()), 0);
    CodeMap map;
    map.open(bundle_);
    ASSERT_TRUE(showsTheDisk(map));
    scratch_.write("Elsewhere/Real.swift", "class Ebb {}\nclass Flood {}\n");
    EXPECT_TRUE(showsTheDisk(map));
    EXPECT_TRUE(map.isWatching());
}

/// The ways in which people and tools change a project.
class Edits {
public:
    Edits(const ScratchProject& scratch, std::function<void(const std::string&)> writeProject)
        : scratch_(scratch), writeProject_(std::move(writeProject)) {}

    void oneOf(unsigned choice, int number) const {
        const std::string text = "class C" + std::to_string(number) + " {}\n";
        const std::string part = "App/Part" + std::to_string(number % 4);
        switch (choice % 12) {
        case 0:
            return scratch_.write(part + "/File.swift", text);
        case 1:
            return scratch_.replace(part + "/Replaced.swift", text);
        case 2:
            return scratch_.remove(part);
        case 3:
            scratch_.remove("App/Moved");
            scratch_.write(part + "/a.swift", text);
            return scratch_.rename(part, "App/Moved");
        case 4:
            scratch_.remove("App");
            return scratch_.write("App/Part1/Deep/Deeper/d.swift", text);
        case 5:
            return writeProject_(number % 2 == 0 ? "TIDE, GONE" : "NEW, TIDE");
        case 6:
            return scratch_.replace("App.xcodeproj/project.pbxproj", "{ broken\n");
        case 7:
            return scratch_.write("Listed/New.swift", text);
        case 8:
            scratch_.write("Aside/Tide.swift", text);
            scratch_.remove("Listed");
            return scratch_.rename("Aside", "Listed");
        case 9:
            return scratch_.write("Kit/Package.swift",
                                  number % 2 == 0 ? "path: \"Own\"" : "nothing");
        case 10:
            return scratch_.write("Kit/Own/o" + std::to_string(number) + ".swift", text);
        default:
            scratch_.remove("App/link.swift");
            scratch_.write("Elsewhere.swift", text);
            if (::symlink("../Elsewhere.swift", scratch_.path("App/link.swift").c_str()) != 0) {
                scratch_.write("App/no-links.swift", text);
            }
        }
    }

private:
    const ScratchProject& scratch_;
    std::function<void(const std::string&)> writeProject_;
};

class LiveCodeMapTests : public CodeMapTests, public testing::WithParamInterface<bool> {};

TEST_P(LiveCodeMapTests, equalsAFreshMapAfterEveryBurst) {
    constexpr int kBursts = 24;
    CodeMap map(GetParam() ? makeFolderWatch() : makeBlindFolderWatch());
    map.open(bundle_);
    ASSERT_TRUE(showsTheDisk(map));
    EXPECT_EQ(map.isWatching(), GetParam());
    const Edits edits(scratch_, [this](const std::string& files) { writeProject(files); });
    // Other edits with --gtest_shuffle --gtest_random_seed=N.
    std::mt19937 random(20 +
                        static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    for (int burst = 0; burst < (GetParam() ? kBursts : kBursts / 6); ++burst) {
        std::string done;
        for (unsigned count = 1 + random() % 8; count > 0; --count) {
            const unsigned choice = random() % 12;
            done += ' ' + std::to_string(choice);
            edits.oneOf(choice, static_cast<int>(random() % 1000));
        }
        if (random() % 2 == 0) {
            writeProject("TIDE, NEW");
        }
        ASSERT_TRUE(showsTheDisk(map)) << "after" << done << "\nmap:\n"
                                       << contentOf(*map.snapshot()) << "\ndisk:\n"
                                       << fresh();
    }
}

INSTANTIATE_TEST_SUITE_P(WatchingAndLooking, LiveCodeMapTests, testing::Bool(),
                         [](const auto& test) {
                             return std::string(test.param ? "Watching" : "Looking");
                         });

} // namespace
} // namespace navrel
