// How soon a jump ends at its line, or in a reason, whatever the user is in the middle of: the real
// Neovim, Vim and Emacs in a terminal.
//
// usage: bench_jump_states [EDITOR...]

#include "bench/Ratio.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "tests/editors/EditorInAState.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace navrel::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr double kGoal = 500;
constexpr int kTimes = 3;

struct Subject {
    const char* name;
    EditorInAState::Kind kind;
    const std::vector<EditorState>& states;
    EditorInAState::MakeEditor make; ///< with the limits that users have
};

std::vector<Subject> subjects() {
    return {
        {"Neovim", EditorInAState::Kind::neovim, viStates(),
         [] { return std::make_shared<NeovimEditor>(); }},
        {"Vim", EditorInAState::Kind::vim, viStates(),
         [] { return std::make_shared<HookedEditor>(*HookSocket::standardPath()); }},
        {"Emacs", EditorInAState::Kind::emacs, emacsStates(),
         [] { return std::make_shared<EmacsEditor>(); }},
    };
}

/// The time until the jump has ended, in milliseconds, and how; nothing where the state was not
/// reached.
std::optional<double> measureOnce(const Subject& subject, const EditorState& state,
                                  EditorOutcome& outcome) {
    EditorInAState editor(subject.kind, state);
    if (!editor.start(subject.make) || !editor.enter()) {
        return std::nullopt;
    }
    const auto begin = Clock::now();
    outcome = editor.jump();
    return Milliseconds(Clock::now() - begin).count();
}

/// The longest of some jumps; 0 where there was none.
double measureState(const Subject& subject, const EditorState& state) {
    std::vector<double> times;
    EditorOutcome outcome;
    for (int time = 0; time < kTimes; ++time) {
        if (const auto taken = measureOnce(subject, state, outcome)) {
            times.push_back(*taken);
        }
    }
    if (times.empty()) {
        std::printf("STATE | %s | %s | was not reached\n", subject.name, state.name);
        return 0;
    }
    std::sort(times.begin(), times.end());
    std::printf("STATE | %s | %s | median %.0f ms | longest %.0f ms | %s\n", subject.name,
                state.name, times[times.size() / 2], times.back(),
                outcome.isOpen() ? "at the line" : qPrintable(outcome.reason));
    std::fflush(stdout);
    return times.back();
}

void measure(const Subject& subject) {
    if (!EditorInAState::isAvailable(subject.kind)) {
        std::printf("STATE | %s | needs the editor and tmux\n", subject.name);
        return;
    }
    double longest = 0;
    for (const EditorState& state : subject.states) {
        longest = std::max(longest, measureState(subject, state));
    }
    printRatio(std::string(subject.name) + ": longest jump from any state, in 500 ms",
               longest / kGoal, 1);
}

} // namespace
} // namespace navrel::bench

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    const QStringList named = QCoreApplication::arguments().mid(1);
    for (const auto& subject : navrel::bench::subjects()) {
        if (named.isEmpty() || named.contains(QString::fromUtf8(subject.name))) {
            navrel::bench::measure(subject);
        }
    }
}
