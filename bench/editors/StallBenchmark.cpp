// What editors that do not answer cost the main thread, and how soon a file reaches the editor that
// does: real editors, stopped, beside a healthy Neovim.
//
// usage: bench_editor_stalls

#include "bench/Ratio.h"
#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/neovim/NeovimConnection.h"
#include "editors/neovim/NeovimEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/StopProcess.h"
#include "tests/WaitUntil.h"
#include "tests/editors/FakeServer.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QCoreApplication>
#include <QEvent>
#include <QProcess>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace navrel::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kQuestions = 120;
constexpr int kOpenings = 10;
constexpr int kManyNeovims = 20;
/// The data manager asks once a second, a device as often as its user looks.
constexpr std::chrono::milliseconds kBetweenQuestions{100};
constexpr double kWorstStall = 250;
constexpr double kWorstOpening = 300;

double millisecondsSince(Clock::time_point begin) {
    return Milliseconds(Clock::now() - begin).count();
}

/// Editors in scratch folders, to be stopped.
class Editors {
public:
    ~Editors() {
        for (const auto& process : processes_) {
            continueProcess(process->processId());
            process->kill();
            process->waitForFinished();
        }
    }

    QByteArray neovimSocket(int number) const {
        return environment_.bytesOf("xdg_runtime_dir/nvim.") + QByteArray::number(number) + ".0";
    }
    bool startNeovim(int number) {
        const QByteArray socket = neovimSocket(number);
        start(QStringLiteral("nvim"),
              {QStringLiteral("--clean"), QStringLiteral("--headless"), QStringLiteral("--listen"),
               QString::fromUtf8(socket), environment_.pathOf(QStringLiteral("a.m"))});
        const bool isUp = waitUntil([&] {
            bool isOverdue = false;
            return NeovimConnection::open(socket, isOverdue) != nullptr;
        });
        // The healthy one is the oldest: the last that is asked.
        makeOlder(socket, 1000 - number);
        return isUp;
    }
    bool startEmacs() {
        start(QStringLiteral("emacs"),
              {QStringLiteral("-Q"), QStringLiteral("--fg-daemon"), QStringLiteral("--eval"),
               QStringLiteral("(switch-to-buffer (find-file-noselect \"%1\"))")
                   .arg(environment_.pathOf(QStringLiteral("e.m")))});
        EmacsEditor emacs;
        return waitUntil([&] { return emacs.activeFile(QDeadlineTimer(5000)).has_value(); });
    }
    void stop(std::size_t process) const {
        signalProcess(processes_.at(process)->processId(), SIGSTOP);
    }

    QString pathOf(const char* name) const { return environment_.pathOf(QString::fromUtf8(name)); }

private:
    void start(const QString& program, const QStringList& arguments) {
        processes_.push_back(std::make_unique<QProcess>());
        processes_.back()->setStandardOutputFile(QProcess::nullDevice());
        processes_.back()->setStandardErrorFile(QProcess::nullDevice());
        processes_.back()->start(program, arguments);
    }

    ScratchEnvironment environment_;
    std::vector<std::unique_ptr<QProcess>> processes_;
};

/// The file in a Neovim's window, asked by a connection of our own.
QByteArray fileIn(NeovimConnection& neovim) {
    const auto reply =
        neovim.call("nvim_buf_get_name", {QVariant(0)}, QDeadlineTimer(std::chrono::seconds(5)));
    return reply.value.toByteArray();
}

void reportStalls(const char* situation, std::vector<double> stalls) {
    std::sort(stalls.begin(), stalls.end());
    std::printf("STALL | %s | %zu questions | median %.2f ms | worst %.1f ms\n", situation,
                stalls.size(), stalls[stalls.size() / 2], stalls.back());
    printRatio(std::string("Worst stall, in 250 ms: ") + situation, stalls.back() / kWorstStall, 1);
}

void reportOpenings(const char* situation, std::vector<double> openings) {
    std::sort(openings.begin(), openings.end());
    std::printf("OPEN | %s | %zu files | median %.1f ms | worst %.1f ms\n", situation,
                openings.size(), openings[openings.size() / 2], openings.back());
    printRatio(std::string("Worst opening, in 300 ms: ") + situation,
               openings.back() / kWorstOpening, 1);
}

constexpr double kWorstTurn = 50;

void reportTurns(const char* situation, std::vector<double> turns) {
    std::sort(turns.begin(), turns.end());
    std::printf("TURN | %s | %zu turns of the event loop | median %.3f ms | worst %.1f ms\n",
                situation, turns.size(), turns[turns.size() / 2], turns.back());
    printRatio(std::string("Worst turn, in 50 ms: ") + situation, turns.back() / kWorstTurn, 1);
}

std::unique_ptr<FollowedEditor> followedEditor() {
    return std::make_unique<FollowedEditor>(
        std::vector<std::shared_ptr<RunningEditor>>{std::make_shared<NeovimEditor>(),
                                                    std::make_shared<EmacsEditor>()},
        nullptr);
}

