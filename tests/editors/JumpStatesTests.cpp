// A jump meets an editor in the middle of something. It ends at the line, or in a reason, and what
// the user was doing is not lost: the real Neovim, Vim and Emacs in a terminal.

#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <vector>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

constexpr int kLine = 42;

enum class Ends { atTheLine, inAReason };
/// What lies at the target.
enum class Target { plain, readOnly, openInAnotherEditor };

struct State {
    const char* name;
    const char* keys; ///< separated by blanks, "_" for a blank; names as tmux has them
    const char* sign; ///< a regular expression for the screen that shows the state
    Ends ends = Ends::atTheLine;
    const char* lookKeys = ""; ///< after the jump, to look for what must not be lost
    const char* kept = "";     ///< a regular expression for the screen that shows it
    Target target = Target::plain;
};

std::ostream& operator<<(std::ostream& stream, const State& state) {
    return stream << state.name;
}

constexpr char kBackToA[] = "Escape :b!_a.m Enter";

/// What has been typed of a command stands at the end of the last line, or before the ruler.
constexpr char kPendingD[] = " d( +1,1| *$)";
constexpr char kPendingQuote[] = " \"( +1,1| *$)";

// clang-format off
const std::vector<State> kViStates = {
    {"normal", "", "line 2"},
    {"insert", "ihello", "INSERT", Ends::atTheLine, kBackToA, "hello"},
    {"replace", "Rhello", "REPLACE", Ends::atTheLine, kBackToA, "hello"},
    {"completion", "ohell Enter h C-x C-n", "match|ompletion", Ends::atTheLine, kBackToA, "hell"},
    {"visual", "vj", "VISUAL"},
    {"visualLine", "Vj", "VISUAL LINE"},
    {"visualBlock", "C-v j", "VISUAL BLOCK"},
    {"select", "gh", "SELECT"},
    {"commandLine", ":echo_1234", ":echo 1234", Ends::atTheLine, "Escape : Up", ":echo 1234"},
    {"searchPrompt", "/line_1", "/line 1", Ends::atTheLine, "Escape / Up", "/line 1"},
    {"commandLineWindow", "q:", "Command Line"},
    {"terminal", ":terminal Enter i", "[#$]"},
    {"pressEnterPrompt", ":echo_\"x\\ny\" Enter", "Press ENTER", Ends::inAReason, "", "Press ENTER"},
    {"morePrompt", ":help|set_all Enter", "-- More --", Ends::inAReason, "", "-- More --"},
    {"question", ":call_confirm('Sure?','&Yes\\n&No') Enter", "Sure\\?", Ends::inAReason, "", "Sure\\?"},
    {"substitution", ":%s/line/LINE/gc Enter", "replace with", Ends::inAReason, "", "replace with"},
    {"halfACommand", "d", kPendingD, Ends::inAReason, "", kPendingD},
    {"register", "\"", kPendingQuote, Ends::inAReason, "", kPendingQuote},
    {"recording", "qa", "recording", Ends::atTheLine},
    {"help", ":help Enter", "help.txt", Ends::atTheLine},
    {"unsaved", "ihello Escape", "hello", Ends::atTheLine, kBackToA, "hello"},
    {"readOnly", "", "line 2", Ends::atTheLine, "", "", Target::readOnly},
    {"changedOnDisk", ":e_b.m Enter :e_a.m|call_writefile(['new']+range(99),'b.m') Enter", "a.m",
     Ends::atTheLine, "", "\\n40\\s"},
    {"changedInBothPlaces",
     ":e_b.m Enter 41Gohello Escape :set_hidden|e_a.m|call_writefile(['new']+range(99),'b.m') Enter", "a.m",
     Ends::atTheLine, "", "hello"},
    {"swapFile", "", "line 2", Ends::atTheLine, "", "line 42", Target::openInAnotherEditor},
};

