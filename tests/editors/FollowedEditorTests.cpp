#include "editors/EditorChoice.h"
#include "editors/EditorTrail.h"
#include "editors/FollowedEditor.h"
#include "editors/xcode/XcodeEditor.h"
#include "support/text/FilePath.h"
#include "tests/LogRecorder.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"
#include "tests/editors/AwaitOutcome.h"
#include "tests/editors/FakeServer.h"
#include "tests/editors/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace navrel {
namespace {

struct Opened {
    QByteArray path;
    std::optional<int> line;
    bool operator==(const Opened&) const = default;
};

/// Answers as told and records what it was asked to open.
class FakeRunningEditor final : public RunningEditor {
public:
    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override {
        ++queries;
        timeGiven = std::chrono::milliseconds(deadline.remainingTime());
        std::this_thread::sleep_for(isStopped ? timeGiven : timeTaken);
        return file ? std::optional(ActiveFile{*file, !isBusy, !isBusy}) : std::nullopt;
    }
    bool open(const QByteArray& path, std::optional<int> line, const QDeadlineTimer&) override {
        while (isHeld) {
            std::this_thread::yield();
        }
        const std::lock_guard lock(mutex_);
        opened_.push_back({path, line});
        thread_ = std::this_thread::get_id();
        return answersOpen;
    }

    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override {
        JumpResult result;
        jumpedToColumn = place.column;
        if (open(place.path, place.line, deadline)) {
            result.outcome.kind = jumpEnds;
            result.before = EditorPlace{"/was/at.m", place.line, 1, false};
        }
        return result;
    }
    JumpResult goBack(const QDeadlineTimer&) override {
        ++stepsBack;
        const auto kind = goesBack ? EditorOutcome::Kind::opened : EditorOutcome::Kind::notRunning;
        return {{kind, {}, {}, {}}, {}};
    }
    QString name() const override { return QStringLiteral("Fake"); }
    bool isSuspended() const override { return isHeldByTheShell; }
    void follow(PlaceObserver toTell) override { observer = std::move(toTell); }

    std::vector<Opened> opened() const {
        const std::lock_guard lock(mutex_);
        return opened_;
    }
    std::thread::id thread() const {
        const std::lock_guard lock(mutex_);
        return thread_;
    }

    std::optional<QByteArray> file;
    /// Shows what it showed when it last answered, which is a while ago.
    bool isBusy = false;
    /// Takes all the time that it is given, and then answers nothing.
    bool isStopped = false;
    bool isHeldByTheShell = false;
    int queries = 0;
    std::chrono::milliseconds timeGiven{};
    std::chrono::milliseconds timeTaken{};
    std::atomic<bool> answersOpen = true;
    /// How jumps end where it answers.
    std::atomic<EditorOutcome::Kind> jumpEnds = EditorOutcome::Kind::opened;
    std::atomic<bool> isHeld = false;
    std::atomic<bool> goesBack = false;
    std::atomic<int> stepsBack = 0;
    std::atomic<int> jumpedToColumn = -1;
    PlaceObserver observer; ///< null while nobody follows

private:
    mutable std::mutex mutex_; ///< guards what follows; any thread
    std::vector<Opened> opened_;
    std::thread::id thread_;
};

/// The editor of last resort, as the desktop is.
class FakeLastResort final : public Editor {
public:
    std::optional<QString> activeProjectPath() override { return QStringLiteral(""); }
    std::optional<QString> activeFileName() override { return QStringLiteral(""); }
    void openFile(const QString& path, std::optional<int>) override {
        const std::lock_guard lock(mutex_);
        opened_.append(path);
    }
    void open(const QString& path, int, int, OutcomeObserver done) override {
        openFile(path, std::nullopt);
        done({EditorOutcome::Kind::opened, {}, {}, {}});
    }
    QStringList opened() const {
        const std::lock_guard lock(mutex_);
        return opened_;
    }

private:
    mutable std::mutex mutex_; ///< guards what follows; any thread
    QStringList opened_;
};

class FollowedEditorTest : public ::testing::Test {
protected:
    ScratchEnvironment environment;
    std::shared_ptr<FakeRunningEditor> first = std::make_shared<FakeRunningEditor>();
    std::shared_ptr<FakeRunningEditor> second = std::make_shared<FakeRunningEditor>();
    std::shared_ptr<FakeLastResort> lastResort = std::make_shared<FakeLastResort>();
    FollowedEditor followed{{first, second}, lastResort};
};

TEST_F(FollowedEditorTest, theFirstThatAnswersIsFollowed) {
    first->file = "/a/one.m";
    second->file = "/a/two.m";
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("one.m"));
    EXPECT_EQ(second->queries, 0);
    first->file = std::nullopt;
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("two.m"));
}

