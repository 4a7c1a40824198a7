// Editors that are led and followed: the real Neovim and Emacs in a terminal. Keys move the cursor,
// and what the editor was led to is read from its screen.

#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"
#include "tests/editors/FakeServer.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

class LeadAndFollow : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        const QString tool = isNeovim() ? QStringLiteral("nvim") : QStringLiteral("emacs");
        if (!findTool(tool) || !Terminal::isAvailable()) {
            GTEST_SKIP() << "needs " << tool.toStdString() << " and tmux";
        }
        ScratchEnvironment::write(fileA().toUtf8(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB().toUtf8(), ScratchEnvironment::lines(200));
        if (isNeovim()) {
            ASSERT_TRUE(terminal.start({QStringLiteral("nvim"), QStringLiteral("--clean"),
                                        QStringLiteral("--listen"), neovimSocket(), fileA()}));
        } else {
            ASSERT_TRUE(terminal.start({QStringLiteral("emacs"), QStringLiteral("-Q"),
                                        QStringLiteral("-nw"), QStringLiteral("--eval"),
                                        QStringLiteral("(server-start)"), fileA()}));
        }
        ASSERT_TRUE(terminal.waitForScreen("line 2"));
    }
    ~LeadAndFollow() override { editor.onMove(nullptr); }

    static bool isNeovim() { return QByteArray(GetParam()) == "Neovim"; }
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
    void moveDown() { terminal.type({isNeovim() ? QStringLiteral("j") : QStringLiteral("C-n")}); }

    template <typename Request>
    EditorOutcome outcomeOf(Request request) {
        struct Shared {
            std::mutex mutex;
            std::optional<EditorOutcome> outcome;
        };
        const auto shared = std::make_shared<Shared>();
        request([shared](const EditorOutcome& outcome) {
            const std::lock_guard lock(shared->mutex);
            shared->outcome = outcome;
        });
        EXPECT_TRUE(waitUntil([&] {
            const std::lock_guard lock(shared->mutex);
            return shared->outcome.has_value();
        }));
        const std::lock_guard lock(shared->mutex);
        return shared->outcome.value_or(EditorOutcome());
    }
    EditorOutcome open(const QString& file, int line) {
        return outcomeOf(
            [&](const Editor::OutcomeObserver& done) { editor.open(file, line, done); });
    }
    EditorOutcome back() {
        return outcomeOf([&](const Editor::OutcomeObserver& done) { editor.back(done); });
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
    FollowedEditor editor{
        {isNeovim() ? std::shared_ptr<RunningEditor>(
                          std::make_shared<NeovimEditor>(kSilentEditorLeftAlone, kPatience))
                    : std::make_shared<EmacsEditor>(kSilentEditorLeftAlone, kPatience)},
        nullptr};
    std::optional<EditorPosition> last;
};

INSTANTIATE_TEST_SUITE_P(Editors, LeadAndFollow, ::testing::Values("Neovim", "Emacs"),
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
    terminal.type(isNeovim() ? QStringList{QStringLiteral("x")}
                             : QStringList{QStringLiteral("C-d")});
    EXPECT_TRUE(waitUntil([&] { return last->isModified; }));
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
    terminal.type({isNeovim() ? QStringLiteral("l") : QStringLiteral("C-f")});
    ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 3) && last->column == 2; }));

    EXPECT_EQ(open(fileB(), 42).kind, Kind::opened);
    EXPECT_EQ(open(fileB(), 90).kind, Kind::opened);
    ASSERT_TRUE(waitUntil([&] { return isAt(fileB(), 90); }));
    EXPECT_EQ(back().kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 42); }));
    // The file may have been closed meanwhile.
    valueOf(isNeovim() ? QStringLiteral("execute('bwipeout ' .. bufnr('a.m'))")
                       : QStringLiteral("(kill-buffer \"a.m\")"));
    EXPECT_EQ(back().kind, Kind::opened);
    EXPECT_TRUE(waitUntil([&] { return isAt(fileA(), 3) && last->column == 2; }));
    EXPECT_EQ(back().kind, Kind::refused) << "that was the first place";
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
    terminal.type(isNeovim() ? QStringList{QStringLiteral("Escape"), QStringLiteral(":qa!"),
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
    EXPECT_EQ(result.kind, Kind::asksUser);
    EXPECT_EQ(result.reason, QStringLiteral("Emacs did not answer in time."));
}

TEST(LeadAndFollowNeovim, halfACommandIsNotAnsweredForTheUser) {
    ScratchEnvironment environment;
    const FakeNeovim busy(environment.bytesOf("xdg_runtime_dir/nvim.1.0"), "/a.m",
                          FakeNeovim::Mood::WaitsForAKey);
    NeovimEditor editor;
    const JumpResult result = editor.jump({"/b.m", 3, 0, false}, QDeadlineTimer(10'000));
    EXPECT_EQ(result.kind, Kind::asksUser);
    EXPECT_EQ(result.reason, QStringLiteral("Neovim waits for a key."));
}

} // namespace
} // namespace navrel