/// Half a minute as the program spends it: questions now and then, none of them in a hurry.
void measureStalls(const char* situation, FollowedEditor& editor) {
    std::vector<double> stalls;
    for (int question = 0; question < kQuestions; ++question) {
        const auto begin = Clock::now();
        question % 2 == 0 ? static_cast<void>(editor.activeProjectPath())
                          : static_cast<void>(editor.activeFileName());
        stalls.push_back(millisecondsSince(begin));
        const QDeadlineTimer pause(kBetweenQuestions);
        waitUntil([&] { return pause.hasExpired(); });
    }
    reportStalls(situation, stalls);
}

/// The first file comes to an editor that knows nothing of the others yet.
void measureOpenings(const char* situation, const Editors& editors, bool asksFirst) {
    bool isOverdue = false;
    const auto healthy = NeovimConnection::open(editors.neovimSocket(0), isOverdue);
    std::vector<double> openings;
    for (int opening = 0; opening < kOpenings; ++opening) {
        const auto editor = followedEditor();
        if (asksFirst) {
            editor->activeFileName();
        }
        const QString path = editors.pathOf("open-") + QString::number(opening) +
                             QString::fromUtf8(asksFirst ? "q" : "");
        const auto begin = Clock::now();
        editor->openFile(path, 1);
        waitUntil([&] { return fileIn(*healthy) == path.toUtf8(); }, std::chrono::seconds(20));
        openings.push_back(millisecondsSince(begin));
    }
    reportOpenings(situation, openings);
}

void measure(const char* situation, const Editors& editors) {
    const auto editor = followedEditor();
    measureStalls(situation, *editor);
    measureOpenings(situation, editors, false);
    measureOpenings((std::string(situation) + ", asked before").c_str(), editors, true);
}

/// Connects again and again, and writes the same bytes until it is disconnected.
void flood(const QByteArray& path, const QByteArray& bytes, const std::atomic<bool>& isEnding) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<size_t>(path.size()));
    while (!isEnding) {
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        bool isTaken =
            ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        while (isTaken && !isEnding) {
            isTaken = ::send(socket, bytes.constData(), static_cast<size_t>(bytes.size()),
                             MSG_NOSIGNAL) > 0;
        }
        ::close(socket);
    }
}

/// A plug-in that never stops writing: how long the program is busy with it at a time.
void measureFlood(const char* situation, const QByteArray& bytes) {
    const ScratchEnvironment environment;
    const QByteArray path = environment.bytesOf("hooks");
    auto socket = std::make_unique<HookSocket>(QString::fromUtf8(path));
    std::atomic<bool> isEnding = false;
    std::thread writer([&] { flood(path, bytes, isEnding); });
    std::vector<double> turns;
    const QDeadlineTimer end(std::chrono::seconds(5));
    while (!end.hasExpired()) {
        const auto begin = Clock::now();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        turns.push_back(millisecondsSince(begin));
    }
    isEnding = true;
    socket = nullptr; // the writer may be waiting for room
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    writer.join();
    reportTurns(situation, turns);
}

int measureAll() {
    {
        Editors editors;
        if (!editors.startNeovim(0)) {
            std::fprintf(stderr, "This needs nvim and emacs\n");
            return 1;
        }
        measure("nothing is amiss", editors);
        editors.startNeovim(1);
        editors.stop(1);
        measure("the newer of two Neovims is stopped", editors);
    }
    {
        Editors editors;
        for (int number = 0; number < kManyNeovims; ++number) {
            editors.startNeovim(number);
        }
        for (std::size_t number = 1; number < kManyNeovims; ++number) {
            editors.stop(number);
        }
        measure("19 of 20 Neovims are stopped", editors);
    }
    {
        Editors editors;
        editors.startNeovim(0);
        editors.startEmacs();
        editors.stop(1);
        measure("Emacs is stopped beside a Neovim", editors);
        editors.stop(0);
        measureStalls("both are stopped, never asked before", *followedEditor());
    }
    {
        Editors editors;
        editors.startNeovim(0);
        const FakeServer garbage(
            editors.neovimSocket(1), [](int connection, const std::atomic<bool>& isEnding) {
                const QByteArray bytes(4096, '\x93');
                while (!isEnding && ::send(connection, bytes.constData(),
                                           static_cast<size_t>(bytes.size()), MSG_NOSIGNAL) > 0) {
                }
            });
        measure("a newer server writes garbage", editors);
    }
    measureFlood("a plug-in floods with places", "{\"active\":\"/a.m\",\"line\":1}\n");
    measureFlood("a plug-in floods with long lines",
                 "{\"active\":\"/" + QByteArray(60'000, 'x') + "\",\"line\":1}\n");
    measureFlood("a plug-in writes lines of 1 MB", QByteArray(1024 * 1024, 'x') + '\n');
    measureFlood("a plug-in writes garbage", "garbage\n");
    return 0;
}

} // namespace
} // namespace navrel::bench

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    return navrel::bench::measureAll();
}
