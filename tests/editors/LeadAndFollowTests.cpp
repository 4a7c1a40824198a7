// Editors that are led and followed: the real Neovim, Vim and Emacs in a terminal. Keys move the
// cursor, and what the editor was led to is read from its screen.

#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/LogRecorder.h"
#include "tests/RecordingTool.h"
#include "tests/StopProcess.h"
#include "tests/WaitUntil.h"
#include "tests/editors/AwaitOutcome.h"
#include "tests/editors/FakeServer.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTimer>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <poll.h>
#include <vector>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

class LeadAndFollow : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        const QString tool = isNeovim() ? QStringLiteral("nvim")
                             : isVi()   ? QStringLiteral("vim")
                                        : QStringLiteral("emacs");
        if (!findTool(tool) || !Terminal::isAvailable()) {
            GTEST_SKIP() << "needs " << tool.toStdString() << " and tmux";
        }
        ScratchEnvironment::write(fileA().toUtf8(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB().toUtf8(), ScratchEnvironment::lines(200));
        if (isNeovim()) {
            ASSERT_TRUE(terminal.start({QStringLiteral("nvim"), QStringLiteral("--clean"),
                                        QStringLiteral("--listen"), neovimSocket(), fileA()}));
        } else if (isVi()) {
            ASSERT_TRUE(terminal.start(
                {QStringLiteral("vim"), QStringLiteral("--clean"), QStringLiteral("-S"),
                 QStringLiteral(NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim"), fileA()}));
        } else {
            ASSERT_TRUE(terminal.start({QStringLiteral("emacs"), QStringLiteral("-Q"),
                                        QStringLiteral("-nw"), QStringLiteral("--eval"),
                                        QStringLiteral("(server-start)"), fileA()}));
        }
        ASSERT_TRUE(terminal.waitForScreen("line 2"));
        // A plug-in connects a moment later.
        ASSERT_TRUE(isNeovim() ||
                    waitUntil([&] { return editor.activeFileName() == QStringLiteral("a.m"); }));
    }
    ~LeadAndFollow() override { editor.onMove(nullptr); }

    static bool isNeovim() { return QByteArray(GetParam()) == "Neovim"; }
    static bool isVi() { return QByteArray(GetParam()) != "Emacs"; }
    static std::shared_ptr<RunningEditor> editorToTest() {
        if (isNeovim()) {
            return std::make_shared<NeovimEditor>(kSilentEditorLeftAlone, kPatience);
        }
        if (isVi()) {
            return std::make_shared<HookedEditor>(*HookSocket::standardPath(), kPatience);
        }
        return std::make_shared<EmacsEditor>(kSilentEditorLeftAlone, kPatience);
    }
    QString neovimSocket() const {
        return environment.pathOf(QStringLiteral("xdg_runtime_dir/nvim.1.0"));
    }
    QString fileA() const { return environment.pathOf(QStringLiteral("work/a.m")); }
    QString fileB() const { return environment.pathOf(QStringLiteral("work/b.m")); }

    void follow() {
        editor.onMove([this](const EditorPosition& position) { last = position; });
    }
    bool isAt(const QString& file, int line) const {
        return last && last->path == file && last->line == line;
    }
    bool isAt(const QString& file, int line, int column) const {
        return isAt(file, line) && last->column == column;
    }
    void moveDown() { terminal.type({isVi() ? QStringLiteral("j") : QStringLiteral("C-n")}); }

    EditorOutcome open(const QString& file, int line, int column = 0) {
        return awaitOutcome([&](const auto& done) { editor.open(file, line, column, done); });
    }
    EditorOutcome back() {
        return awaitOutcome([&](const auto& done) { editor.back(done); });
    }
    /// What the editor answers to an expression of its own, asked by its own client.
    QByteArray valueOf(const QString& expression) const {
        return isNeovim() ? outputOf(QStringLiteral("sh"),
                                     {QStringLiteral("-c"), QStringLiteral("exec \"$@\" 2>&1"),
                                      QStringLiteral("sh"), QStringLiteral("nvim"),
                                      QStringLiteral("--clean"), QStringLiteral("--headless"),
                                      QStringLiteral("--server"), neovimSocket(),
                                      QStringLiteral("--remote-expr"), expression})
                          : outputOf(QStringLiteral("emacsclient"),
                                     {QStringLiteral("-a"), QStringLiteral("false"),
                                      QStringLiteral("--eval"), expression});
    }

    ScratchEnvironment environment;
    Terminal terminal{environment.pathOf(QStringLiteral("tmux"))};
    FollowedEditor editor{{editorToTest()}, nullptr};
    std::optional<EditorPosition> last;
};

INSTANTIATE_TEST_SUITE_P(Editors, LeadAndFollow, ::testing::Values("Neovim", "Vim", "Emacs"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_P(LeadAndFollow, keysMoveTheClient) {
    follow();
    ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 1); }));
    EXPECT_EQ(editor.position(), last);
    for (int line = 2; line <= 6; ++line) {
        moveDown();
        EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), line); })) << line;
    }
    EXPECT_FALSE(last->isModified);
    terminal.type(isVi() ? QStringList{QStringLiteral("x")} : QStringList{QStringLiteral("C-d")});
    EXPECT_TRUE(waitUntil([&] { return last->isModified; }));
}

