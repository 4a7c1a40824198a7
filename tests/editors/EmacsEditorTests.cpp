// Against the real Emacs: a daemon with a frame in a terminal, or without one. What it did is read
// back by expressions of the tests' own.

#include "editors/emacs/EmacsEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

#include <unistd.h>

namespace navrel {
namespace {

using std::chrono::seconds;

class EmacsEditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!findTool(QStringLiteral("emacs")) || !Terminal::isAvailable()) {
            GTEST_SKIP() << "needs emacs and tmux";
        }
        ScratchEnvironment::write(fileA(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(200));
    }
    ~EmacsEditorTest() override {
        daemon.kill();
        daemon.waitForFinished();
    }

    QByteArray fileA() const { return environment.bytesOf("work/a.m"); }
    QByteArray fileB() const { return environment.bytesOf("work/b.m"); }

    void startDaemon() {
        daemon.start(QStringLiteral("emacs"),
                     {QStringLiteral("-Q"), QStringLiteral("--fg-daemon")});
        ASSERT_TRUE(daemon.waitForStarted());
        ASSERT_TRUE(waitUntil([&] { return valueOf("(+ 1 1)") == "2"; }));
    }
    /// The daemon, and a frame in the terminal that shows a file.
    void start(const QByteArray& file) {
        ASSERT_NO_FATAL_FAILURE(startDaemon());
        ASSERT_TRUE(terminal.start(
            {QStringLiteral("emacsclient"), QStringLiteral("-nw"), QFile::decodeName(file)}));
        ASSERT_TRUE(waitUntil([&] { return shownFile() == quoted(file); }));
    }

    static QByteArray valueOf(const QByteArray& expression) {
        return outputOf(QStringLiteral("emacsclient"),
                        {QStringLiteral("-a"), QStringLiteral("false"), QStringLiteral("--eval"),
                         QString::fromUtf8(expression)});
    }
    /// The value of an expression in the buffer that is shown.
    static QByteArray valueThere(const QByteArray& expression) {
        return valueOf("(with-current-buffer (window-buffer (selected-window)) " + expression +
                       ')');
    }
    static bool waitForValueThere(const QByteArray& expression, const QByteArray& value) {
        return waitUntil([&] { return valueThere(expression) == value; });
    }
    static QByteArray shownFile() { return valueThere("buffer-file-name"); }
    static QByteArray quoted(const QByteArray& text) { return '"' + text + '"'; }

    bool open(const QByteArray& path, std::optional<int> line = std::nullopt) {
        return editor.open(path, line, QDeadlineTimer(seconds(10)));
    }
    static std::optional<QByteArray> activeFileIn(EmacsEditor& asked) {
        const auto file = asked.activeFile(QDeadlineTimer(seconds(10)));
        return file ? std::optional(file->path) : std::nullopt;
    }
    std::optional<QByteArray> activeFile() { return activeFileIn(editor); }

    /// That a file is shown, one line of it as the active region.
    void expectSelected(const QByteArray& file, const QByteArray& text) {
        EXPECT_EQ(shownFile(), quoted(file));
        EXPECT_EQ(valueThere("(buffer-substring-no-properties (region-beginning) (region-end))"),
                  quoted(text));
        EXPECT_EQ(valueThere("mark-active"), "t");
    }

    ScratchEnvironment environment;
    Terminal terminal{environment.pathOf(QStringLiteral("tmux"))};
    QProcess daemon;
    EmacsEditor editor;
    LogRecorder log;
};

TEST_F(EmacsEditorTest, theSelectedWindowsFileIsActive) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_EQ(activeFile(), fileA());
    terminal.type({QStringLiteral("C-x"), QStringLiteral("b"), QStringLiteral("Enter")});
    EXPECT_TRUE(waitUntil([&] { return activeFile() == QByteArray(""); }));
}

