#include "editors/DesktopEditor.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(DesktopEditor, nothingIsActive) {
    DesktopEditor editor;
    EXPECT_EQ(editor.activeProjectPath(), QStringLiteral(""));
    EXPECT_EQ(editor.activeFileName(), QStringLiteral(""));
}

TEST(DesktopEditor, aFileGoesToTheDesktopsOpenerAndTheLineIsIgnored) {
    const RecordingTool opener(QStringLiteral("xdg-open"));
    DesktopEditor().openFile(QStringLiteral("/a b/c.m"), 42);
    ASSERT_TRUE(waitUntil([&] { return !opener.arguments().isEmpty(); }));
    EXPECT_EQ(opener.arguments(), QByteArrayList{"/a b/c.m"});
}

/// What a browser asks for, whose user may not have a say in what this machine runs.
TEST(DesktopEditor, aBrowserOpensOnlyWhatTheDesktopWouldNotRun) {
    const RecordingTool opener(QStringLiteral("xdg-open"));
    const QTemporaryDir folder;
    const auto file = [&folder](const QString& name) {
        QFile made(folder.filePath(name));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        return made.fileName();
    };
    DesktopEditor editor;
    const auto outcomeOf = [&editor](const QString& path) {
        EditorOutcome said;
        editor.open(path, 3, 0, [&said](const EditorOutcome& outcome) { said = outcome; });
        return said;
    };
    const QString tool = file(QStringLiteral("tool.sh"));
    ASSERT_TRUE(QFile::setPermissions(tool, QFile::ReadOwner | QFile::ExeOwner));
    for (const QString& path : {tool, file(QStringLiteral("entry.desktop")), folder.path(),
                                folder.filePath(QStringLiteral("missing.m"))}) {
        const EditorOutcome outcome = outcomeOf(path);
        EXPECT_FALSE(outcome.isOpen()) << qPrintable(path);
        EXPECT_EQ(outcome.reason,
                  QStringLiteral("No editor answers, and the desktop might run this file."));
    }
    const QString source = file(QStringLiteral("View.m"));
    EXPECT_TRUE(outcomeOf(source).isOpen());
    ASSERT_TRUE(waitUntil([&] { return !opener.arguments().isEmpty(); }));
    EXPECT_EQ(opener.arguments(), QByteArrayList{QFile::encodeName(source)});
}

} // namespace
} // namespace navrel
