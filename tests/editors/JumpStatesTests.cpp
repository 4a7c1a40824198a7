// A jump meets an editor in the middle of something. It ends at the line, or in a reason, and what
// the user was doing is not lost: the real Neovim, Vim and Emacs in a terminal.

#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "tests/WaitUntil.h"
#include "tests/editors/EditorInAState.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

class JumpFrom : public ::testing::TestWithParam<EditorState> {
protected:
    static void expectTheLineOrAReason(EditorInAState::Kind kind,
                                       const EditorInAState::MakeEditor& make) {
        if (!EditorInAState::isAvailable(kind)) {
            GTEST_SKIP() << "needs the editor and tmux";
        }
        EditorInAState editor(kind, GetParam());
        ASSERT_TRUE(editor.start(make));
        ASSERT_TRUE(editor.enter()) << editor.screen().constData();
        const EditorOutcome outcome = editor.jump();
        if (GetParam().end == EditorState::End::atTheLine) {
            EXPECT_EQ(outcome.kind, Kind::opened) << outcome.reason.toStdString();
            EXPECT_TRUE(editor.waitUntilAtTheLine()) << editor.screen().constData();
        } else {
            EXPECT_TRUE(outcome.kind == Kind::asksUser || outcome.kind == Kind::refused);
            EXPECT_FALSE(outcome.reason.isEmpty());
            EXPECT_FALSE(outcome.hint.isEmpty());
        }
        EXPECT_TRUE(editor.showsWhatWasKept()) << editor.screen().constData();
    }
};

class NeovimJumpFrom : public JumpFrom {};
class VimJumpFrom : public JumpFrom {};
class EmacsJumpFrom : public JumpFrom {};

const auto kNameOf = [](const auto& instance) { return std::string(instance.param.name); };

INSTANTIATE_TEST_SUITE_P(States, NeovimJumpFrom, ::testing::ValuesIn(viStates()), kNameOf);
INSTANTIATE_TEST_SUITE_P(States, VimJumpFrom, ::testing::ValuesIn(viStates()), kNameOf);
INSTANTIATE_TEST_SUITE_P(States, EmacsJumpFrom, ::testing::ValuesIn(emacsStates()), kNameOf);

TEST_P(NeovimJumpFrom, aStateItEndsAtTheLineOrInAReason) {
    expectTheLineOrAReason(EditorInAState::Kind::neovim, [] {
        return std::make_shared<NeovimEditor>(kSilentEditorLeftAlone, kPatience);
    });
}
TEST_P(VimJumpFrom, aStateItEndsAtTheLineOrInAReason) {
    expectTheLineOrAReason(EditorInAState::Kind::vim, [] {
        return std::make_shared<HookedEditor>(*HookSocket::standardPath(), kPatience);
    });
}
TEST_P(EmacsJumpFrom, aStateItEndsAtTheLineOrInAReason) {
    expectTheLineOrAReason(EditorInAState::Kind::emacs, [] {
        return std::make_shared<EmacsEditor>(kSilentEditorLeftAlone, kPatience);
    });
}

} // namespace
} // namespace navrel