TEST_F(EmacsEditorTest, behindTheMinibufferTheFileIsStillActive) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral("M-x")});
    ASSERT_TRUE(terminal.waitForScreen("M-x"));
    ASSERT_TRUE(waitUntil([] { return valueOf("(minibuffer-depth)") == "1"; }));
    EXPECT_EQ(activeFile(), fileA());
    EXPECT_TRUE(open(fileB(), 42));
    EXPECT_EQ(shownFile(), quoted(fileB()));
}

TEST_F(EmacsEditorTest, withoutAnEmacsThereIsNoAnswerAndNoneIsStarted) {
    EXPECT_EQ(activeFile(), std::nullopt);
    EXPECT_FALSE(open(fileB(), 42));
    environment.set("EMACS_SOCKET_NAME", environment.bytesOf("nothing"));
    EXPECT_EQ(activeFile(), std::nullopt);
    EXPECT_FALSE(open(fileB(), 42));
    environment.set("ALTERNATE_EDITOR", "");
    EXPECT_EQ(activeFile(), std::nullopt);
}

TEST_F(EmacsEditorTest, theServerOfTheEnvironmentIsAsked) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    environment.set("EMACS_SOCKET_NAME", environment.bytesOf("xdg_runtime_dir/emacs/server"));
    EXPECT_EQ(activeFile(), fileA());
}

TEST_F(EmacsEditorTest, aTemporaryFolderThatIsSetToNothingIsTheOneOfAll) {
    const QByteArray folder = "/tmp/emacs" + QByteArray::number(::geteuid());
    if (QFileInfo::exists(QString::fromUtf8(folder))) {
        GTEST_SKIP() << folder.constData() << " is there: an Emacs of the user's may be using it";
    }
    environment.unset("XDG_RUNTIME_DIR");
    environment.unset("TMPDIR");
    ASSERT_NO_FATAL_FAILURE(startDaemon());
    environment.set("TMPDIR", "");
    EXPECT_TRUE(waitUntil([&] { return activeFile() == QByteArray(""); }));
    EXPECT_TRUE(open(fileB(), 42));
    EXPECT_EQ(activeFile(), fileB());
    daemon.kill();
    daemon.waitForFinished();
    QDir(QString::fromUtf8(folder)).removeRecursively();
}

TEST_F(EmacsEditorTest, aDaemonWithoutAFrameIsAnEditorToo) {
    ASSERT_NO_FATAL_FAILURE(startDaemon());
    EXPECT_EQ(activeFile(), QByteArray(""));
    EXPECT_TRUE(open(fileB(), 42));
    expectSelected(fileB(), "line 42");
    EXPECT_EQ(activeFile(), fileB());
}

TEST_F(EmacsEditorTest, aFileIsOpenedAndItsLineSelectedAndSeen) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_TRUE(open(fileB(), 142));
    expectSelected(fileB(), "line 142");
    EXPECT_TRUE(terminal.waitForScreen("line 142\n"));
    EXPECT_TRUE(open(fileA()));
    EXPECT_EQ(shownFile(), quoted(fileA()));
    EXPECT_EQ(log.messages(), QStringList());
}

TEST_F(EmacsEditorTest, aLineOutsideTheFileIsTheNearestOne) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_TRUE(open(fileB(), 100'000));
    EXPECT_EQ(valueThere("(line-number-at-pos)"), "201");
    EXPECT_TRUE(open(fileB(), -5));
    EXPECT_EQ(valueThere("(line-number-at-pos)"), "1");
}

TEST_F(EmacsEditorTest, aLineOutsideWhatTheBufferIsNarrowedToIsShown) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    valueThere("(narrow-to-region 1 10)");
    EXPECT_TRUE(open(fileA(), 142));
    expectSelected(fileA(), "line 142");
}