TEST_F(FollowedEditorTest, whenNoneAnswersTheLastResortDoes) {
    EXPECT_EQ(followed.activeFileName(), QStringLiteral(""));
    EXPECT_EQ(followed.activeProjectPath(), QStringLiteral(""));
}

TEST_F(FollowedEditorTest, itSaysWhetherTheEditorAnswersIsSilentOrStopped) {
    using Presence = Editor::Presence;
    first->file = "/a.m";
    followed.activeFileName();
    EXPECT_EQ(followed.presence(), Presence::answers);
    first->isBusy = true;
    followed.activeFileName();
    EXPECT_EQ(followed.presence(), Presence::silent);
    first->isHeldByTheShell = true;
    EXPECT_EQ(followed.presence(), Presence::stopped);
    first->file.reset();
    followed.activeFileName();
    EXPECT_EQ(followed.name(), QString());
    EXPECT_EQ(followed.presence(), Presence::answers);
}

TEST_F(FollowedEditorTest, anEditorThatIsStoppedLeavesTheNextOneItsShare) {
    first->isStopped = true;
    second->file = "/a/two.m";
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("two.m"));
    EXPECT_LE(first->timeGiven, FollowedEditor::kQueryAtMost / 2);
    EXPECT_GT(second->timeGiven, std::chrono::milliseconds(0));
}

TEST_F(FollowedEditorTest, anEditorThatHasBeenBusyForLongIsFollowedIfNoOtherAnswers) {
    first->file = "/a/one.m";
    first->isBusy = true;
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("one.m")) << "not the desktop's answer";
    second->file = "/a/two.m";
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("two.m"));
    second->isBusy = true;
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("one.m"));
    first->file = std::nullopt;
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("two.m"));
}

TEST_F(FollowedEditorTest, withoutALastResortAnEditorThatDoesNotAnswerCannotBeAsked) {
    FollowedEditor alone({first}, nullptr);
    EXPECT_EQ(alone.activeFileName(), std::nullopt);
    EXPECT_EQ(alone.activeProjectPath(), std::nullopt);
}

TEST_F(FollowedEditorTest, theActiveProjectIsTheBundleNearestToTheActiveFile) {
    const QByteArray bundle = environment.bytesOf("work/App.xcodeproj");
    ScratchEnvironment::write(bundle + "/project.pbxproj", "");
    first->file = environment.bytesOf("work/src/a.m");
    EXPECT_EQ(followed.activeProjectPath(), QString::fromUtf8(bundle));
    first->file = environment.bytesOf("elsewhere/a.m");
    EXPECT_EQ(followed.activeProjectPath(), QStringLiteral(""));
    first->file = "";
    EXPECT_EQ(followed.activeProjectPath(), QStringLiteral(""));
}

TEST_F(FollowedEditorTest, whileNoTimeIsLeftToLookForTheProjectTheLastOneStands) {
    const QByteArray bundle = environment.bytesOf("work/App.xcodeproj");
    ScratchEnvironment::write(bundle + "/project.pbxproj", "");
    first->file = environment.bytesOf("elsewhere/a.m");
    first->timeTaken = FollowedEditor::kQueryAtMost;
    EXPECT_EQ(followed.activeProjectPath(), QStringLiteral("")) << "nothing was told so far";

    first->timeTaken = {};
    first->file = environment.bytesOf("work/a.m");
    EXPECT_EQ(followed.activeProjectPath(), QString::fromUtf8(bundle));
    first->timeTaken = FollowedEditor::kQueryAtMost;
    first->file = environment.bytesOf("elsewhere/a.m");
    EXPECT_EQ(followed.activeProjectPath(), QString::fromUtf8(bundle));
}

