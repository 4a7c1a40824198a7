// How soon a client knows which file Kate shows, and how soon Kate answers a jump: the real one on
// an X server of its own, 200 changes of file by keys and 200 jumps; or how soon a jump ends
// whatever its user is in the middle of. Kate does not say where its cursor is.
//
// usage: bench_kate [--states]

#include "bench/Ratio.h"
#include "bench/editors/Latencies.h"
#include "editors/FollowedEditor.h"
#include "editors/kate/KateEditor.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDir>
#include <QProcess>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

namespace navrel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMoves = 200;
/// More of them mean that the keys do not arrive.
constexpr int kMostMissed = 10;
constexpr int kLines = 400;
/// Kate is asked twice a second; a user's keys come at no particular time.
constexpr std::chrono::milliseconds kShortestPause{120};
constexpr int kPauseSpread = 97;
constexpr std::chrono::seconds kStartAtMost{60};
/// It is on the bus before its window is drawn.
constexpr std::chrono::seconds kUntilItTakesKeys{5};

/// What a user may be in the middle of, and the keys that lead there.
struct State {
    enum class Change {
        None,
        Text,       ///< the keys type into the file that is shown, which is not saved
        FileOnDisk, ///< another program writes the file that the jump leads to
    };

    const char* name;
    std::vector<const char*> keys;
    Change change = Change::None;
};
using Change = State::Change;

// clang-format off
const std::vector<State> kStates = {
    {"normal", {}},
    {"selection", {"shift+Down", "shift+Down"}},
    {"unsaved", {"h", "e", "l", "l", "o"}, Change::Text},
    {"completion", {"l", "i", "ctrl+space"}, Change::Text},
    {"find", {"ctrl+f", "l"}},
    {"replace", {"ctrl+r"}},
    {"goToLine", {"ctrl+g"}},
    {"commandLine", {"F7", "h"}},
    {"quickOpen", {"ctrl+alt+o"}},
    {"menu", {"alt+f"}},
    {"openDialog", {"ctrl+o"}},
    {"question", {"h", "ctrl+w"}, Change::Text},
    {"halfACommand", {"ctrl+alt+v", "d"}},
    {"changedOnDisk", {}, Change::FileOnDisk},
    {"viInsert", {"ctrl+alt+v", "i"}},
    {"viVisual", {"ctrl+alt+v", "v", "Down"}},
    {"viCommandLine", {"ctrl+alt+v", "colon", "s"}},
    {"blockSelection", {"ctrl+shift+b", "shift+Down", "shift+Right"}},
    {"saveAs", {"ctrl+shift+s"}},
    {"print", {"ctrl+p"}},
};
// clang-format on
constexpr int kTimes = 3;
constexpr double kGoal = 500;

/// A process that ends with this object. Its first line is what it offers.
class Server {
public:
    Server(const QString& program, const QStringList& arguments) {
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(program, arguments);
    }
    ~Server() {
        process_.terminate();
        process_.waitForFinished();
    }
    QString firstLine() {
        waitUntil([this] { return process_.canReadLine(); }, kStartAtMost);
        return QString::fromUtf8(process_.readLine()).trimmed();
    }

private:
    QProcess process_;
};

class Kate {
public:
    Kate() {
        environment_.set("DISPLAY", ':' + display_.firstLine().toUtf8());
        const QString busAddress = bus_.firstLine();
        environment_.set("DBUS_SESSION_BUS_ADDRESS", busAddress.toUtf8());
        environment_.set("QT_QPA_PLATFORM", "xcb");
        for (const QString& file : {first(), second()}) {
            ScratchEnvironment::write(file.toUtf8(), ScratchEnvironment::lines(kLines));
        }
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(QStringLiteral("kate"), {QStringLiteral("-n"), first(), second()});
        editor_ = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{std::make_shared<KateEditor>(
                QDBusConnection::connectToBus(busAddress, busAddress))},
            nullptr);
        editor_->onMove([this](const EditorPosition& position) {
            shown_ = position.path;
            isModified_ = position.isModified;
            moved_ = Clock::now();
        });
    }
    ~Kate() {
        editor_ = nullptr;
        process_.kill();
        process_.waitForFinished();
    }

    bool isReady() {
        if (!waitUntil([this] { return shown_ == second(); }, kStartAtMost)) {
            return false;
        }
        pauseFor(kUntilItTakesKeys);
        return focus();
    }

    void measureChangesOfFile() {
        std::vector<double> latencies;
        int missed = 0;
        for (int move = 0; move < kMoves && missed < kMostMissed; ++move) {
            pauseFor(kShortestPause + std::chrono::milliseconds(move * 31 % kPauseSpread));
            const bool isToFirst = shown_ == second();
            const auto begin = Clock::now();
            xdotool({QStringLiteral("key"),
                     isToFirst ? QStringLiteral("alt+Left") : QStringLiteral("alt+Right")});
            if (waitUntil([&] { return shown_ == (isToFirst ? first() : second()); },
                          std::chrono::seconds(3))) {
                latencies.push_back(Milliseconds(moved_ - begin).count());
            } else {
                ++missed;
            }
        }
        reportLatencies(QStringLiteral("Kate"), "key to client, change of file", latencies, 0);
    }

    void measureJumps() {
        std::vector<double> latencies;
        for (int jump = 0; jump < kMoves; ++jump) {
            pauseFor(kShortestPause);
            const auto kind = std::make_shared<std::atomic<int>>(-1);
            const auto begin = Clock::now();
            editor_->open(
                jump % 2 == 0 ? first() : second(), 1 + jump * 101 % kLines, 3,
                [kind](const EditorOutcome& outcome) { *kind = static_cast<int>(outcome.kind); });
            waitUntil([&] { return *kind >= 0; });
            if (*kind == static_cast<int>(EditorOutcome::Kind::opened)) {
                latencies.push_back(Milliseconds(Clock::now() - begin).count());
            }
        }
        reportLatencies(QStringLiteral("Kate"), "tap to answer", latencies, 0);
    }

    /// Types what leads to the state. False where nothing of it shows.
    bool enter(const State& state) {
        const QByteArray before = screen();
        for (const char* const key : state.keys) {
            xdotool({QStringLiteral("key"), QString::fromUtf8(key)});
        }
        if (state.change == Change::FileOnDisk) {
            ScratchEnvironment::write(first().toUtf8(), ScratchEnvironment::lines(kLines + 1));
        }
        return state.keys.empty() || waitUntil([&] { return differs(before, screen()); });
    }

    /// Whether it shows the file that it was led to, or the one of before where it was not led, and
    /// still has in that one what was typed.
    bool isInOrder(const State& state, bool wasLed) {
        if (wasLed) {
            if (!waitUntil([this] { return shown_ == first(); }, kStartAtMost)) {
                return false;
            }
            editor_->open(second(), 1, 0, [](const EditorOutcome&) {});
        }
        return waitUntil(
            [&] { return shown_ == second() && isModified_ == (state.change == Change::Text); },
            kStartAtMost);
    }

    /// Leads it to the other file; the time until that ended, and how.
    double jump(EditorOutcome& outcome) {
        const auto ended = std::make_shared<std::atomic<bool>>(false);
        const auto shared = std::make_shared<EditorOutcome>();
        const auto begin = Clock::now();
        editor_->open(first(), kLines / 2, 0, [=](const EditorOutcome& result) {
            *shared = result;
            *ended = true;
        });
        waitUntil([&] { return ended->load(); });
        const double taken = Milliseconds(Clock::now() - begin).count();
        outcome = *shared;
        return taken;
    }