TEST_F(EmacsEditorTest, theWayBackIsOnTheGlobalMarkRing) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral("M-g"), QStringLiteral("g"), QStringLiteral("50"),
                   QStringLiteral("Enter")});
    ASSERT_TRUE(waitForValueThere("(line-number-at-pos (window-point))", "50"));
    EXPECT_TRUE(open(fileB(), 142));
    terminal.type({QStringLiteral("C-x"), QStringLiteral("C-Space")});
    EXPECT_TRUE(waitUntil([&] { return shownFile() == quoted(fileA()); }));
    EXPECT_TRUE(waitForValueThere("(line-number-at-pos (window-point))", "50"));
}

TEST_F(EmacsEditorTest, aJumpIsGoneBackFromAsFromADefinition) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    // A jump does not load it: that would keep the user waiting.
    ASSERT_EQ(valueOf("(require 'xref)"), "xref");
    terminal.type({QStringLiteral("M-g"), QStringLiteral("g"), QStringLiteral("50"),
                   QStringLiteral("Enter")});
    ASSERT_TRUE(waitForValueThere("(line-number-at-pos (window-point))", "50"));
    EmacsEditor patient(kSilentEditorLeftAlone, kPatience);
    EXPECT_TRUE(patient.jump({fileB(), 142, 0, false}, QDeadlineTimer(kPatience)).outcome.isOpen());
    ASSERT_EQ(shownFile(), quoted(fileB()));
    terminal.type({QStringLiteral("M-,")});
    EXPECT_TRUE(waitUntil([&] { return shownFile() == quoted(fileA()); }));
    EXPECT_TRUE(waitForValueThere("(line-number-at-pos (window-point))", "50"));
}

TEST_F(EmacsEditorTest, theWayBackWithinAFileIsOnItsMarkRing) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    terminal.type({QStringLiteral("M-g"), QStringLiteral("g"), QStringLiteral("50"),
                   QStringLiteral("Enter")});
    ASSERT_TRUE(waitForValueThere("(line-number-at-pos (window-point))", "50"));
    EXPECT_TRUE(open(fileA(), 142));
    EXPECT_EQ(valueThere("(line-number-at-pos (car mark-ring))"), "50");
}

TEST_F(EmacsEditorTest, unsavedChangesAreKeptAlsoWhenTheFileChangesOnTheDisk) {
    ASSERT_NO_FATAL_FAILURE(start(fileB()));
    valueThere("(insert \"unsaved \")");
    EXPECT_TRUE(open(fileA(), 1));
    ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(300));

    EXPECT_TRUE(open(fileB(), 1));
    expectSelected(fileB(), "unsaved line 1");
    EXPECT_EQ(valueThere("(buffer-modified-p)"), "t");
    EXPECT_EQ(valueThere("(line-number-at-pos (point-max))"), "201");
}

TEST_F(EmacsEditorTest, aFileThatChangedOnTheDiskIsReadAgainWithoutAPrompt) {
    ASSERT_NO_FATAL_FAILURE(start(fileB()));
    EXPECT_TRUE(open(fileA(), 1));
    ScratchEnvironment::write(fileB(), ScratchEnvironment::lines(300));
    EXPECT_TRUE(open(fileB(), 250));
    expectSelected(fileB(), "line 250");
}

TEST_F(EmacsEditorTest, nothingIsAskedOfThePerson) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    // A big file, local variables that are not safe, a lock of somebody else, a link to a file
    // under version control.
    valueOf("(setq large-file-warning-threshold 10)");
    ScratchEnvironment::write(environment.bytesOf("work/vars.m"),
                              "// -*- eval: (setq navrel-was-here t) -*-\nline 2\n");
    EXPECT_TRUE(open(environment.bytesOf("work/vars.m"), 2));
    expectSelected(environment.bytesOf("work/vars.m"), "line 2");
    EXPECT_EQ(valueOf("(boundp 'navrel-was-here)"), "nil");

    ASSERT_TRUE(QFile::link(QStringLiteral("somebody@elsewhere.1:1"),
                            environment.pathOf(QStringLiteral("work/.#b.m"))));
    EXPECT_TRUE(open(fileB(), 3));
    expectSelected(fileB(), "line 3");

    QDir(environment.path()).mkpath(QStringLiteral("work/repo/.git"));
    ScratchEnvironment::write(environment.bytesOf("work/repo/c.m"), "line 1\n");
    ASSERT_TRUE(QFile::link(environment.pathOf(QStringLiteral("work/repo/c.m")),
                            environment.pathOf(QStringLiteral("work/link.m"))));
    EXPECT_TRUE(open(environment.bytesOf("work/link.m"), 1));
    EXPECT_EQ(valueThere("(buffer-substring-no-properties (region-beginning) (region-end))"),
              "\"line 1\"");
    EXPECT_EQ(log.messages(), QStringList());
}