TEST_F(FollowedEditorTest, aBufferWhoseNameIsNoPathIsNoFile) {
    for (const char* name : {"scratch", "oil:///work", "term://bash", ""}) {
        first->file = name;
        EXPECT_EQ(followed.activeFileName(), QStringLiteral("")) << name;
    }
}

TEST_F(FollowedEditorTest, aNameThatIsNoTextIsNoFileThatCouldBeNamed) {
    first->file = "/a/\xFF.m";
    EXPECT_EQ(followed.activeFileName(), QStringLiteral(""));
    ScratchEnvironment::write(environment.bytesOf("\xFF/App.xcodeproj/project.pbxproj"), "");
    first->file = environment.bytesOf("\xFF/a.m");
    EXPECT_EQ(followed.activeProjectPath(), QStringLiteral(""));
}

TEST_F(FollowedEditorTest, openingHappensOnAnotherThreadAndIsNotWaitedFor) {
    first->isHeld = true;
    followed.openFile(QStringLiteral("/a.m"), 42);
    EXPECT_TRUE(first->opened().empty());
    first->isHeld = false;
    ASSERT_TRUE(waitUntil([&] { return !first->opened().empty(); }));
    EXPECT_EQ(first->opened(), (std::vector<Opened>{{"/a.m", 42}}));
    EXPECT_NE(first->thread(), std::this_thread::get_id());
}

TEST_F(FollowedEditorTest, requestsKeepTheirOrder) {
    constexpr int kRequests = 50;
    for (int line = 1; line <= kRequests; ++line) {
        followed.openFile(QStringLiteral("/a.m"), line);
    }
    ASSERT_TRUE(waitUntil([&] { return first->opened().size() == kRequests; }));
    for (int line = 1; line <= kRequests; ++line) {
        EXPECT_EQ(first->opened()[static_cast<std::size_t>(line - 1)].line, line);
    }
}

TEST_F(FollowedEditorTest, theNextEditorOpensWhatTheFirstDoesNotAnswerTo) {
    first->answersOpen = false;
    followed.openFile(QStringLiteral("/a.m"), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return !second->opened().empty(); }));
    EXPECT_EQ(second->opened(), (std::vector<Opened>{{"/a.m", std::nullopt}}));
    EXPECT_EQ(lastResort->opened(), QStringList());
}

TEST_F(FollowedEditorTest, theLastResortOpensWhatNoneAnswersTo) {
    first->answersOpen = second->answersOpen = false;
    followed.openFile(QStringLiteral("/a.m"), 1);
    EXPECT_TRUE(
        waitUntil([&] { return lastResort->opened() == QStringList{QStringLiteral("/a.m")}; }));
}

TEST_F(FollowedEditorTest, withoutALastResortWhatNoneAnswersToIsLogged) {
    LogRecorder log;
    first->answersOpen = false;
    FollowedEditor({first}, nullptr).openFile(QStringLiteral("/a.m"), 1);
    ASSERT_TRUE(waitUntil([&] { return !first->opened().empty(); }));
    EXPECT_TRUE(waitUntil([&] { return log.messages().size() == 1; }));
    EXPECT_EQ(log.messages(),
              QStringList{QStringLiteral("No editor answers: /a.m was not opened")});
}

TEST_F(FollowedEditorTest, aDeviceThatAsksWithoutEndFillsNoMemory) {
    LogRecorder log;
    first->isHeld = true;
    constexpr int kTooMany = 10;
    for (int i = 0; i < FollowedEditor::kMaximumWaitingRequests + kTooMany; ++i) {
        followed.openFile(QStringLiteral("/a.m"), i);
    }
    EXPECT_EQ(log.messages().size(), kTooMany);
    first->isHeld = false;
    EXPECT_TRUE(waitUntil(
        [&] { return first->opened().size() == FollowedEditor::kMaximumWaitingRequests; }));
    // And then it opens files as ever.
    EXPECT_TRUE(waitUntil([&] {
        followed.openFile(QStringLiteral("/b.m"), 1);
        return first->opened().back().path == "/b.m";
    }));
}