const std::vector<State> kEmacsStates = {
    {"normal", "", "line 2"},
    {"region", "C-Space C-n", "line 2"},
    {"minibuffer", "M-x forward-l", "M-x forward-l", Ends::atTheLine, "", "M-x forward-l"},
    {"search", "C-s line", "I-search"},
    {"queryReplace", "M-% line Enter LINE Enter", "Query replacing", Ends::atTheLine},
    {"question", "M-: (y-or-n-p_\"Sure?\") Enter", "Sure\\?", Ends::atTheLine, "", "Sure\\?"},
    {"halfACommand", "C-x", "line 2"},
    {"count", "C-u", "line 2"},
    {"recording", "C-x (", "Def", Ends::atTheLine},
    {"narrowed", "C-n C-Space C-n C-n C-x n n", "Narrow|disabled", Ends::atTheLine},
    {"help", "C-h t", "Emacs tutorial", Ends::atTheLine},
    {"directory", "C-x d Enter", "Dired", Ends::atTheLine},
    {"listing", "C-x C-b", "Buffer List", Ends::atTheLine},
    {"splitWindow", "C-x 2", "line 2", Ends::atTheLine},
    {"terminal", "M-x shell Enter", "shell\\*", Ends::atTheLine},
    {"recursiveEdit", "M-x recursive-edit Enter", "\\[\\(", Ends::atTheLine, "", ""},
    {"unsaved", "hello", "hello", Ends::atTheLine, "C-x b a.m Enter", "hello"},
    {"unsavedInTheWay", "hello", "\\*\\*-", Ends::atTheLine, "C-x b a.m Enter", "hello"},
    {"readOnly", "", "line 2", Ends::atTheLine, "", "", Target::readOnly},
    {"changedOnDisk", "C-x C-f b.m Enter C-x b Enter M-! seq_100_>_b.m Enter", "a.m", Ends::atTheLine, "", "\\n42\\s"},
    {"changedInBothPlaces", "C-x C-f b.m Enter M-g g 42 Enter hello C-x b Enter M-! seq_100_>_b.m Enter", "a.m",
     Ends::atTheLine, "", "hello"},
    {"lockedFile", "", "line 2", Ends::atTheLine, "", "line 42", Target::openInAnotherEditor},
};
// clang-format on

/// A jump from a state in one editor. What differs between the editors is in the classes below.
class JumpFrom : public ::testing::TestWithParam<State> {
protected:
    /// `command` without the file; must be called before anything else.
    void begin(const QString& tool, std::shared_ptr<RunningEditor> running,
               const QStringList& command) {
        if (!findTool(tool) || !Terminal::isAvailable()) {
            GTEST_SKIP() << "needs " << tool.toStdString() << " and tmux";
        }
        ScratchEnvironment::write(fileA().toUtf8(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB().toUtf8(), ScratchEnvironment::lines(200));
        prepareTarget(command);
        editor = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{std::move(running)}, nullptr);
        editor->onMove([this](const EditorPosition& position) { last = position; });
        ASSERT_TRUE(terminal.start(inFolder(command, fileA())));
        ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 1); }));
    }
    ~JumpFrom() override {
        if (editor != nullptr) {
            editor->onMove(nullptr);
        }
    }

    void prepareTarget(const QStringList& command) {
        if (GetParam().target == Target::readOnly) {
            QFile(fileB()).setPermissions(QFile::ReadOwner);
        }
        if (GetParam().target == Target::openInAnotherEditor) {
            ASSERT_TRUE(other.start(inFolder(withoutServer(command), fileB())));
            ASSERT_TRUE(other.waitForScreen("line 2"));
            typeIn(other, "ihello");
            ASSERT_TRUE(other.waitForScreen("hello"));
        }
    }
    /// One that neither listens nor connects.
    static QStringList withoutServer(const QStringList& command) { return command.mid(0, 2); }
    QStringList inFolder(const QStringList& command, const QString& file) const {
        return QStringList{QStringLiteral("env"), QStringLiteral("-C"),
                           environment.pathOf(QStringLiteral("work"))} +
               command + QStringList{file};
    }

    static void typeIn(const Terminal& typed, const char* keys) {
        for (const QString& key :
             QString::fromUtf8(keys).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            typed.type({QString(key).replace(QLatin1Char('_'), QLatin1Char(' '))});
        }
    }
    bool shows(const char* pattern) const {
        const QRegularExpression expression(QString::fromUtf8(pattern));
        return waitUntil(
            [&] { return expression.match(QString::fromUtf8(terminal.screen())).hasMatch(); });
    }
    bool isAt(const QString& file, int line) const {
        return last && last->path == file && last->line == line;
    }
    EditorOutcome jump() {
        struct Shared {
            std::mutex mutex;
            std::optional<EditorOutcome> outcome;
        };
        const auto shared = std::make_shared<Shared>();
        editor->open(fileB(), kLine, 0, [shared](const EditorOutcome& outcome) {
            const std::lock_guard lock(shared->mutex);
            shared->outcome = outcome;
        });
        const auto outcome = [&] {
            const std::lock_guard lock(shared->mutex);
            return shared->outcome;
        };
        EXPECT_TRUE(waitUntil([&] { return outcome().has_value(); }));
        return outcome().value_or(EditorOutcome());
    }

    void expectTheLineOrAReason() {
        const State& state = GetParam();
        typeIn(terminal, state.keys);
        ASSERT_TRUE(shows(state.sign)) << terminal.screen().constData();
        const EditorOutcome outcome = jump();
        if (state.ends == Ends::atTheLine) {
            EXPECT_EQ(outcome.kind, Kind::opened) << outcome.reason.toStdString();
            EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), kLine); }))
                << terminal.screen().constData();
        } else {
            EXPECT_TRUE(outcome.kind == Kind::asksUser || outcome.kind == Kind::refused);
            EXPECT_FALSE(outcome.reason.isEmpty());
            EXPECT_FALSE(outcome.hint.isEmpty());
        }
        typeIn(terminal, state.lookKeys);
        EXPECT_TRUE(shows(state.kept)) << terminal.screen().constData();
    }

    QString fileA() const { return environment.pathOf(QStringLiteral("work/a.m")); }
    QString fileB() const { return environment.pathOf(QStringLiteral("work/b.m")); }

    ScratchEnvironment environment;
    Terminal terminal{environment.pathOf(QStringLiteral("tmux"))};
    Terminal other{environment.pathOf(QStringLiteral("tmux-2"))};
    std::unique_ptr<FollowedEditor> editor;
    std::optional<EditorPosition> last;
};