TEST_P(LeadAndFollow, aUserWhoMovesOnAndOnIsHeardOnlySoOften) {
    constexpr int kMoves = 80;
    int heard = 0;
    QElapsedTimer sinceTheBeginning;
    sinceTheBeginning.start();
    editor.onMove([&](const EditorPosition& position) {
        last = position;
        ++heard;
    });
    ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 1); }));
    for (int move = 0; move < kMoves; ++move) {
        moveDown();
    }
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 1 + kMoves); }));
    // Ten times a second; an editor's clock may stand still while it is busy, and its pauses be
    // shorter for that. Keys come far more often.
    constexpr qint64 kShortestPause = 50;
    EXPECT_LE(heard, 2 + sinceTheBeginning.elapsed() / kShortestPause);
}

TEST_P(LeadAndFollow, whatIsLedIsFollowedToo) {
    follow();
    const EditorOutcome outcome = open(fileB(), 42);
    EXPECT_EQ(outcome.kind, Kind::opened) << outcome.reason.toStdString();
    EXPECT_EQ(outcome.editor, QLatin1String(GetParam()));
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 42); }));
}

TEST_P(LeadAndFollow, theWayBackLeadsToFileLineAndColumn) {
    follow();
    moveDown();
    moveDown();
    terminal.type({isVi() ? QStringLiteral("l") : QStringLiteral("C-f")});
    ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 3, 2); }));

    EXPECT_EQ(open(fileB(), 42).kind, Kind::opened);
    EXPECT_EQ(open(fileB(), 90).kind, Kind::opened);
    ASSERT_TRUE(waitUntil([&] { return isAt(fileB(), 90); }));
    EXPECT_EQ(back().kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 42); }));
    // The file may have been closed meanwhile.
    if (isVi()) {
        terminal.type({QStringLiteral(":bwipeout a.m"), QStringLiteral("Enter")});
        EXPECT_TRUE(terminal.waitForScreen(":bwipeout a.m"));
    } else {
        valueOf(QStringLiteral("(kill-buffer \"a.m\")"));
    }
    EXPECT_EQ(back().kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 3, 2); }));
    const bool hasAListOfItsOwn = isVi() && !isNeovim();
    EXPECT_EQ(back().kind, hasAListOfItsOwn ? Kind::opened : Kind::refused)
        << "that was the first place";
}

TEST_P(LeadAndFollow, columnsCountCharactersInEveryEditor) {
    // A tab, letters of two and three bytes, and one that UTF-16 takes two units for.
    ScratchEnvironment::write(fileB().toUtf8(), "first\n\tgrüße €\xF0\x9F\x8C\x8A wave()\nlast\n");
    follow();
    EXPECT_EQ(open(fileB(), 2, 11).kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 2, 11); })) << "that is at \"wave\"";
    terminal.type(isVi() ? QStringList{QStringLiteral("i!"), QStringLiteral("Escape")}
                         : QStringList{QStringLiteral("!")});
    EXPECT_TRUE(terminal.waitForScreen("!wave()")) << "nothing was selected";

    EXPECT_EQ(open(fileA(), 7, 3).kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 7, 3); }));
    EXPECT_EQ(open(fileA(), 8, 1000).kind, Kind::opened) << "the end of the line is as good";
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 8) && last->column >= 6; }));
    EXPECT_EQ(back().kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 7, 3); }));
    const int afterTyping = isVi() ? 11 : 12; // leaving the mode takes a step to the left
    EXPECT_EQ(back().kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 2, afterTyping); }));
}

TEST_P(LeadAndFollow, jumpsInARowFromTheMiddleOfTypingAllArrive) {
    follow();
    terminal.type({isVi() ? QStringLiteral("ihello") : QStringLiteral("hello")});
    ASSERT_TRUE(terminal.waitForScreen("helloline 1"));
    for (int line = 10; line <= 14; ++line) {
        const EditorOutcome outcome = open(fileB(), line, 2);
        EXPECT_EQ(outcome.kind, Kind::opened) << outcome.reason.toStdString();
    }
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 14, 2); }));
    for (int line = 13; line >= 10; --line) {
        EXPECT_EQ(back().kind, Kind::opened);
        EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), line, 2); })) << line;
    }
}