TEST_F(FollowedEditorTest, aRelativePathIsOneFromTheFolderOfTheProcess) {
    followed.openFile(QStringLiteral("-c"), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return !first->opened().empty(); }));
    EXPECT_EQ(first->opened().front().path, QDir::currentPath().toUtf8() + "/-c");
}

TEST_F(FollowedEditorTest, whatNamesNoFileOpensNothing) {
    followed.openFile(QStringLiteral(""), 1);
    followed.openFile(QStringLiteral("/a") + QChar(u'\0') + QStringLiteral("b"), 1);
    followed.openFile(QStringLiteral("/a") + QChar(u'\xD83D') + QStringLiteral("b"), 1);
    followed.openFile(QLatin1Char('/') + QString(1'000'000, QLatin1Char('x')), 1);
    followed.openFile(QString(kMaximumPathLength, QLatin1Char('y')), 1);
    followed.openFile(QStringLiteral("/a.m"), 1);
    ASSERT_TRUE(waitUntil([&] { return !first->opened().empty(); }));
    EXPECT_EQ(first->opened().front().path, "/a.m");
}

TEST_F(FollowedEditorTest, theColumnReachesTheEditor) {
    std::atomic<bool> isDone = false;
    followed.open(QStringLiteral("/a.m"), 42, 7, [&](const EditorOutcome&) { isDone = true; });
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
    EXPECT_EQ(first->opened(), (std::vector<Opened>{{"/a.m", 42}}));
    EXPECT_EQ(first->jumpedToColumn, 7);
}

/// Editors that report where their users are.
class FocusedEditor : public FollowedEditorTest {
protected:
    using News = RunningEditor::PlaceNews;

    FocusedEditor() {
        first->file = "/a/one.m";
        second->file = "/a/two.m";
        followed.onMove([this](const EditorPosition& position) { shown.append(position.path); });
    }

    QStringList shown;
};

TEST_F(FocusedEditor, theOneThatWasMovedInLastComesFirst) {
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("one.m"));
    second->observer({"/a/two.m", 3, 1, false}, News::cameThere);
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("two.m"));
    followed.openFile(QStringLiteral("/b.m"), 7);
    EXPECT_TRUE(waitUntil([&] { return second->opened().size() == 1; }));
    EXPECT_TRUE(first->opened().empty());

    first->observer({"/a/one.m", 9, 1, false}, News::cameThere);
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("one.m"));
    EXPECT_EQ(shown, QStringList({QStringLiteral("/a/two.m"), QStringLiteral("/a/one.m")}));
}

TEST_F(FocusedEditor, oneThatWasClosedLeavesItsPlaceToTheOthers) {
    second->observer({"/a/two.m", 3, 1, false}, News::cameThere);
    second->file = std::nullopt;
    second->answersOpen = false;
    EXPECT_EQ(followed.activeFileName(), QStringLiteral("one.m"));
    followed.openFile(QStringLiteral("/b.m"), 7);
    EXPECT_TRUE(waitUntil([&] { return first->opened().size() == 1; }));
}

TEST_F(FocusedEditor, whatStoodThereBeforeIsNoMove) {
    second->observer({"/a/two.m", 3, 1, false}, News::isThere);
    EXPECT_EQ(followed.position()->path, QStringLiteral("/a/two.m"));
    first->observer({"/a/one.m", 9, 1, false}, News::isThere);
    EXPECT_EQ(followed.position()->path, QStringLiteral("/a/one.m")) << "it comes first";
    second->observer({"/a/two.m", 3, 1, false}, News::isThere);
    EXPECT_EQ(followed.position()->path, QStringLiteral("/a/one.m")) << "nobody moved there";
    second->observer({"/a/two.m", 4, 1, false}, News::cameThere);
    EXPECT_EQ(followed.position()->path, QStringLiteral("/a/two.m"));
    first->observer({"/a/one.m", 9, 1, false}, News::isThere);
    EXPECT_EQ(followed.position()->path, QStringLiteral("/a/two.m"));
}

