#include "tests/editors/EditorStates.h"

namespace navrel {

namespace {

using End = EditorState::End;
using Target = EditorState::Target;

constexpr char kBackToA[] = "Escape :b!_a.m Enter";

/// What has been typed of a command stands at the end of the last line, or before the ruler.
constexpr char kPendingD[] = " d( +1,1| *$)";
constexpr char kPendingQuote[] = " \"( +1,1| *$)";

// clang-format off
const std::vector<EditorState> kViStates = {
    {"normal", "", "line 2"},
    {"insert", "ihello", "INSERT", End::atTheLine, kBackToA, "hello"},
    {"replace", "Rhello", "REPLACE", End::atTheLine, kBackToA, "hello"},
    {"completion", "ohell Enter h C-x C-n", "match|ompletion", End::atTheLine, kBackToA, "hell"},
    {"visual", "vj", "VISUAL"},
    {"visualLine", "Vj", "VISUAL LINE"},
    {"visualBlock", "C-v j", "VISUAL BLOCK"},
    {"select", "gh", "SELECT"},
    {"commandLine", ":echo_1234", ":echo 1234", End::atTheLine, "Escape : Up", ":echo 1234"},
    {"searchPrompt", "/line_1", "/line 1", End::atTheLine, "Escape / Up", "/line 1"},
    {"commandLineWindow", "q:", "Command Line"},
    {"terminal", ":terminal Enter i", "[#$]"},
    {"pressEnterPrompt", ":echo_\"x\\ny\" Enter", "Press ENTER", End::inAReason, "", "Press ENTER"},
    {"morePrompt", ":help|set_all Enter", "-- More --", End::inAReason, "", "-- More --"},
    {"question", ":call_confirm('Sure?','&Yes\\n&No') Enter", "Sure\\?", End::inAReason, "", "Sure\\?"},
    {"substitution", ":%s/line/LINE/gc Enter", "replace with", End::inAReason, "", "replace with"},
    {"halfACommand", "d", kPendingD, End::inAReason, "", kPendingD},
    {"register", "\"", kPendingQuote, End::inAReason, "", kPendingQuote},
    {"recording", "qa", "recording", End::atTheLine},
    {"help", ":help Enter", "help.txt", End::atTheLine},
    {"unsaved", "ihello Escape", "hello", End::atTheLine, kBackToA, "hello"},
    {"readOnly", "", "line 2", End::atTheLine, "", "", Target::readOnly},
    {"changedOnDisk", ":e_b.m Enter :e_a.m|call_writefile(['new']+range(99),'b.m') Enter", "a.m",
     End::atTheLine, "", "\\n40\\s"},
    {"changedInBothPlaces",
     ":e_b.m Enter 41Gohello Escape :set_hidden|e_a.m|call_writefile(['new']+range(99),'b.m') Enter", "a.m",
     End::atTheLine, "", "hello"},
    {"swapFile", "", "line 2", End::atTheLine, "", "line 42", Target::openInAnotherEditor},
};

const std::vector<EditorState> kEmacsStates = {
    {"normal", "", "line 2"},
    {"region", "C-Space C-n", "line 2"},
    {"minibuffer", "M-x forward-l", "M-x forward-l", End::atTheLine, "", "M-x forward-l"},
    {"search", "C-s line", "I-search"},
    {"queryReplace", "M-% line Enter LINE Enter", "Query replacing", End::atTheLine},
    {"question", "M-: (y-or-n-p_\"Sure?\") Enter", "Sure\\?", End::atTheLine, "", "Sure\\?"},
    {"halfACommand", "C-x", "line 2"},
    {"count", "C-u", "line 2"},
    {"recording", "C-x (", "Def", End::atTheLine},
    {"narrowed", "C-n C-Space C-n C-n C-x n n", "Narrow|disabled", End::atTheLine},
    {"help", "C-h t", "Emacs tutorial", End::atTheLine},
    {"directory", "C-x d Enter", "Dired", End::atTheLine},
    {"listing", "C-x C-b", "Buffer List", End::atTheLine},
    {"splitWindow", "C-x 2", "line 2", End::atTheLine},
    {"terminal", "M-x shell Enter", "shell\\*", End::atTheLine},
    {"recursiveEdit", "M-x recursive-edit Enter", "\\[\\(", End::atTheLine, "", ""},
    {"unsaved", "hello", "hello", End::atTheLine, "C-x b a.m Enter", "hello"},
    {"unsavedInTheWay", "hello", "\\*\\*-", End::atTheLine, "C-x b a.m Enter", "hello"},
    {"readOnly", "", "line 2", End::atTheLine, "", "", Target::readOnly},
    {"changedOnDisk", "C-x C-f b.m Enter C-x b Enter M-! seq_100_>_b.m Enter", "a.m", End::atTheLine, "", "\\n42\\s"},
    {"changedInBothPlaces", "C-x C-f b.m Enter M-g g 42 Enter hello C-x b Enter M-! seq_100_>_b.m Enter", "a.m",
     End::atTheLine, "", "hello"},
    {"lockedFile", "", "line 2", End::atTheLine, "", "line 42", Target::openInAnotherEditor},
};
// clang-format on

} // namespace

std::ostream& operator<<(std::ostream& stream, const EditorState& state) {
    return stream << state.name;
}

const std::vector<EditorState>& viStates() {
    return kViStates;
}

const std::vector<EditorState>& emacsStates() {
    return kEmacsStates;
}

} // namespace navrel
