// Against the real Neovim, in a terminal or without one; what it did is read back through its own
// command line, which shares nothing with what is tested.

#include "editors/neovim/NeovimEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using std::chrono::seconds;

const QString kNeovim = QStringLiteral("nvim");

class NeovimEditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!findTool(kNeovim) || !Terminal::isAvailable()) {
            GTEST_SKIP() << "needs nvim and tmux";
        }
        ScratchEnvironment::write(fileA(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(200));
    }

    QByteArray fileA() const { return environment.bytesOf("work/a.m"); }
    QByteArray fileB() const { return environment.bytesOf("work/b.m"); }
    QString socketNamed(const char* name) const {
        return environment.pathOf(
            QStringLiteral("xdg_runtime_dir/nvim.%1.0").arg(QString::fromUtf8(name)));
    }

    /// The swap files of everything that is edited here.
    QStringList swapFiles() const {
        QStringList found;
        QDirIterator files(environment.path(), {QStringLiteral("*.sw?")},
                           QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            found.append(files.next());
        }
        return found;
    }

    /// Starts a Neovim in the terminal, on a file.
    void start(const QByteArray& file, const QStringList& options = {}) {
        ASSERT_TRUE(terminal.start(
            QStringList{kNeovim, QStringLiteral("--clean"), QStringLiteral("--listen"), socket} +
            options + QStringList{QFile::decodeName(file)}));
        ASSERT_TRUE(waitForValue("v:vim_did_enter", "1"));
    }

    /// The value of an expression in the editor.
    QByteArray valueOf(const char* expression) const {
        // It prints on standard error.
        return outputOf(QStringLiteral("sh"),
                        {QStringLiteral("-c"), QStringLiteral("exec \"$@\" 2>&1"),
                         QStringLiteral("sh"), kNeovim, QStringLiteral("--clean"),
                         QStringLiteral("--headless"), QStringLiteral("--server"), socket,
                         QStringLiteral("--remote-expr"), QString::fromUtf8(expression)});
    }
    bool waitForValue(const char* expression, const QByteArray& value) const {
        return waitUntil([&] { return valueOf(expression) == value; });
    }

    bool open(const QByteArray& path, std::optional<int> line = std::nullopt) {
        return editor.open(path, line, QDeadlineTimer(seconds(10)));
    }
    static std::optional<QByteArray> activeFileIn(NeovimEditor& asked) {
        const auto file = asked.activeFile(QDeadlineTimer(seconds(10)));
        return file ? std::optional(file->path) : std::nullopt;
    }
    std::optional<QByteArray> activeFile() { return activeFileIn(editor); }

    /// That a file is open in the current window, one line of it selected line-wise and in view.
    void expectSelected(const QByteArray& file, int line) {
        const QByteArray number = QByteArray::number(line);
        EXPECT_EQ(valueOf("expand('%:p')"), file);
        EXPECT_EQ(valueOf("mode()"), "V");
        EXPECT_EQ(valueOf("line('v')"), number);
        EXPECT_EQ(valueOf("line('.')"), number);
        EXPECT_EQ(valueOf("line('.') >= line('w0') && line('.') <= line('w$')"), "1");
    }

    ScratchEnvironment environment;
    QString socket = socketNamed("1");
    Terminal terminal{environment.pathOf(QStringLiteral("tmux"))};
    NeovimEditor editor;
    LogRecorder log;
};

TEST_F(NeovimEditorTest, theCurrentBuffersFileIsActive) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_EQ(activeFile(), fileA());
    terminal.type({QStringLiteral(":edit "), QFile::decodeName(fileB()), QStringLiteral("Enter")});
    EXPECT_TRUE(waitUntil([&] { return activeFile() == fileB(); }));
}

