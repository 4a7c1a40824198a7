// Names that would mean something to a shell, a command line or an editor: opened exactly, by every
// editor, with nothing executed.

#include "editors/DesktopEditor.h"
#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "editors/xcode/XcodeEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QProcess>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace navrel {
namespace {

/// File names; each that was executed, by whatever takes it for a command, would leave a file
/// "executed" in the folder of the process or of the editor.
constexpr std::array kNames = {
    "plain.m",
    "two words.m",
    "'single'.m",
    "\"double\".m",
    "back\\slash.m",
    "back\\\\\"both\\\".m",
    "$(touch executed).m",
    "`touch executed`.m",
    "; touch executed;.m",
    "a|call writefile([], 'executed')|.m",
    "a\ncall writefile([], 'executed')\n.m",
    "a\r.m",
    "a\tb\x1B\x07.m",
    "\") (write-region \"\" nil \"executed\") (\".m",
    "%.m",
    "#.m",
    "%:p<.m",
    "#1 <cword>.m",
    "*.m",
    "[a-z]?.m",
    "{a,b}.m",
    "$HOME.m",
    "~.m",
    "~root",
    "-c",
    "--eval=(write-region nil nil 'executed')",
    "+call writefile([], 'executed')",
    "+42",
    "&x;y.m",
    "a%20b.m",
    "ssh:host:x.m",
    "http:",
    "PATH LINE.m",
    "line\u2028separator.m",
    "caf\u00E9 \u65E5\u672C \U0001F600.m",
};

class Paths : public ::testing::Test {
protected:
    Paths() {
        QDir::setCurrent(environment.path());
        for (const char* name : kNames) {
            ScratchEnvironment::write(pathOf(name), ScratchEnvironment::lines(3));
        }
        process.setWorkingDirectory(environment.path());
    }
    ~Paths() override {
        process.kill();
        process.waitForFinished();
        QDir::setCurrent(folderBefore);
    }

    QByteArray pathOf(const char* name) const { return environment.bytesOf("work/") + name; }

    void expectNothingExecuted() const {
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(environment.path().toStdString())) {
            EXPECT_NE(entry.path().filename(), "executed") << entry.path();
        }
    }

    static std::optional<QByteArray> activeFile(RunningEditor& editor) {
        const auto file = editor.activeFile(QDeadlineTimer(std::chrono::seconds(20)));
        return file ? std::optional(file->path) : std::nullopt;
    }

    /// Opens every file and asks which one is then active.
    void expectAllOpened(const std::shared_ptr<RunningEditor>& editor) {
        const auto deadline = [] { return QDeadlineTimer(std::chrono::seconds(20)); };
        ASSERT_TRUE(waitUntil([&] { return activeFile(*editor).has_value(); }));
        for (const char* name : kNames) {
            EXPECT_TRUE(editor->open(pathOf(name), 2, deadline())) << name;
            EXPECT_EQ(activeFile(*editor), pathOf(name)) << name;
        }
        expectNothingExecuted();
    }

    const QString folderBefore = QDir::currentPath();
    ScratchEnvironment environment;
    QProcess process;
};

TEST_F(Paths, neovimOpensEveryNameAsItIs) {
    if (!findTool(QStringLiteral("nvim"))) {
        GTEST_SKIP() << "needs nvim";
    }
    process.start(QStringLiteral("nvim"),
                  {QStringLiteral("--clean"), QStringLiteral("--headless"),
                   QStringLiteral("--listen"),
                   environment.pathOf(QStringLiteral("xdg_runtime_dir/nvim.1.0"))});
    const auto editor = std::make_shared<NeovimEditor>();
    expectAllOpened(editor);

    // Names need not be texts.
    ScratchEnvironment::write(pathOf("\xFF\xC0.m"), "x");
    EXPECT_TRUE(editor->open(pathOf("\xFF\xC0.m"), 1, QDeadlineTimer(20'000)));
    EXPECT_EQ(activeFile(*editor), pathOf("\xFF\xC0.m"));
}

TEST_F(Paths, emacsOpensEveryNameAsItIs) {
    if (!findTool(QStringLiteral("emacs"))) {
        GTEST_SKIP() << "needs emacs";
    }
    process.start(QStringLiteral("emacs"), {QStringLiteral("-Q"), QStringLiteral("--fg-daemon")});
    const auto editor = std::make_shared<EmacsEditor>();
    expectAllOpened(editor);

    ScratchEnvironment::write(pathOf("\xFF\xC0.m"), "x");
    EXPECT_TRUE(editor->open(pathOf("\xFF\xC0.m"), 1, QDeadlineTimer(20'000)));
    EXPECT_EQ(activeFile(*editor), pathOf("\xFF\xC0.m"));
}

TEST_F(Paths, theDesktopsOpenerIsGivenEveryNameAsItIs) {
    const RecordingTool opener(QStringLiteral("xdg-open"));
    DesktopEditor editor;
    QByteArrayList wanted;
    for (const char* name : kNames) {
        editor.openFile(QString::fromUtf8(pathOf(name)), 2);
        wanted.append(pathOf(name));
        ASSERT_TRUE(waitUntil([&] { return opener.arguments() == wanted; })) << name;
    }
    editor.openFile(QStringLiteral("-c"), 2);
    wanted.append(environment.path().toUtf8() + "/-c");
    EXPECT_TRUE(waitUntil([&] { return opener.arguments() == wanted; }));
    expectNothingExecuted();
}

TEST_F(Paths, xcodeIsGivenEveryNameAsItIs) {
    const RecordingTool xed(QStringLiteral("xed"));
    XcodeEditor::Tools tools;
    tools.xed = findTool(QStringLiteral("xed")).value_or(QString());
    XcodeEditor editor(tools);
    QByteArrayList wanted;
    for (const char* name : kNames) {
        editor.openFile(QString::fromUtf8(pathOf(name)), std::nullopt);
        wanted.append(pathOf(name));
        ASSERT_TRUE(waitUntil([&] { return xed.arguments() == wanted; })) << name;
    }
    editor.openFile(QStringLiteral("-c"), std::nullopt);
    wanted.append("./-c");
    EXPECT_TRUE(waitUntil([&] { return xed.arguments() == wanted; }));
    expectNothingExecuted();
}

} // namespace
} // namespace navrel
