#include "editors/xcode/XcodeEditor.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

using std::chrono::milliseconds;

constexpr char kActiveFileScript[] = "        set appName to \"Xcode\"\n"
                                     "        if application appName is running then\n"
                                     "        delay 0.1\n"
                                     "        with timeout of 0.5 seconds\n"
                                     "        tell application id (id of application appName)\n"
                                     "        return name of first window\n"
                                     "        end tell\n"
                                     "        end timeout\n"
                                     "        end if\n";

constexpr char kActiveProjectScript[] = "        set appName to \"Xcode\"\n"
                                        "        if application appName is running then\n"
                                        "        delay 0.1\n"
                                        "        with timeout of 0.5 seconds\n"
                                        "        tell application \"Xcode\"\n"
                                        "        return path of active workspace document\n"
                                        "        end tell\n"
                                        "        end timeout\n"
                                        "        end if\n";

QByteArray jumpScript(const QByteArray& line) {
    return "        delay 0.1\n"
           "        tell application \"Xcode\"\n"
           "        set activeFile to name of first window\n"
           "        tell document named activeFile\n"
           "        set selected paragraph range to {" +
           line + ", " + line +
           "}\n"
           "        delay 0.1\n"
           "        tell application \"System Events\"\n"
           "        keystroke \"l\" using {command down, shift down}\n"
           "        end tell\n"
           "        end tell\n"
           "        end tell\n";
}

/// Stand-ins for both tools, which record their arguments; what `osascript` does beside that is a
/// test's.
class XcodeEditorTest : public ::testing::Test {
protected:
    XcodeEditorTest() {
        // NUL ends an argument, two end a call: bytes that no argument can hold. A call is
        // recorded as a whole, since calls run at the same time.
        const QByteArray record = "#!/bin/sh\n"
                                  "{ printf '%s\\0' \"$@\"; printf '\\0'; } >\"$0.$$.part\"\n"
                                  "mv \"$0.$$.part\" \"$0.$$.call\"\n";
        tools.osascript = environment.pathOf(QStringLiteral("osascript"));
        tools.xed = environment.pathOf(QStringLiteral("xed"));
        writeTool(tools.osascript, record + ". \"$0.answer\"\n");
        writeTool(tools.xed, record + "echo what it prints is dropped\n");
        answerWith(":");
    }