TEST_F(FocusedEditor, noEditorIsAskedOnceNobodyFollows) {
    followed.onMove(nullptr);
    EXPECT_EQ(first->observer, nullptr);
    EXPECT_EQ(second->observer, nullptr);
    EXPECT_EQ(followed.position(), std::nullopt);
}

TEST_F(FocusedEditor, withoutAJumpToGoBackFromTheEditorsOwnListServes) {
    const auto back = [&] {
        return awaitOutcome([&](const auto& done) { followed.back(done); }).kind;
    };
    EXPECT_EQ(back(), EditorOutcome::Kind::refused);
    EXPECT_EQ(second->stepsBack, 1);
    first->goesBack = true;
    EXPECT_EQ(back(), EditorOutcome::Kind::opened);
    EXPECT_EQ(second->stepsBack, 1);
}

/// An editor that is led to the lines 1, 2 and 3 of a file, each time from the line of that number
/// in another one, and taken back.
class WayBack : public FollowedEditorTest {
protected:
    using Kind = EditorOutcome::Kind;

    WayBack() {
        for (int line = 1; line <= 3; ++line) {
            const auto outcome = awaitOutcome(
                [&](const auto& done) { followed.open(QStringLiteral("/a.m"), line, 0, done); });
            EXPECT_EQ(outcome.kind, Kind::opened);
        }
    }
    Kind back() {
        return awaitOutcome([&](const auto& done) { followed.back(done); }).kind;
    }
    Opened lastOpened() const { return first->opened().back(); }
    static Opened from(int line) { return {"/was/at.m", line}; }
};

TEST_F(WayBack, aStepIsKeptWhileTheEditorWaitsForItsUser) {
    first->jumpEnds = Kind::asksUser;
    EXPECT_EQ(back(), Kind::asksUser);
    EXPECT_EQ(back(), Kind::asksUser);
    EXPECT_EQ(back(), Kind::asksUser);
    first->jumpEnds = Kind::opened;
    for (int line = 3; line >= 1; --line) {
        EXPECT_EQ(back(), Kind::opened);
        EXPECT_EQ(lastOpened(), from(line));
    }
    EXPECT_EQ(back(), Kind::refused) << "no step back is a jump to go back from";
}

TEST_F(WayBack, aPlaceThatIsRefusedTwiceIsNotInTheWayOfOthers) {
    first->jumpEnds = Kind::refused;
    EXPECT_EQ(back(), Kind::refused);
    EXPECT_EQ(lastOpened(), from(3));
    EXPECT_EQ(back(), Kind::refused);
    EXPECT_EQ(lastOpened(), from(3));
    first->jumpEnds = Kind::opened;
    EXPECT_EQ(back(), Kind::opened);
    EXPECT_EQ(lastOpened(), from(2));
}

TEST_F(WayBack, withoutAnEditorTheLastResortTakesTheStep) {
    first->answersOpen = false;
    second->answersOpen = false;
    followed.back([](const EditorOutcome&) {});
    EXPECT_TRUE(waitUntil([&] { return lastResort->opened().size() == 1; }));
}

TEST(EditorTrail, theOldestPlacesGoFirst) {
    EditorTrail trail;
    constexpr int kPlaces = static_cast<int>(EditorTrail::kMaximumPlaces);
    for (int line = 1; line <= kPlaces + 1; ++line) {
        trail.add({"/a.m", line, 1, false});
    }
    trail.add({"no path", 1, 1, false});
    for (int line = kPlaces + 1; line > 1; --line) {
        EXPECT_EQ(trail.takeLast(), (EditorPlace{"/a.m", line, 1, false}));
    }
    EXPECT_EQ(trail.takeLast(), std::nullopt);
}