class NeovimJumpFrom : public JumpFrom {
protected:
    void SetUp() override {
        begin(QStringLiteral("nvim"),
              std::make_shared<NeovimEditor>(kSilentEditorLeftAlone, kPatience),
              {QStringLiteral("nvim"), QStringLiteral("--clean"), QStringLiteral("--listen"),
               environment.pathOf(QStringLiteral("xdg_runtime_dir/nvim.1.0"))});
    }
};

class VimJumpFrom : public JumpFrom {
protected:
    void SetUp() override {
        begin(QStringLiteral("vim"),
              std::make_shared<HookedEditor>(*HookSocket::standardPath(), kPatience),
              {QStringLiteral("vim"), QStringLiteral("--clean"), QStringLiteral("-S"),
               QStringLiteral(NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim")});
    }
};

class EmacsJumpFrom : public JumpFrom {
protected:
    void SetUp() override {
        begin(QStringLiteral("emacs"),
              std::make_shared<EmacsEditor>(kSilentEditorLeftAlone, kPatience),
              {QStringLiteral("emacs"), QStringLiteral("-Q"), QStringLiteral("-nw"),
               QStringLiteral("--eval"), QStringLiteral("(server-start)")});
    }
};

const auto kNameOf = [](const auto& instance) { return std::string(instance.param.name); };

INSTANTIATE_TEST_SUITE_P(States, NeovimJumpFrom, ::testing::ValuesIn(kViStates), kNameOf);
INSTANTIATE_TEST_SUITE_P(States, VimJumpFrom, ::testing::ValuesIn(kViStates), kNameOf);
INSTANTIATE_TEST_SUITE_P(States, EmacsJumpFrom, ::testing::ValuesIn(kEmacsStates), kNameOf);

TEST_P(NeovimJumpFrom, aStateItEndsAtTheLineOrInAReason) {
    expectTheLineOrAReason();
}
TEST_P(VimJumpFrom, aStateItEndsAtTheLineOrInAReason) {
    expectTheLineOrAReason();
}
TEST_P(EmacsJumpFrom, aStateItEndsAtTheLineOrInAReason) {
    expectTheLineOrAReason();
}

} // namespace
} // namespace navrel