    static void writeTool(const QString& path, const QByteArray& text) {
        ScratchEnvironment::write(path.toUtf8(), text);
        QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// What the stand-in for `osascript` does, as a line of shell.
    void answerWith(const QByteArray& command) const {
        environment.write(tools.osascript.toUtf8() + ".answer", command + '\n');
    }

    /// The calls of a tool so far, each with its arguments, in no certain order.
    QList<QByteArrayList> callsOf(const QString& tool) const {
        QList<QByteArrayList> calls;
        const QString name = tool.mid(tool.lastIndexOf(QLatin1Char('/')) + 1);
        const QDir folder(environment.path());
        for (const QString& call : folder.entryList({name + QStringLiteral(".*.call")})) {
            QByteArrayList arguments =
                ScratchEnvironment::read(folder.filePath(call).toUtf8()).split('\0');
            arguments.resize(arguments.size() - 2);
            calls.append(arguments);
        }
        return calls;
    }

    bool waitForCalls(const QString& tool, qsizetype count) const {
        return waitUntil([&] { return callsOf(tool).size() == count; });
    }

    ScratchEnvironment environment;
    XcodeEditor::Tools tools;
};

TEST_F(XcodeEditorTest, theActiveFileIsAskedForWithItsScript) {
    answerWith("echo main.m");
    EXPECT_EQ(XcodeEditor(tools).activeFileName(), QStringLiteral("main.m"));
    EXPECT_EQ(callsOf(tools.osascript), QList<QByteArrayList>({{"-e", kActiveFileScript}}));
}

TEST_F(XcodeEditorTest, theActiveProjectIsAskedForWithItsScript) {
    answerWith("echo /a/App.xcodeproj/project.xcworkspace");
    EXPECT_EQ(XcodeEditor(tools).activeProjectPath(), QStringLiteral("/a/App.xcodeproj"));
    EXPECT_EQ(callsOf(tools.osascript), QList<QByteArrayList>({{"-e", kActiveProjectScript}}));
}

TEST_F(XcodeEditorTest, everyLineFeedIsRemoved) {
    answerWith("printf '\\n/a b/A\\n.xcodeproj/x.xcworkspace\\n\\n'");
    EXPECT_EQ(XcodeEditor(tools).activeProjectPath(), QStringLiteral("/a b/A.xcodeproj"));
    answerWith("printf ' main\\n.m \\n'");
    EXPECT_EQ(XcodeEditor(tools).activeFileName(), QStringLiteral(" main.m "));
}

TEST_F(XcodeEditorTest, whatIsAnsweredIsAnsweredWhateverTheExitStatus) {
    answerWith("echo main.m; exit 1");
    EXPECT_EQ(XcodeEditor(tools).activeFileName(), QStringLiteral("main.m"));
}

TEST_F(XcodeEditorTest, anEmptyAnswerIsNoProjectAndNoFileButAnAnswer) {
    EXPECT_EQ(XcodeEditor(tools).activeProjectPath(), QStringLiteral(""));
    EXPECT_EQ(XcodeEditor(tools).activeFileName(), QStringLiteral(""));
}

TEST_F(XcodeEditorTest, anAnswerWithoutAFolderIsNoProject) {
    answerWith("echo App.xcodeproj");
    EXPECT_EQ(XcodeEditor(tools).activeProjectPath(), QStringLiteral(""));
}

TEST_F(XcodeEditorTest, aMissingToolCannotBeAsked) {
    tools.osascript = QStringLiteral("/nonexistent/osascript");
    EXPECT_EQ(XcodeEditor(tools).activeProjectPath(), std::nullopt);
    EXPECT_EQ(XcodeEditor(tools).activeFileName(), std::nullopt);
}

TEST_F(XcodeEditorTest, anAnswerThatIsNoTextCannotBeRead) {
    answerWith("printf '/a/\\377/b'");
    EXPECT_EQ(XcodeEditor(tools).activeProjectPath(), std::nullopt);
}

TEST_F(XcodeEditorTest, aSlowAnswerIsWaitedFor) {
    answerWith("sleep 0.7; echo main.m");
    EXPECT_EQ(XcodeEditor(tools).activeFileName(), QStringLiteral("main.m"));
}

TEST_F(XcodeEditorTest, aToolThatHangsIsNotWaitedForAndThenLeftAlone) {
    answerWith("exec sleep 1000");
    tools.queryAtMost = milliseconds(200);
    XcodeEditor editor(tools);
    EXPECT_EQ(editor.activeFileName(), std::nullopt);

    answerWith("echo main.m");
    EXPECT_EQ(editor.activeFileName(), std::nullopt);
    EXPECT_EQ(callsOf(tools.osascript).size(), 1) << "asked again";
}

TEST_F(XcodeEditorTest, whileAToolIsSlowTheLastAnswerStandsAndItsOwnIsTakenLater) {
    const QString gate = environment.pathOf(QStringLiteral("gate"));
    answerWith("echo first.m");
    tools.queryAtMost = milliseconds(1000);
    XcodeEditor editor(tools);
    ASSERT_TRUE(waitUntil([&] { return editor.activeFileName() == QStringLiteral("first.m"); }));

    answerWith("while [ ! -e '" + gate.toUtf8() + "' ]; do sleep 0.05; done; echo late.m");
    EXPECT_EQ(editor.activeFileName(), QStringLiteral("first.m"));
    EXPECT_EQ(editor.activeFileName(), QStringLiteral("first.m"));
    answerWith("echo newest.m");
    environment.write(gate.toUtf8(), "");
    EXPECT_TRUE(waitUntil([&] { return editor.activeFileName() == QStringLiteral("late.m"); }));
    EXPECT_TRUE(waitUntil([&] { return editor.activeFileName() == QStringLiteral("newest.m"); }));
}

TEST_F(XcodeEditorTest, aSlowFileLeavesTheProjectItsAnswer) {
    answerWith("case \"$2\" in *'name of first window'*) exec sleep 1000 ;; esac; echo /a/b.x/c");
    tools.queryAtMost = milliseconds(1000);
    XcodeEditor editor(tools);
    EXPECT_EQ(editor.activeFileName(), std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return editor.activeProjectPath() == QStringLiteral("/a/b.x"); }));
}