TEST_P(LeadAndFollow, nothingIsAskedWhileNobodyFollows) {
    follow();
    ASSERT_TRUE(waitUntil([&] { return last.has_value(); }));
    editor.onMove(nullptr);
    EXPECT_EQ(editor.position(), std::nullopt);
    if (isNeovim()) {
        EXPECT_TRUE(waitUntil([&] {
            const QByteArray groups = valueOf(QStringLiteral("execute('augroup')"));
            return !groups.isEmpty() && !groups.contains("navrel-");
        })) << "it is to take its automatic commands away";
    }
    last.reset();
    moveDown();
    follow();
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 2); })) << "it follows again";
}

TEST_P(LeadAndFollow, anEditorThatIsGoneDoesNotRun) {
    EXPECT_EQ(open(fileB(), 3).kind, Kind::opened);
    terminal.type(isVi() ? QStringList{QStringLiteral("Escape"), QStringLiteral(":qa!"),
                                       QStringLiteral("Enter")}
                         : QStringList{QStringLiteral("C-x"), QStringLiteral("C-c")});
    EXPECT_TRUE(waitUntil([&] { return open(fileB(), 3).kind == Kind::notRunning; }));
}

TEST(LeadAndFollowNeovim, nothingIsAskedTwice) {
    ScratchEnvironment environment;
    const FakeNeovim neovim(environment.bytesOf("xdg_runtime_dir/nvim.1.0"), "/a.m");
    FollowedEditor editor({std::make_shared<NeovimEditor>()}, nullptr);
    const auto staysAt = [&](int connections) {
        const QDeadlineTimer severalRounds(std::chrono::seconds(3));
        return waitUntil([&] {
                   return severalRounds.hasExpired() || neovim.connections() != connections;
               }) &&
               neovim.connections() == connections;
    };
    EXPECT_TRUE(staysAt(0)) << "nobody follows";
    editor.onMove([](const EditorPosition&) {});
    ASSERT_TRUE(waitUntil([&] { return neovim.connections() == 1; }));
    EXPECT_TRUE(staysAt(1)) << "it tells by itself";
    editor.onMove(nullptr);
    EXPECT_TRUE(staysAt(1));
}

TEST(LeadAndFollowEmacs, itIsAskedOnlyWhileSomebodyFollows) {
    ScratchEnvironment environment;
    environment.set("EMACS_SOCKET_NAME", "server");
    const RecordingTool client(QStringLiteral("emacsclient"));
    FollowedEditor editor({std::make_shared<EmacsEditor>()}, nullptr);
    const auto staysAt = [&](qsizetype calls) {
        const QDeadlineTimer severalRounds(std::chrono::seconds(2));
        return waitUntil([&] {
                   return severalRounds.hasExpired() || client.arguments().size() != calls;
               }) &&
               client.arguments().size() == calls;
    };
    EXPECT_TRUE(staysAt(0)) << "nobody follows";
    editor.onMove([](const EditorPosition&) {});
    EXPECT_TRUE(waitUntil([&] { return client.arguments().count("--eval") >= 3; }));
    editor.onMove(nullptr);
    EXPECT_TRUE(staysAt(client.arguments().size()));
}