/// What asks the user in Emacs, each function as it is defined now.
constexpr char kWhatAsks[] = "(mapcar #'symbol-function '(yes-or-no-p y-or-n-p ask-user-about-lock "
                             "ask-user-about-supersession-threat sit-for))";

TEST_F(EmacsEditorTest, whatAsksIsAnsweredWithNoDuringAJumpAndLeftAsItWas) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    valueOf(QByteArray("(setq asking-before ") + kWhatAsks + ')');
    valueOf("(setq answers nil)");
    valueOf("(add-hook 'find-file-hook (lambda () "
            "(push (list (yes-or-no-p \"Sure?\") (y-or-n-p \"Sure?\")) answers)))");
    EXPECT_TRUE(open(fileB(), 3));
    EXPECT_EQ(valueOf("answers"), "((nil nil))");
    EXPECT_EQ(valueOf(QByteArray("(equal asking-before ") + kWhatAsks + ')'), "t");
    EXPECT_EQ(log.messages(), QStringList());
}

TEST_F(EmacsEditorTest, whatAsksIsLeftAsItWasAlsoByAJumpThatIsQuit) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    valueOf("(defalias 'yes-or-no-p (lambda (prompt) (y-or-n-p prompt)))");
    valueOf("(fmakunbound 'ask-user-about-lock)");
    valueOf(QByteArray("(setq asking-before ") + kWhatAsks + ')');
    valueOf("(add-hook 'find-file-hook (lambda () (signal 'quit nil)))");
    open(fileB(), 3);
    EXPECT_EQ(valueOf(QByteArray("(equal asking-before ") + kWhatAsks + ')'), "t");
    EXPECT_EQ(valueOf("(fboundp 'ask-user-about-lock)"), "nil");
}

TEST_F(EmacsEditorTest, aJumpLoadsNoLibrary) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    valueOf("(setq features-before features)");
    EXPECT_TRUE(open(fileB(), 3));
    EXPECT_EQ(activeFile(), fileB());
    EXPECT_EQ(valueOf("(equal features-before features)"), "t")
        << valueOf("(format \"%S\" features)").constData();
}

TEST_F(EmacsEditorTest, aPathThatLooksRemoteIsALocalOne) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    EXPECT_TRUE(open("/ssh:nowhere:/etc/x.m", 1));
    EXPECT_EQ(shownFile(), "\"/:/ssh:nowhere:/etc/x.m\"");
    EXPECT_EQ(activeFile(), QByteArray("/ssh:nowhere:/etc/x.m"));
}

TEST_F(EmacsEditorTest, anEditorThatCannotOpenIsLogged) {
    ASSERT_NO_FATAL_FAILURE(start(fileA()));
    valueOf("(add-hook 'find-file-hook (lambda () (error \"Refused\")))");
    EXPECT_TRUE(open(fileB(), 1));
    ASSERT_EQ(log.messages().size(), 1);
    EXPECT_TRUE(log.messages().front().startsWith(QStringLiteral("Emacs did not open ")));
    EXPECT_TRUE(log.messages().front().endsWith(QStringLiteral("\"Refused\"")));
}

} // namespace
} // namespace navrel
