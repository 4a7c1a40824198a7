// How soon a client knows which file Kate shows, and how soon Kate answers a jump: the real one on
// an X server of its own, 200 changes of file by keys and 200 jumps. Kate does not say where its
// cursor is.
//
// usage: bench_kate

#include "bench/editors/Latencies.h"
#include "editors/FollowedEditor.h"
#include "editors/kate/KateEditor.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QProcess>

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
        environment_.set("DBUS_SESSION_BUS_ADDRESS", bus_.firstLine().toUtf8());
        environment_.set("QT_QPA_PLATFORM", "xcb");
        for (const QString& file : {first(), second()}) {
            ScratchEnvironment::write(file.toUtf8(), ScratchEnvironment::lines(kLines));
        }
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(QStringLiteral("kate"), {QStringLiteral("-n"), first(), second()});
        editor_ = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{
                std::make_shared<KateEditor>(QDBusConnection::sessionBus())},
            nullptr);
        editor_->onMove([this](const EditorPosition& position) {
            shown_ = position.path;
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

private:
    // Kate asks whether it may start a language server for sources.
    QString first() const { return environment_.pathOf(QStringLiteral("work/a.txt")); }
    QString second() const { return environment_.pathOf(QStringLiteral("work/b.txt")); }

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
                     QStringLiteral("0"), QStringLiteral("1000x700x24"),
                     QStringLiteral("-nolisten"), QStringLiteral("tcp")}};
    Server bus_{QStringLiteral("dbus-daemon"),
                {QStringLiteral("--session"), QStringLiteral("--nofork"),
                 QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")}};
    QProcess process_;
    std::unique_ptr<FollowedEditor> editor_;
    QString shown_;
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

} // namespace
} // namespace navrel::bench

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    return navrel::bench::measure();
}