TEST_F(XcodeEditorTest, aToolThatHangsIsEndedAndAskedAgain) {
    answerWith("exec sleep 1000");
    tools.queryAtMost = milliseconds(200);
    tools.questionEndedAfter = milliseconds(400);
    XcodeEditor editor(tools);
    EXPECT_EQ(editor.activeFileName(), std::nullopt);

    answerWith("echo main.m");
    EXPECT_TRUE(waitUntil([&] { return editor.activeFileName() == QStringLiteral("main.m"); }));
}

TEST_F(XcodeEditorTest, openingGivesThePathAlone) {
    XcodeEditor(tools).openFile(QStringLiteral("/a b/main.m"), std::nullopt);
    ASSERT_TRUE(waitForCalls(tools.xed, 1));
    EXPECT_EQ(callsOf(tools.xed), QList<QByteArrayList>({{"/a b/main.m"}}));
    EXPECT_EQ(callsOf(tools.osascript).size(), 0) << "a script without a line";
}

TEST_F(XcodeEditorTest, openingAtALineRunsTheJumpScriptToo) {
    for (const int line : {42, 0, -3, 2147483647, -2147483647 - 1}) {
        XcodeEditor(tools).openFile(QStringLiteral("/main.m"), line);
        const QByteArrayList wanted = {"-e", jumpScript(QByteArray::number(line))};
        EXPECT_TRUE(waitUntil([&] { return callsOf(tools.osascript).contains(wanted); })) << line;
    }
    EXPECT_TRUE(waitForCalls(tools.xed, 5));
}

TEST_F(XcodeEditorTest, aLineWithoutAFileRunsTheJumpScriptAlone) {
    XcodeEditor(tools).selectLine(42);
    ASSERT_TRUE(waitForCalls(tools.osascript, 1));
    EXPECT_EQ(callsOf(tools.osascript), QList<QByteArrayList>({{"-e", jumpScript("42")}}));
    EXPECT_TRUE(callsOf(tools.xed).isEmpty());
}

TEST_F(XcodeEditorTest, anEmptyPathIsLeftToTheTools) {
    XcodeEditor(tools).openFile(QStringLiteral(""), 42);
    ASSERT_TRUE(waitForCalls(tools.xed, 1));
    EXPECT_EQ(callsOf(tools.xed), QList<QByteArrayList>({{""}}));
    EXPECT_TRUE(waitForCalls(tools.osascript, 1));
}

TEST_F(XcodeEditorTest, openingWaitsForNeitherTool) {
    answerWith("while [ ! -e \"$0.end\" ]; do sleep 0.05; done; : >\"$0.ended\"");
    XcodeEditor(tools).openFile(QStringLiteral("/main.m"), 1);

    // Both run while the first one has not come to its end.
    EXPECT_TRUE(waitForCalls(tools.osascript, 1));
    EXPECT_TRUE(waitForCalls(tools.xed, 1));
    EXPECT_FALSE(QFile::exists(tools.osascript + QStringLiteral(".ended")));
    environment.write(tools.osascript.toUtf8() + ".end", "");
    EXPECT_TRUE(
        waitUntil([&] { return QFile::exists(tools.osascript + QStringLiteral(".ended")); }));
}