private:
    QByteArray screen() const {
        return ScratchEnvironment::read(environment_.bytesOf("screen/Xvfb_screen0"));
    }
    /// By more than a cursor that blinks.
    static bool differs(const QByteArray& before, const QByteArray& after) {
        constexpr int kBytesOfACursor = 400;
        int different = 0;
        for (qsizetype byte = 0; byte < std::min(before.size(), after.size()); ++byte) {
            different += before[byte] != after[byte] ? 1 : 0;
        }
        return different > kBytesOfACursor;
    }

    // Kate asks whether it may start a language server for sources.
    QString first() const { return environment_.pathOf(QStringLiteral("work/a.txt")); }
    QString second() const { return environment_.pathOf(QStringLiteral("work/b.txt")); }

    static QString folderFor(const ScratchEnvironment& environment, const char* name) {
        const QString folder = environment.pathOf(QString::fromUtf8(name));
        QDir().mkpath(folder);
        return folder;
    }

    /// There is no window manager to give the window the keys.
    static bool focus() {
        return xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                        QStringLiteral("--class"), QStringLiteral("kate"),
                        QStringLiteral("windowfocus"), QStringLiteral("%@")});
    }
    static bool xdotool(const QStringList& arguments) {
        return QProcess::execute(QStringLiteral("xdotool"), arguments) == 0;
    }

    ScratchEnvironment environment_;
    Server display_{QStringLiteral("Xvfb"),
                    {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                     QStringLiteral("0"), QStringLiteral("1000x700x24"), QStringLiteral("-fbdir"),
                     folderFor(environment_, "screen"), QStringLiteral("-nolisten"),
                     QStringLiteral("tcp")}};
    Server bus_{QStringLiteral("dbus-daemon"),
                {QStringLiteral("--session"), QStringLiteral("--nofork"),
                 QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")}};
    QProcess process_;
    std::unique_ptr<FollowedEditor> editor_;
    QString shown_;
    bool isModified_ = false;
    Clock::time_point moved_;
};

int measure() {
    Kate kate;
    if (!kate.isReady()) {
        std::fprintf(stderr, "This needs kate, Xvfb, dbus-daemon and xdotool\n");
        return 1;
    }
    kate.measureChangesOfFile();
    kate.measureJumps();
    return 0;
}

/// The longest of some jumps, in milliseconds; 0 where there was none.
double measureState(const State& state) {
    std::vector<double> times;
    EditorOutcome outcome;
    int inOrder = 0;
    for (int time = 0; time < kTimes; ++time) {
        Kate kate;
        if (kate.isReady() && kate.enter(state)) {
            times.push_back(kate.jump(outcome));
            inOrder += kate.isInOrder(state, outcome.isOpen()) ? 1 : 0;
        }
    }
    if (times.empty()) {
        std::printf("STATE | Kate | %s | was not reached\n", state.name);
        return 0;
    }
    std::sort(times.begin(), times.end());
    std::printf(
        "STATE | Kate | %s | median %.0f ms | longest %.0f ms | %s | %d of %zu in place and "
        "lost nothing\n",
        state.name, times[times.size() / 2], times.back(),
        outcome.isOpen() ? "opened" : qPrintable(outcome.reason), inOrder, times.size());
    std::fflush(stdout);
    return times.back();
}

int measureStates() {
    double longest = 0;
    for (const State& state : kStates) {
        longest = std::max(longest, measureState(state));
    }
    printRatio("Kate: longest jump from any state, in 500 ms", longest / kGoal, 1);
    return 0;
}

} // namespace
} // namespace navrel::bench

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    return QCoreApplication::arguments().contains(QStringLiteral("--states"))
               ? navrel::bench::measureStates()
               : navrel::bench::measure();
}