TEST_F(NeovimEditorTest, withoutAFileNothingIsActive) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral(":enew"), QStringLiteral("Enter")});
    EXPECT_TRUE(waitUntil([&] { return activeFile() == QByteArray(""); }));
    terminal.type({QStringLiteral(":help"), QStringLiteral("Enter")});
    ASSERT_TRUE(waitForValue("&buftype", "help"));
    EXPECT_EQ(activeFile(), QByteArray(""));
}

TEST_F(NeovimEditorTest, behindACommandLineWindowTheFileIsStillActive) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral("q:")});
    ASSERT_TRUE(waitForValue("getcmdwintype()", ":"));
    EXPECT_EQ(activeFile(), fileA());
}

TEST_F(NeovimEditorTest, withoutANeovimThereIsNoAnswer) {
    EXPECT_EQ(activeFile(), std::nullopt);
    EXPECT_FALSE(open(fileB(), 42));
}

TEST_F(NeovimEditorTest, aFileIsOpenedWithoutALine) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_TRUE(open(fileB()));
    EXPECT_EQ(valueOf("expand('%:p')"), fileB());
    EXPECT_EQ(valueOf("mode()"), "n");
    EXPECT_EQ(valueOf("&buflisted"), "1");
    EXPECT_EQ(log.messages(), QStringList());
}

TEST_F(NeovimEditorTest, aJumpWithoutALineSaysThatItWentWell) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    const JumpResult result = editor.jump({fileB(), 0, 0, false}, QDeadlineTimer(seconds(10)));
    EXPECT_EQ(result.outcome.kind, EditorOutcome::Kind::opened)
        << qUtf8Printable(result.outcome.reason);
    EXPECT_EQ(valueOf("expand('%:p')"), fileB());
}

/// Where the user may be when a file is to be opened: the keys that lead there, and how to tell
/// that they did.
struct NeovimState {
    const char* name;
    QStringList keys;
    const char* expression;
    QByteArray value;
};

void PrintTo(const NeovimState& state, std::ostream* stream) {
    *stream << state.name;
}

class NeovimStates : public NeovimEditorTest, public ::testing::WithParamInterface<NeovimState> {};

TEST_P(NeovimStates, aFileIsOpenedAndItsLineSelectedAndSeen) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type(GetParam().keys);
    ASSERT_TRUE(waitForValue(GetParam().expression, GetParam().value));

    EXPECT_TRUE(open(fileB(), 142));

    expectSelected(fileB(), 142);
    EXPECT_EQ(log.messages(), QStringList());
    EXPECT_TRUE(terminal.waitForScreen("line 142\n"));
    EXPECT_TRUE(terminal.waitForScreen("VISUAL LINE"));
    // Another one from there, as a second tap does.
    EXPECT_TRUE(open(fileA(), 7));
    expectSelected(fileA(), 7);
}