TEST_F(XcodeEditorTest, aMissingToolKeepsTheOtherFromNothing) {
    XcodeEditor::Tools withoutScripts = tools;
    withoutScripts.osascript = QStringLiteral("/nonexistent/osascript");
    XcodeEditor(withoutScripts).openFile(QStringLiteral("/one.m"), 1);
    EXPECT_TRUE(
        waitUntil([&] { return callsOf(tools.xed) == QList<QByteArrayList>({{"/one.m"}}); }));

    XcodeEditor::Tools withoutOpener = tools;
    withoutOpener.xed = QStringLiteral("/nonexistent/xed");
    XcodeEditor(withoutOpener).openFile(QStringLiteral("/two.m"), 2);
    const QList<QByteArrayList> wanted = {{"-e", jumpScript("2")}};
    EXPECT_TRUE(waitUntil([&] { return callsOf(tools.osascript) == wanted; }));
    EXPECT_EQ(callsOf(tools.xed).size(), 1);
}

TEST_F(XcodeEditorTest, missingToolsDoNotUseUpTheirNumber) {
    LogRecorder log;
    XcodeEditor::Tools missing = tools;
    missing.osascript = missing.xed = QStringLiteral("/nonexistent/tool");
    XcodeEditor editor(missing);
    for (int i = 0; i < XcodeEditor::kMaximumRunningTools; ++i) {
        EXPECT_TRUE(waitUntil([&] {
            editor.openFile(QStringLiteral("/main.m"), 1);
            return log.take().isEmpty();
        }));
    }
    EXPECT_EQ(editor.activeFileName(), std::nullopt);
}

TEST_F(XcodeEditorTest, aDeviceThatAsksWithoutEndFillsNoMachine) {
    const QByteArray gate = environment.bytesOf("gate");
    ASSERT_EQ(::mkfifo(gate.constData(), 0600), 0);
    writeTool(tools.xed, "#!/bin/sh\nexec timeout 60 sh -c \": <'" + gate + "'\"\n");
    LogRecorder log;
    XcodeEditor editor(tools);
    for (int i = 0; i < XcodeEditor::kMaximumRunningTools - 1; ++i) {
        editor.openFile(QStringLiteral("/main.m"), std::nullopt);
    }
    EXPECT_EQ(log.messages(), QStringList());
    editor.openFile(QStringLiteral("/main.m"), 1);
    EXPECT_EQ(log.take().size(), 1) << "there is room for one of the two tools, but not for both";
    editor.openFile(QStringLiteral("/main.m"), std::nullopt);
    EXPECT_EQ(log.messages(), QStringList());

    const int end = ::open(gate.constData(), O_RDWR | O_CLOEXEC);
    EXPECT_TRUE(waitUntil([&] {
        editor.openFile(QStringLiteral("/main.m"), 2);
        return log.take().isEmpty();
    })) << "and then it opens files as ever";
    EXPECT_TRUE(waitForCalls(tools.osascript, 1));
    ::close(end);
}

TEST_F(XcodeEditorTest, aPathThatNamesNoFileOpensNothingAndSelectsNoLine) {
    XcodeEditor editor(tools);
    editor.openFile(QStringLiteral("/etc/passwd") + QChar(u'\0') + QStringLiteral(".m"), 3);
    editor.openFile(QStringLiteral("/a") + QChar(u'\xD83D') + QStringLiteral(".m"), 3);
    editor.openFile(QStringLiteral("/main.m"), std::nullopt);
    ASSERT_TRUE(waitForCalls(tools.xed, 1));
    EXPECT_EQ(callsOf(tools.xed), QList<QByteArrayList>({{"/main.m"}}));
    EXPECT_TRUE(callsOf(tools.osascript).isEmpty());
}

} // namespace
} // namespace navrel
