// How soon a client knows where the user is, and how soon the user is where a client points: the
// real Neovim, Emacs and Vim, 200 moves by keys and 200 jumps each.
//
// usage: bench_editors [EDITOR...]

#include "bench/editors/EditorTerminal.h"
#include "bench/editors/Latencies.h"
#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace navrel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMoves = 200;
constexpr int kLines = 400;
/// Editors report at most ten moves a second; Emacs is asked twice. A user's keys come at no
/// particular time.
constexpr std::chrono::milliseconds kShortestPause{120};
constexpr int kPauseSpread = 97;

struct Subject {
    QStringList command;
    std::function<std::shared_ptr<RunningEditor>()> editor;
    QByteArray down; ///< keys that move to the next line
    QByteArray up;
    QByteArray leave; ///< keys that end a selection
};

/// A file whose lines differ from each other everywhere and have no syntax, so that each is drawn
/// in one piece.
QByteArray lineText(int line) {
    return QByteArray::number(line * 7919 % 9973) + "-row" + QByteArray::number(line);
}

void writeFile(const QByteArray& path) {
    QByteArray text;
    for (int line = 1; line <= kLines; ++line) {
        text += lineText(line) + '\n';
    }
    ScratchEnvironment::write(path, text);
}

class Measurement {
public:
    Measurement(QString name, const Subject& subject)
        : name_(std::move(name)), subject_(subject), file_(environment_.bytesOf("work/a.txt")),
          other_(environment_.bytesOf("work/b.txt")) {
        writeFile(file_);
        writeFile(other_);
        editor_ = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{subject.editor()}, nullptr);
        QStringList command = subject.command;
        command.replaceInStrings(QStringLiteral("RUNTIME"),
                                 environment_.pathOf(QStringLiteral("xdg_runtime_dir")));
        terminal_ = std::make_unique<EditorTerminal>(command << QString::fromUtf8(file_));
        editor_->onMove([this](const EditorPosition& position) {
            position_ = position;
            moved_ = Clock::now();
        });
    }

    bool isReady() {
        return waitUntil([&] { return position_.path.toUtf8() == file_ && position_.line == 1; },
                         std::chrono::seconds(30));
    }

    void measureMoves() {
        std::vector<double> latencies;
        int missed = 0;
        for (int move = 0; move < kMoves; ++move) {
            pauseFor(kShortestPause + std::chrono::milliseconds(move * 31 % kPauseSpread));
            const bool isDown = move / 20 % 2 == 0;
            const int wanted = position_.line + (isDown ? 1 : -1);
            const auto begin = Clock::now();
            terminal_->type(isDown ? subject_.down : subject_.up);
            if (waitUntil([&] { return position_.line == wanted; }, std::chrono::seconds(3))) {
                latencies.push_back(Milliseconds(moved_ - begin).count());
            } else {
                ++missed;
            }
        }
        reportLatencies(name_, "key to client", latencies, 100);
        reportMissed(missed);
    }

    void measureJumps() {
        std::vector<double> answers;
        std::vector<double> screens;
        int missed = 0;
        for (int jump = 0; jump < kMoves; ++jump) {
            terminal_->type(subject_.leave);
            pauseFor(kShortestPause);
            terminal_->forgetOutput();
            const int line = 30 + jump * 101 % (kLines - 60);
            const auto kind = std::make_shared<std::atomic<int>>(-1);
            const auto begin = Clock::now();
            editor_->open(
                QString::fromUtf8(jump % 2 == 0 ? other_ : file_), line, 0,
                [kind](const EditorOutcome& outcome) { *kind = static_cast<int>(outcome.kind); });
            waitUntil([&] { return *kind >= 0; });
            const double answer = Milliseconds(Clock::now() - begin).count();
            // The cell under the cursor is drawn in another colour than the selection.
            const QByteArray drawn = lineText(line).mid(1);
            const bool isDrawn =
                waitUntil([&] { return terminal_->hasDrawn(drawn); }, std::chrono::seconds(1));
            const double screen = Milliseconds(Clock::now() - begin).count();
            if (*kind != static_cast<int>(EditorOutcome::Kind::opened)) {
                ++missed;
                continue;
            }
            answers.push_back(answer);
            if (isDrawn) {
                screens.push_back(screen);
            }
        }
        reportLatencies(name_, "tap to answer", answers, 0);
        reportLatencies(name_, "tap to screen", screens, 100);
        reportMissed(missed);
    }

private:
    void reportMissed(int missed) const {
        if (missed > 0) {
            std::printf("LATENCY | %s | %d of %d missed\n", qPrintable(name_), missed, kMoves);
        }
    }

    const QString name_;
    const Subject subject_;
    ScratchEnvironment environment_;
    const QByteArray file_;
    const QByteArray other_;
    std::unique_ptr<FollowedEditor> editor_;
    std::unique_ptr<EditorTerminal> terminal_;
    EditorPosition position_;
    Clock::time_point moved_;
};

std::map<QString, Subject> subjects() {
    const auto words = [](const char* text) {
        return QString::fromUtf8(text).split(QLatin1Char(' '));
    };
    return {
        {QStringLiteral("Neovim"),
         {words("nvim --clean --listen RUNTIME/nvim.1.0"),
          [] { return std::make_shared<NeovimEditor>(); }, "j", "k", "\x1B"}},
        {QStringLiteral("Emacs"),
         {words("emacs -Q -nw --eval (server-start)"),
          [] { return std::make_shared<EmacsEditor>(); }, "\x0E", "\x10", "\x07"}},
        {QStringLiteral("Vim"),
         {words("vim --clean -S " NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim"),
          [] { return std::make_shared<HookedEditor>(*HookSocket::standardPath()); }, "j", "k",
          "\x1B"}},
    };
}

/// What other benchmarks take as options means nothing here.
const QRegularExpression kName(QStringLiteral("^[^-]"));

int measure(const QStringList& names) {
    int status = 0;
    const auto all = subjects();
    const QStringList every = {QStringLiteral("Neovim"), QStringLiteral("Emacs"),
                               QStringLiteral("Vim")};
    for (const QString& name : names.isEmpty() ? every : names) {
        const auto found = all.find(name);
        if (found == all.end()) {
            std::fprintf(stderr, "There is no %s here\n", qPrintable(name));
            return 2;
        }
        Measurement measurement(name, found->second);
        if (!measurement.isReady()) {
            std::printf("LATENCY | %s | did not come up\n", qPrintable(name));
            status = 1;
            continue;
        }
        measurement.measureMoves();
        measurement.measureJumps();
    }
    return status;
}

} // namespace
} // namespace navrel::bench

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    using namespace navrel::bench;
    return measure(QCoreApplication::arguments().mid(1).filter(kName));
}