TEST(LeadAndFollowEmacs, oneThatIsStoppedIsSaidNotToAnswer) {
    ScratchEnvironment environment;
    environment.set("EMACS_SOCKET_NAME", "server");
    ScratchEnvironment::write(environment.bytesOf("bin/emacsclient"), "#!/bin/sh\nsleep 600\n");
    QFile(environment.pathOf(QStringLiteral("bin/emacsclient")))
        .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    environment.set("PATH", environment.bytesOf("bin") + ':' + qgetenv("PATH"));
    EmacsEditor stopped;
    const JumpResult result = stopped.jump({"/b.m", 3, 0, false}, QDeadlineTimer(60'000));
    EXPECT_EQ(result.outcome.kind, Kind::asksUser);
    EXPECT_EQ(result.outcome.reason, QStringLiteral("Emacs does not answer."));
}

/// An Emacs that takes connections and says nothing, and then one that does.
class SilentEmacs : public ::testing::Test {
protected:
    /// What the main thread sees of a request: it goes on while the editor is waited for.
    void expectTheMainThreadToGoOn() {
        FollowedEditor editor({std::make_shared<EmacsEditor>()}, nullptr);
        const auto ended = std::make_shared<std::atomic<bool>>(false);
        int turns = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] { turns += ended->load() ? 0 : 1; });
        timer.start(0);
        editor.openFile(QString::fromUtf8(fileB()), 3);
        editor.open(QString::fromUtf8(fileB()), 3, 1, [ended](const EditorOutcome& outcome) {
            EXPECT_EQ(outcome.kind, Kind::asksUser);
            EXPECT_EQ(outcome.reason, QStringLiteral("Emacs does not answer."));
            *ended = true;
        });
        EXPECT_FALSE(*ended) << "it returns at once";
        EXPECT_TRUE(waitUntil([&] { return ended->load(); }));
        EXPECT_GT(turns, 1);
    }
    /// Each call has a limit of its own, and none asks an Emacs that is silent to open
    /// anything.
    void expectCallsToEnd() {
        EmacsEditor emacs;
        const QDeadlineTimer never(QDeadlineTimer::Forever);
        EXPECT_EQ(emacs.jump({fileB(), 3, 0, false}, never).outcome.kind, Kind::asksUser);
        EXPECT_EQ(emacs.jump({fileB(), 3, 0, false}, never).outcome.kind, Kind::asksUser);
        EXPECT_FALSE(emacs.open(fileB(), 3, never));
        EXPECT_FALSE(EmacsEditor().open(fileB(), 3, QDeadlineTimer(1000)));
    }
    QByteArray fileB() const { return environment.bytesOf("work/b.m"); }

    ScratchEnvironment environment;
    LogRecorder log;
};

TEST_F(SilentEmacs, aServerThatNeverAnswersIsWaitedForOnNoMainThread) {
    if (!findTool(QStringLiteral("emacsclient"))) {
        GTEST_SKIP() << "needs emacs";
    }
    const FakeServer server(environment.bytesOf("server"),
                            [](int, const std::atomic<bool>& isEnding) {
                                while (!isEnding) {
                                    ::poll(nullptr, 0, 10);
                                }
                            });
    environment.set("EMACS_SOCKET_NAME", environment.bytesOf("server"));
    expectTheMainThreadToGoOn();
    expectCallsToEnd();
    EXPECT_TRUE(
        log.messages().contains(QStringLiteral("Emacs does not answer: %1 was not opened in it")
                                    .arg(QString::fromUtf8(fileB()))));
}

TEST_F(SilentEmacs, oneThatIsStoppedOpensNothingWhenItGoesOn) {
    if (!findTool(QStringLiteral("emacs"))) {
        GTEST_SKIP() << "needs emacs";
    }
    ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(10));
    QProcess emacs;
    emacs.start(QStringLiteral("emacs"), {QStringLiteral("-Q"), QStringLiteral("--fg-daemon")});
    const auto valueOf = [](const QByteArray& expression) {
        return outputOf(QStringLiteral("emacsclient"),
                        {QStringLiteral("-a"), QStringLiteral("false"), QStringLiteral("--eval"),
                         QString::fromUtf8(expression)});
    };
    ASSERT_TRUE(waitUntil([&] { return valueOf("(+ 1 1)") == "2"; }));
    ASSERT_TRUE(stopProcess(emacs.processId()));
    expectTheMainThreadToGoOn();
    expectCallsToEnd();
    ASSERT_TRUE(continueProcess(emacs.processId()));
    EXPECT_TRUE(waitUntil([&] { return valueOf("(+ 1 1)") == "2"; }));
    EXPECT_EQ(valueOf("(get-file-buffer \"" + fileB() + "\")"), "nil");
    EmacsEditor patient(kSilentEditorLeftAlone, kPatience);
    EXPECT_EQ(patient.jump({fileB(), 3, 2, false}, QDeadlineTimer(kPatience)).outcome.kind,
              Kind::opened);
    emacs.kill();
    emacs.waitForFinished();
}

TEST(LeadAndFollowNeovim, halfACommandIsNotAnsweredForTheUser) {
    ScratchEnvironment environment;
    const FakeNeovim busy(environment.bytesOf("xdg_runtime_dir/nvim.1.0"), "/a.m",
                          FakeNeovim::Mood::WaitsForAKey);
    NeovimEditor editor;
    const JumpResult result = editor.jump({"/b.m", 3, 0, false}, QDeadlineTimer(10'000));
    EXPECT_EQ(result.outcome.kind, Kind::asksUser);
    EXPECT_EQ(result.outcome.reason, QStringLiteral("Neovim waits for a key."));
}

} // namespace
} // namespace navrel