INSTANTIATE_TEST_SUITE_P(
    , NeovimStates,
    ::testing::Values(
        NeovimState{"normal", {QStringLiteral("2j")}, "line('.')", "3"},
        NeovimState{"insert", {QStringLiteral("ihello")}, "mode()", "i"},
        NeovimState{"replace", {QStringLiteral("R")}, "mode()", "R"},
        NeovimState{"visual", {QStringLiteral("v3j")}, "mode()", "v"},
        NeovimState{"select", {QStringLiteral("gh")}, "mode()", "s"},
        NeovimState{"commandLine", {QStringLiteral(":echo 1")}, "mode()", "c"},
        NeovimState{"search", {QStringLiteral("/line")}, "mode()", "c"},
        NeovimState{"commandLineWindow", {QStringLiteral("q:")}, "getcmdwintype()", ":"},
        NeovimState{"insertInACommandLineWindow", {QStringLiteral("q:i")}, "mode()", "i"},
        NeovimState{"operatorPending", {QStringLiteral("d")}, "mode(1)", "no"},
        NeovimState{"terminal",
                    {QStringLiteral(":terminal"), QStringLiteral("Enter"), QStringLiteral("i")},
                    "mode()",
                    "t"},
        NeovimState{"terminalNormal",
                    {QStringLiteral(":terminal"), QStringLiteral("Enter")},
                    "mode(1)",
                    "nt"},
        NeovimState{"help", {QStringLiteral(":help"), QStringLiteral("Enter")}, "&buftype", "help"},
        NeovimState{"quickfix",
                    {QStringLiteral(":copen"), QStringLiteral("Enter")},
                    "&buftype",
                    "quickfix"}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(NeovimEditorTest, aLineOutsideTheFileIsTheNearestOne) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_TRUE(open(fileB(), 100'000));
    expectSelected(fileB(), 200);
    EXPECT_TRUE(open(fileB(), -5));
    expectSelected(fileB(), 1);
}

TEST_F(NeovimEditorTest, aFoldedLineIsInView) {
    ASSERT_NO_FATAL_FAILURE(start(fileA(), {QStringLiteral("+10,190fold")}));
    EXPECT_TRUE(open(fileA(), 100));
    expectSelected(fileA(), 100);
    EXPECT_EQ(valueOf("foldclosed(100)"), "-1");
    EXPECT_TRUE(terminal.waitForScreen("line 100\n"));
}

TEST_F(NeovimEditorTest, theWayBackIsInTheJumpList) {
    ASSERT_NO_FATAL_FAILURE(start(fileA(), {QStringLiteral("+50")}));
    EXPECT_TRUE(open(fileB(), 142));
    terminal.type({QStringLiteral("Escape"), QStringLiteral("C-o")});
    EXPECT_TRUE(waitForValue("expand('%:p') . line('.')", fileA() + "50"));
}

TEST_F(NeovimEditorTest, theWayBackWithinAFileIsInTheJumpList) {
    ASSERT_NO_FATAL_FAILURE(start(fileA(), {QStringLiteral("+50")}));
    EXPECT_TRUE(open(fileA(), 142));
    terminal.type({QStringLiteral("Escape"), QStringLiteral("C-o")});
    EXPECT_TRUE(waitForValue("line('.')", "50"));
}

TEST_F(NeovimEditorTest, unsavedChangesAreKept) {
    for (const char* option : {"hidden", "nohidden"}) {
        Terminal ownTerminal(environment.pathOf(QString::fromUtf8(option)));
        socket = socketNamed(option);
        ASSERT_TRUE(ownTerminal.start({kNeovim, QStringLiteral("--clean"), QStringLiteral("-n"),
                                       QStringLiteral("--listen"), socket,
                                       QStringLiteral("+set ") + QString::fromUtf8(option),
                                       QFile::decodeName(fileA())}));
        ASSERT_TRUE(waitForValue("v:vim_did_enter", "1"));
        ownTerminal.type({QStringLiteral("iunsaved "), QStringLiteral("Escape")});
        ASSERT_TRUE(waitForValue("&modified . mode()", "1n"));

        EXPECT_TRUE(open(fileB(), 3));
        expectSelected(fileB(), 3);
        EXPECT_TRUE(open(fileA(), 1));
        expectSelected(fileA(), 1);
        EXPECT_EQ(valueOf("getline(1)"), "unsaved line 1");
        EXPECT_EQ(valueOf("&modified"), "1");
    }
    EXPECT_EQ(ScratchEnvironment::read(fileA()), ScratchEnvironment::lines(200));
}

TEST_F(NeovimEditorTest, changesInABufferThatIsWipedWhenHiddenAreKept) {
    ASSERT_NO_FATAL_FAILURE(start(fileA(), {QStringLiteral("+set bufhidden=wipe")}));
    terminal.type({QStringLiteral("iunsaved "), QStringLiteral("Escape")});
    ASSERT_TRUE(waitForValue("&modified . mode()", "1n"));

    EXPECT_TRUE(open(fileB(), 3));
    expectSelected(fileB(), 3);
    EXPECT_EQ(valueOf("join(getbufline(1, 1))"), "unsaved line 1");
}

TEST_F(NeovimEditorTest, aFileThatAnotherNeovimHasOpenIsShownForReading) {
    Terminal other(environment.pathOf(QStringLiteral("tmux2")));
    ASSERT_TRUE(other.start({kNeovim, QStringLiteral("--clean"), QFile::decodeName(fileB())}));
    ASSERT_TRUE(other.waitForScreen("line 1\n"));
    other.type({QStringLiteral("ichanged "), QStringLiteral("Escape"), QStringLiteral(":preserve"),
                QStringLiteral("Enter")});
    ASSERT_TRUE(other.waitForScreen("File preserved"));
    ASSERT_NO_FATAL_FAILURE(start(fileA()));

    EXPECT_TRUE(open(fileB(), 9));
    expectSelected(fileB(), 9);
    EXPECT_EQ(valueOf("&readonly"), "1");
    EXPECT_TRUE(terminal.waitForScreen("line 9\n")) << "no prompt hides it";
}

TEST_F(NeovimEditorTest, theSwapFileOfACrashIsNoPromptAndStays) {
    {
        QProcess crashing;
        crashing.start(kNeovim,
                       {QStringLiteral("--clean"), QStringLiteral("--headless"),
                        QStringLiteral("--listen"), socketNamed("crash"), QStringLiteral("-c"),
                        QStringLiteral("normal ix"), QStringLiteral("-c"),
                        QStringLiteral("preserve"), QFile::decodeName(fileB())});
        ASSERT_TRUE(crashing.waitForStarted());
        ASSERT_TRUE(waitUntil([&] { return swapFiles().size() == 1; }));
        crashing.kill();
        crashing.waitForFinished();
    }
    ASSERT_NO_FATAL_FAILURE(start(fileA()));

    EXPECT_TRUE(open(fileB(), 9));
    expectSelected(fileB(), 9);
    EXPECT_EQ(valueOf("&readonly"), "0");
    EXPECT_GE(swapFiles().size(), 1);
}

TEST_F(NeovimEditorTest, aFileThatChangedOnTheDiskIsReadAgainWithoutAPrompt) {
    ASSERT_NO_FATAL_FAILURE(start(fileA(), {QStringLiteral("+set noautoread")}));
    EXPECT_TRUE(open(fileB(), 1));
    EXPECT_TRUE(open(fileA(), 1));
    ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(300));

    EXPECT_TRUE(open(fileB(), 250));
    expectSelected(fileB(), 250);
}

TEST_F(NeovimEditorTest, unsavedChangesSurviveAChangeOnTheDiskWithoutAPrompt) {
    ASSERT_NO_FATAL_FAILURE(start(fileB()));
    terminal.type({QStringLiteral("iunsaved "), QStringLiteral("Escape")});
    ASSERT_TRUE(waitForValue("&modified . mode()", "1n"));
    EXPECT_TRUE(open(fileA(), 1));
    ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(300));

    EXPECT_TRUE(open(fileB(), 50));
    expectSelected(fileB(), 50);
    EXPECT_EQ(valueOf("getline(1)"), "unsaved line 1");
    EXPECT_EQ(valueOf("&modified"), "1");
}

TEST_F(NeovimEditorTest, anEditorThatWaitsForAKeyIsNoAnswer) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral("\"")}); // and now the name of a register
    ASSERT_TRUE(waitUntil([] {
        NeovimEditor fresh; // which has had no answer yet
        return !activeFileIn(fresh).has_value();
    }));
    EXPECT_FALSE(open(fileB(), 3));

    terminal.type({QStringLiteral("Escape")});
    NeovimEditor fresh;
    EXPECT_TRUE(waitUntil([&] { return activeFileIn(fresh) == fileA(); }))
        << "it is asked again at once";
}