/// A Neovim and an Emacs, each with a file; what they open is nobody's here.
class EditorChoice : public ::testing::Test {
protected:
    EditorChoice() {
        ScratchEnvironment::write(environment.bytesOf("bin/emacsclient"),
                                  "#!/bin/sh\necho '\"1 " +
                                      QByteArrayLiteral("/of/emacs.m").toBase64() + "\"'\n");
        QFile(environment.pathOf(QStringLiteral("bin/emacsclient")))
            .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void startNeovim() {
        neovim = std::make_unique<FakeNeovim>(environment.bytesOf("xdg_runtime_dir/nvim.1.0"),
                                              "/of/neovim.m");
    }
    void startEmacs() {
        environment.set("PATH", environment.bytesOf("bin") + ':' + qgetenv("PATH"));
        environment.set("EMACS_SOCKET_NAME", "server");
    }
    /// Waits for the editor to tell of an active file: on a busy machine it may be late, and is
    /// then left alone for a while.
    static bool showsFile(Editor& editor, const char* name) {
        return waitUntil([&] { return editor.activeFileName() == QLatin1String(name); });
    }

    static bool isXcodeThere() { return QFile::exists(XcodeEditor::Tools().osascript); }

    ScratchEnvironment environment;
    std::unique_ptr<FakeNeovim> neovim;
};

TEST_F(EditorChoice, theEnvironmentNamesTheEditorWhicheverElseRuns) {
    startNeovim();
    startEmacs();
    environment.set("NAVREL_EDITOR", "xcode");
    EXPECT_NE(std::dynamic_pointer_cast<XcodeEditor>(chooseEditor()), nullptr);
    environment.set("NAVREL_EDITOR", "neovim");
    EXPECT_TRUE(showsFile(*chooseEditor(), "neovim.m"));
    environment.set("NAVREL_EDITOR", "emacs");
    EXPECT_TRUE(showsFile(*chooseEditor(), "emacs.m"));
    environment.set("NAVREL_EDITOR", "desktop");
    EXPECT_TRUE(showsFile(*chooseEditor(), ""));
}

TEST_F(EditorChoice, aNamedEditorThatDoesNotRunHasNoSubstitute) {
    startEmacs();
    environment.set("NAVREL_EDITOR", "neovim");
    EXPECT_EQ(chooseEditor()->activeFileName(), std::nullopt);
    EXPECT_EQ(chooseEditor()->activeProjectPath(), std::nullopt);
    environment.unset("EMACS_SOCKET_NAME");
    startNeovim();
    environment.set("NAVREL_EDITOR", "emacs");
    EXPECT_EQ(chooseEditor()->activeFileName(), std::nullopt);
}

TEST_F(EditorChoice, neovimComesBeforeEmacsAndEmacsBeforeTheDesktop) {
    if (isXcodeThere()) {
        GTEST_SKIP() << "Xcode's tools are installed, and come first";
    }
    const auto editor = chooseEditor();
    EXPECT_EQ(editor->activeFileName(), QStringLiteral(""));
    startEmacs();
    EXPECT_TRUE(showsFile(*editor, "emacs.m"));
    startNeovim();
    EXPECT_TRUE(showsFile(*editor, "neovim.m"));
    neovim = nullptr;
    EXPECT_TRUE(showsFile(*editor, "emacs.m"));
}

TEST_F(EditorChoice, withoutAnyEditorTheDesktopOpensFiles) {
    if (isXcodeThere()) {
        GTEST_SKIP() << "Xcode's tools are installed";
    }
    const RecordingTool opener(QStringLiteral("xdg-open"));
    const auto editor = chooseEditor();
    EXPECT_EQ(editor->activeProjectPath(), QStringLiteral(""));
    EXPECT_EQ(editor->activeFileName(), QStringLiteral(""));
    editor->openFile(QStringLiteral("/a.m"), 42);
    ASSERT_TRUE(waitUntil([&] { return !opener.arguments().isEmpty(); }));
    EXPECT_EQ(opener.arguments(), QByteArrayList{"/a.m"});
}

TEST_F(EditorChoice, anUnknownNameIsLoggedAndTheEditorDetected) {
    environment.set("NAVREL_EDITOR", "ed");
    LogRecorder log;
    EXPECT_NE(chooseEditor(), nullptr);
    EXPECT_EQ(log.messages(), QStringList{QStringLiteral("NAVREL_EDITOR names no editor: ed")});
}

} // namespace
} // namespace navrel
