#include "editors/DesktopEditor.h"
#include "tests/RecordingTool.h"
#include "tests/WaitUntil.h"

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

} // namespace
} // namespace navrel