TEST_F(NeovimEditorTest, anEditorBehindAPromptIsNoAnswer) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral(":echo \"a\\nb\\nc\""), QStringLiteral("Enter")});
    ASSERT_TRUE(terminal.waitForScreen("Press ENTER"));
    EXPECT_EQ(activeFile(), std::nullopt);
    EXPECT_FALSE(open(fileB(), 3));
}

TEST_F(NeovimEditorTest, anEditorThatStaysInItsModeIsToldOf) {
    ASSERT_NO_FATAL_FAILURE(
        start(fileA(), {QStringLiteral("+autocmd ModeChanged *:n call feedkeys('i', 'n')")}));
    terminal.type({QStringLiteral("i")});
    ASSERT_TRUE(waitForValue("mode()", "i"));
    // On a busy machine it may end on its way from one mode to the other, and say that instead.
    EXPECT_TRUE(waitUntil([&] {
        EXPECT_TRUE(editor.open(fileB(), 3, QDeadlineTimer(seconds(2))));
        const QStringList messages = log.take();
        EXPECT_EQ(messages.size(), 1);
        return messages.last().endsWith(QStringLiteral(": it stays in its mode"));
    }));
}

TEST_F(NeovimEditorTest, aFileThatIsNotThereIsABufferOfItsName) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    const QByteArray missing = environment.bytesOf("work/no such.m");
    EXPECT_TRUE(open(missing, 3));
    EXPECT_EQ(valueOf("expand('%:p')"), missing);
}

