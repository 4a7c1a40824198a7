// VS Code without the extension: its command, as long as one runs.

#include "editors/CodeCommandEditor.h"
#include "tests/RecordingTool.h"
#include "tests/editors/FakeServer.h"
#include "tests/editors/ScratchEnvironment.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

class CodeCommand : public ::testing::Test {
protected:
    QByteArray socket() const {
        return environment.bytesOf("xdg_runtime_dir/vscode-1a2b3c4d-1.85.1-main.sock");
    }
    static FakeServer::Conversation anything() {
        return [](int, const std::atomic<bool>&) {};
    }
    static Kind jump(const EditorPlace& place) {
        return CodeCommandEditor().jump(place, QDeadlineTimer(60'000)).outcome.kind;
    }

    ScratchEnvironment environment;
    const RecordingTool code{QStringLiteral("code")};
};

TEST_F(CodeCommand, aFileIsShownAtItsLineAndColumn) {
    const FakeServer running(socket(), anything());
    EXPECT_EQ(jump({"/a b/c.m", 42, 0, false}), Kind::opened);
    EXPECT_EQ(jump({"/c.m", 42, 7, false}), Kind::opened);
    EXPECT_EQ(jump({"/c.m", 0, 7, false}), Kind::opened);
    EXPECT_EQ(code.arguments(),
              QByteArrayList({"--goto", "/a b/c.m:42", "--goto", "/c.m:42:7", "--goto", "/c.m"}));
}

TEST_F(CodeCommand, noneIsEverStarted) {
    EXPECT_EQ(jump({"/c.m", 1, 0, false}), Kind::notRunning);
    leaveStaleSocket(socket()); // as after a crash
    EXPECT_EQ(jump({"/c.m", 1, 0, false}), Kind::notRunning);
    EXPECT_EQ(code.arguments(), QByteArrayList());
}

TEST_F(CodeCommand, aColonInThePathIsNotTakenForALine) {
    const FakeServer running(socket(), anything());
    EXPECT_EQ(jump({"/a:3/c.m", 1, 0, false}), Kind::notRunning);
    EXPECT_EQ(code.arguments(), QByteArrayList());
}

} // namespace
} // namespace navrel