TEST_F(NeovimEditorTest, theNewestServerIsAskedFirstAndTheNextOneInItsPlace) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    Terminal second(environment.pathOf(QStringLiteral("tmux2")));
    ASSERT_TRUE(second.start({kNeovim, QStringLiteral("--clean"), QStringLiteral("--listen"),
                              socketNamed("2"), QFile::decodeName(fileB())}));
    EXPECT_TRUE(waitUntil([&] { return activeFile() == fileB(); }));
    // What it said last stands for a while, and then the other one's turn has come.
    NeovimEditor impatient(std::chrono::milliseconds(300));
    ASSERT_EQ(activeFileIn(impatient), fileB());
    second.type({QStringLiteral("\"")});
    EXPECT_TRUE(waitUntil([&] { return activeFileIn(impatient) == fileA(); }));
    EXPECT_EQ(activeFile(), fileB());
}

TEST_F(NeovimEditorTest, theServerOfTheEnvironmentIsAskedFirst) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    Terminal second(environment.pathOf(QStringLiteral("tmux2")));
    ASSERT_TRUE(second.start({kNeovim, QStringLiteral("--clean"), QStringLiteral("--listen"),
                              socketNamed("2"), QFile::decodeName(fileB())}));
    ASSERT_TRUE(waitUntil([&] { return activeFile() == fileB(); }));
    for (const char* variable : {"NVIM", "NVIM_LISTEN_ADDRESS"}) {
        environment.set(variable, socket.toUtf8());
        EXPECT_EQ(activeFile(), fileA()) << variable;
        environment.unset(variable);
    }
}

TEST_F(NeovimEditorTest, aServerInTheTemporaryFolderIsFound) {
    for (const char* folder : {"tmpdir/nvimAbC", "tmpdir/nvim.%/XyZ"}) {
        const QString user =
            QString::fromUtf8(outputOf(QStringLiteral("id"), {QStringLiteral("-un")}));
        const QString place =
            environment.pathOf(QString::fromUtf8(folder).replace(QLatin1Char('%'), user));
        QDir().mkpath(place);
        const bool isOld = !place.contains(user);
        Terminal ownTerminal(
            environment.pathOf(QStringLiteral("tmux") + QFileInfo(place).fileName()));
        ASSERT_TRUE(
            ownTerminal.start({kNeovim, QStringLiteral("--clean"), QStringLiteral("--listen"),
                               place + (isOld ? QStringLiteral("/0") : QStringLiteral("/nvim.7.0")),
                               QFile::decodeName(isOld ? fileA() : fileB())}));
        EXPECT_TRUE(waitUntil([&] { return activeFile() == (isOld ? fileA() : fileB()); }))
            << folder;
    }
}

} // namespace
} // namespace navrel
