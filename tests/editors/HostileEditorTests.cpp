// Editors that do not answer, and servers that are none: no question lasts longer than its limit,
// and none brings the program down.

#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/neovim/MessagePack.h"
#include "editors/neovim/NeovimConnection.h"
#include "editors/neovim/NeovimEditor.h"
#include "editors/neovim/NeovimServers.h"
#include "support/process/ToolRunner.h"
#include "tests/LogRecorder.h"
#include "tests/StopProcess.h"
#include "tests/WaitUntil.h"
#include "tests/editors/FakeServer.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QProcess>
#include <gtest/gtest.h>

#include <memory>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds kQueryAtMost{300};
const QDeadlineTimer kWhenever(QDeadlineTimer::Forever);

/// Sends the same bytes again and again until nobody takes them, or so often.
FakeServer::Conversation saying(const QByteArray& bytes, int times = 1) {
    return [bytes, times](int connection, const std::atomic<bool>& isEnding) {
        for (int round = 0; round < times && !isEnding; ++round) {
            if (::send(connection, bytes.constData(), static_cast<size_t>(bytes.size()),
                       MSG_NOSIGNAL) < 0) {
                return;
            }
        }
        // Until the other end has enough.
        pollfd waited = {connection, POLLRDHUP, 0};
        while (!isEnding && ::poll(&waited, 1, 10) == 0) {
        }
    };
}

class HostileNeovim : public ::testing::Test {
protected:
    QByteArray socket(const char* name = "1") const {
        return environment.bytesOf("xdg_runtime_dir/nvim.") + name + ".0";
    }

    /// Asks once, within the limit.
    std::optional<QByteArray> ask() { return ask(editor); }
    static std::optional<QByteArray> ask(NeovimEditor& asked) {
        const auto file = asked.activeFile(QDeadlineTimer(kQueryAtMost));
        return file ? std::optional(file->path) : std::nullopt;
    }

    ScratchEnvironment environment;
    NeovimEditor editor;
};

TEST_F(HostileNeovim, aServerThatSaysNothingIsAskedOnceAndThenLeftAlone) {
    const FakeServer server(socket(), saying(""));
    EXPECT_EQ(ask(), std::nullopt);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(ask(), std::nullopt);
    EXPECT_EQ(server.connections(), 1);
}

TEST_F(HostileNeovim, aServerThatWasLeftAloneIsAskedAgainLater) {
    const FakeServer server(socket(), saying(""));
    NeovimEditor forgiving(milliseconds(50));
    EXPECT_TRUE(waitUntil([&] {
        forgiving.activeFile(QDeadlineTimer(milliseconds(20)));
        return server.connections() >= 2;
    }));
}

TEST_F(HostileNeovim, theNextServerIsAskedWhileTheNewestIsStopped) {
    const FakeNeovim older(socket("1"), "/older.m");
    makeOlder(socket("1"), 60);
    const FakeNeovim stopped(socket("2"), "/stopped.m", FakeNeovim::Mood::Silent);
    // Half of this is time enough, whatever else the machine does.
    for (int question = 0; question < 2; ++question) {
        const auto file = editor.activeFile(QDeadlineTimer(milliseconds(3000)));
        ASSERT_TRUE(file.has_value());
        EXPECT_EQ(file->path, "/older.m");
    }
    EXPECT_EQ(stopped.connections(), 1) << "it is left alone";
}

TEST_F(HostileNeovim, aServerThatIsBusyShowsWhatItShowed) {
    for (const auto mood : {FakeNeovim::Mood::WaitsForAKey, FakeNeovim::Mood::Silent}) {
        NeovimEditor fresh;
        FakeNeovim server(socket(), "/a.m");
        ASSERT_TRUE(waitUntil([&] { return ask(fresh) == QByteArray("/a.m"); }));
        server.setMood(mood);
        EXPECT_EQ(ask(fresh), QByteArray("/a.m"));
        EXPECT_EQ(ask(fresh), QByteArray("/a.m"));
    }
}

TEST_F(HostileNeovim, aServerThatWasBusyFromTheBeginningShowsNothing) {
    const FakeNeovim server(socket(), "/a.m", FakeNeovim::Mood::WaitsForAKey);
    EXPECT_EQ(ask(), std::nullopt);
}

TEST_F(HostileNeovim, aServerThatIsGoneShowsNothingAnyMore) {
    auto server = std::make_unique<FakeNeovim>(socket(), "/a.m");
    ASSERT_TRUE(waitUntil([&] { return ask() == QByteArray("/a.m"); }));
    server = nullptr;
    EXPECT_EQ(ask(), std::nullopt);
    leaveStaleSocket(socket()); // as after a crash
    EXPECT_EQ(ask(), std::nullopt);
}

TEST_F(HostileNeovim, anotherServerIsFollowedOnceTheNewestHasBeenBusyForAWhile) {
    const FakeNeovim older(socket("1"), "/older.m");
    makeOlder(socket("1"), 60);
    for (const auto mood : {FakeNeovim::Mood::WaitsForAKey, FakeNeovim::Mood::Silent}) {
        NeovimEditor impatient(milliseconds(1000));
        FakeNeovim newest(socket("2"), "/newest.m");
        ASSERT_TRUE(waitUntil([&] { return ask(impatient) == QByteArray("/newest.m"); }));
        newest.setMood(mood);
        EXPECT_EQ(ask(impatient), QByteArray("/newest.m")) << "it is in the middle of something";
        EXPECT_TRUE(waitUntil([&] { return ask(impatient) == QByteArray("/older.m"); }));
        newest.setMood(FakeNeovim::Mood::Answers);
        EXPECT_TRUE(waitUntil([&] { return ask(impatient) == QByteArray("/newest.m"); }));
    }
}

TEST_F(HostileNeovim, manyStoppedServersHideTheOneThatAnswersNotForLong) {
    const FakeNeovim oldest(socket("1"), "/oldest.m");
    makeOlder(socket("1"), 60);
    std::vector<std::unique_ptr<FakeNeovim>> stopped;
    for (const char* name : {"2", "3", "4", "5", "6"}) {
        stopped.push_back(std::make_unique<FakeNeovim>(socket(name), "/stopped.m", //
                                                       FakeNeovim::Mood::Silent));
    }
    // Each question leaves at least one of them alone from then on.
    std::optional<QByteArray> file;
    for (std::size_t i = 0; i <= stopped.size() && !file; ++i) {
        file = ask();
    }
    EXPECT_EQ(file, QByteArray("/oldest.m"));
}

TEST_F(HostileNeovim, openingLeavesTimeForAnEditorOfAnotherKind) {
    std::vector<std::unique_ptr<FakeNeovim>> stopped;
    for (const char* name : {"1", "2", "3", "4", "5", "6"}) {
        stopped.push_back(std::make_unique<FakeNeovim>(socket(name), "/stopped.m", //
                                                       FakeNeovim::Mood::Silent));
    }
    const QDeadlineTimer deadline(milliseconds(4000));
    EXPECT_FALSE(editor.open("/a.m", 1, deadline));
    EXPECT_FALSE(deadline.hasExpired());
}

TEST_F(HostileNeovim, whatKeepsAnEditorFromOpeningIsLoggedAsItIs) {
    for (const auto& [mood, reason] :
         {std::pair(FakeNeovim::Mood::Refuses, "Neovim did not open /a.m: Refused"),
          std::pair(FakeNeovim::Mood::WaitsSoon, "Neovim did not open /a.m: it waits for a key")}) {
        const FakeNeovim server(socket(), "", mood);
        LogRecorder log;
        EXPECT_TRUE(editor.open("/a.m", 1, QDeadlineTimer(milliseconds(1000))));
        EXPECT_EQ(log.messages(), QStringList{QString::fromUtf8(reason)});
    }
}

TEST_F(HostileNeovim, garbageIsNoAnswer) {
    const QByteArray greeting = "HTTP/1.1 400 Bad Request\r\n\r\n";
    for (const QByteArray& bytes :
         {greeting, QByteArray("\xC1"), QByteArray(5000, '\x91'), QByteArray(5000, '\0'),
          QByteArray("\xDD\xFF\xFF\xFF\xFF"), QByteArray("\xC6\xFF\xFF\xFF\xFF"),
          messagePackOf(QVariantList{1, 1, QVariant(), QByteArray("no map")}),
          messagePackOf(QVariantList{1, 1, QByteArray("an error"), QVariant()}),
          messagePackOf(QVariantList{1, 7, QVariant(), QVariant()}),
          messagePackOf(QVariantList{0, 1, QByteArray("a_request"), QVariant(QVariantList())})}) {
        const FakeServer server(socket(), saying(bytes));
        NeovimEditor fresh;
        EXPECT_EQ(ask(fresh), std::nullopt) << bytes.left(20).toHex().constData();
        EXPECT_EQ(server.connections(), 1);
        ::unlink(socket().constData());
    }
}

TEST_F(HostileNeovim, aServerThatWritesWithoutEndIsNoAnswer) {
    constexpr int kForEver = 1'000'000'000;
    for (const QByteArray& bytes :
         {QByteArray(4096, '\x01'), QByteArray(4096, '\x90'),
          QByteArray("\xDD\xFF\xFF\xFF\xFF") + QByteArray(4096, '\xC0')}) {
        const FakeServer server(socket(), saying(bytes, kForEver));
        NeovimEditor fresh;
        EXPECT_EQ(ask(fresh), std::nullopt);
        ::unlink(socket().constData());
    }
}

TEST_F(HostileNeovim, anAnswerBeyondTheLimitIsNone) {
    const QByteArray huge = messagePackOf(
        QVariantList{1, 1, QVariant(), QByteArray(kMaximumNeovimReply + 10'000, 'x')});
    const FakeServer server(socket(), saying(huge));
    bool isOverdue = false;
    const auto connection = NeovimConnection::open(socket(), isOverdue);
    ASSERT_NE(connection, nullptr);
    EXPECT_EQ(connection->call("any", {}, QDeadlineTimer(milliseconds(10'000))).kind,
              NeovimConnection::Reply::Kind::None);
}

TEST_F(HostileNeovim, aStaleSocketCostsNothingAndIsNoAnswer) {
    leaveStaleSocket(socket());
    ASSERT_EQ(neovimServerSockets(kWhenever), QByteArrayList{socket()});
    EXPECT_EQ(ask(), std::nullopt);
    EXPECT_FALSE(editor.open("/a.m", 1, QDeadlineTimer(milliseconds(5000))));
}

TEST_F(HostileNeovim, aFolderFullOfSocketsIsCutShort) {
    for (int i = 0; i < kMaximumNeovimSockets + 20; ++i) {
        leaveStaleSocket(socket(QByteArray::number(i).constData()));
    }
    EXPECT_EQ(neovimServerSockets(kWhenever).size(), kMaximumNeovimSockets);
    EXPECT_EQ(ask(), std::nullopt);
}

TEST_F(HostileNeovim, deadSocketsHideNoServer) {
    const FakeNeovim running(socket("running"), "/a.m");
    makeOlder(socket("running"), 60);
    for (int i = 0; i < 200; ++i) {
        leaveStaleSocket(socket(QByteArray::number(i).constData()));
    }
    EXPECT_TRUE(waitUntil([&] { return ask() == QByteArray("/a.m"); }));
    EXPECT_TRUE(waitUntil([&] { return editor.open("/b.m", 1, QDeadlineTimer(seconds(10))); }));
}

TEST_F(HostileNeovim, serversThatAreStoppedCostOneAnswersTime) {
    const FakeNeovim healthy(socket("healthy"), "/healthy.m");
    makeOlder(socket("healthy"), 60);
    std::vector<std::unique_ptr<FakeNeovim>> stopped;
    for (int i = 0; i < 19; ++i) {
        stopped.push_back(std::make_unique<FakeNeovim>(socket(QByteArray::number(i).constData()),
                                                       "/stopped.m", FakeNeovim::Mood::Silent));
    }
    // The first question shows it, since all are asked at once.
    const auto file = editor.activeFile(QDeadlineTimer(seconds(10)));
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(file->path, "/healthy.m");
    const auto connectionsOf = [&] {
        int count = 0;
        for (const auto& server : stopped) {
            count += server->connections();
        }
        return count;
    };
    EXPECT_EQ(connectionsOf(), 19);
    // Opening knows what the question has learnt, and asks none of them.
    EXPECT_TRUE(editor.open("/b.m", 1, QDeadlineTimer(seconds(10))));
    EXPECT_EQ(connectionsOf(), 19);
}

TEST_F(HostileNeovim, whatOpeningLearnsSparesTheNextQuestion) {
    const FakeNeovim healthy(socket("healthy"), "/healthy.m");
    makeOlder(socket("healthy"), 60);
    const FakeNeovim stopped(socket("stopped"), "/stopped.m", FakeNeovim::Mood::Silent);
    EXPECT_TRUE(editor.open("/b.m", 1, QDeadlineTimer(seconds(10))));
    EXPECT_EQ(stopped.connections(), 1);
    EXPECT_EQ(editor.activeFile(QDeadlineTimer(seconds(10)))->path, "/healthy.m");
    EXPECT_EQ(stopped.connections(), 1);
}

TEST_F(HostileNeovim, aServerThatAnswersLateIsAskedAgainAtOnce) {
    FakeNeovim server(socket(), "/a.m", FakeNeovim::Mood::Silent);
    NeovimEditor patient(std::chrono::hours(1));
    EXPECT_EQ(ask(patient), std::nullopt);
    server.setMood(FakeNeovim::Mood::Answers);
    EXPECT_TRUE(waitUntil([&] { return ask(patient) == QByteArray("/a.m"); }));
}

/// As on a machine that is so busy that no answer comes while it is waited for.
TEST_F(HostileNeovim, aServerThatIsLateEachTimeIsHeardAllTheSame) {
    environment.set("NVIM", socket());
    const FakeNeovim server(socket(), "/a.m");
    NeovimEditor hasty(std::chrono::hours(1));
    EXPECT_TRUE(waitUntil([&] {
        const auto file = hasty.activeFile(QDeadlineTimer(0));
        return file && file->path == "/a.m" && file->isFresh;
    }));
}

TEST_F(HostileNeovim, aSearchWithoutTimeForgetsNoAnswer) {
    const FakeNeovim server(socket(), "/a.m");
    ASSERT_TRUE(waitUntil([&] { return ask() == QByteArray("/a.m"); }));
    const auto file = editor.activeFile(QDeadlineTimer(0));
    ASSERT_TRUE(file.has_value());
    EXPECT_EQ(file->path, "/a.m");
}

TEST_F(HostileNeovim, whereFoldersAreSlowTheServerOfTheEnvironmentIsStillFound) {
    leaveStaleSocket(socket());
    environment.set("NVIM", environment.bytesOf("own"));
    bool isWhole = true;
    EXPECT_EQ(neovimServerSockets(QDeadlineTimer(0), &isWhole),
              QByteArrayList{environment.bytesOf("own")});
    EXPECT_FALSE(isWhole);
    neovimServerSockets(kWhenever, &isWhole);
    EXPECT_TRUE(isWhole);
}

TEST_F(HostileNeovim, aNetworkAddressIsNoSocket) {
    environment.set("NVIM", "127.0.0.1:6666");
    environment.set("NVIM_LISTEN_ADDRESS", QByteArray(1, '/') + QByteArray(500, 'x'));
    EXPECT_EQ(ask(), std::nullopt);
}

TEST_F(HostileNeovim, theSocketOfAnotherUserIsNotUsed) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root, to act as somebody else";
    }
    constexpr uid_t kNobody = 65534;
    const FakeServer server(socket(), saying(""));
    bool isOverdue = false;
    ASSERT_NE(NeovimConnection::open(socket(), isOverdue), nullptr);

    // The same socket, asked by somebody else: whose it is, is told by the listener.
    ASSERT_EQ(::chmod(environment.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(environment.bytesOf("xdg_runtime_dir").constData(), 0755), 0);
    ASSERT_EQ(::chmod(socket().constData(), 0777), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isSomebodyElse = ::setresuid(kNobody, kNobody, kNobody) == 0;
        const bool isRefused = NeovimConnection::open(socket(), isOverdue) == nullptr;
        ::_exit(!isSomebodyElse                                         ? 2
                : isRefused && neovimServerSockets(kWhenever).isEmpty() ? 0
                                                                        : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_TRUE(waitUntil([&] { return server.connections() == 2; })) << "it did not get so far";
}

TEST(StopProcess, noProcessIsNotEveryProcess) {
    EXPECT_FALSE(continueProcess(QProcess().processId()));
    EXPECT_FALSE(stopProcess(-1));
}

/// A real editor, stopped.
class StoppedEditor : public ::testing::Test {
protected:
    ~StoppedEditor() override {
        continueProcess(process.processId());
        process.kill();
        process.waitForFinished();
    }

    /// That an editor that shows a file goes on showing it while it is stopped, and that one which
    /// was stopped from the beginning is no answer. Neither is waited for beyond the limit.
    void expectItToStandStill(const std::shared_ptr<RunningEditor>& editor,
                              const std::shared_ptr<RunningEditor>& lateComer) {
        FollowedEditor followed({editor}, nullptr);
        const auto showsTheFile = [&] {
            return followed.activeFileName() == QStringLiteral("a.m");
        };
        ASSERT_TRUE(waitUntil(showsTheFile));

        ASSERT_TRUE(stopProcess(process.processId()));
        EXPECT_TRUE(showsTheFile());
        EXPECT_EQ(FollowedEditor({lateComer}, nullptr).activeProjectPath(), std::nullopt);
        // Also when it has been asked again.
        const QDeadlineTimer later(kLeftAlone * 2);
        EXPECT_TRUE(waitUntil([&] { return later.hasExpired() || !showsTheFile(); }));
        EXPECT_TRUE(later.hasExpired());

        ASSERT_TRUE(continueProcess(process.processId()));
        EXPECT_TRUE(waitUntil(showsTheFile));
        process.kill();
        process.waitForFinished();
        EXPECT_TRUE(waitUntil([&] { return !followed.activeFileName().has_value(); }));
    }

    static constexpr milliseconds kLeftAlone{1000};

    ScratchEnvironment environment;
    QProcess process;
};

TEST_F(StoppedEditor, aStoppedNeovimShowsWhatItShowed) {
    if (!findTool(QStringLiteral("nvim"))) {
        GTEST_SKIP() << "needs nvim";
    }
    process.start(QStringLiteral("nvim"),
                  {QStringLiteral("--clean"), QStringLiteral("--headless"),
                   QStringLiteral("--listen"),
                   environment.pathOf(QStringLiteral("xdg_runtime_dir/nvim.1.0")),
                   environment.pathOf(QStringLiteral("a.m"))});
    expectItToStandStill(std::make_shared<NeovimEditor>(kLeftAlone),
                         std::make_shared<NeovimEditor>(kLeftAlone));
}

TEST_F(StoppedEditor, aStoppedEmacsShowsWhatItShowed) {
    if (!findTool(QStringLiteral("emacs"))) {
        GTEST_SKIP() << "needs emacs";
    }
    process.start(QStringLiteral("emacs"),
                  {QStringLiteral("-Q"), QStringLiteral("--fg-daemon"), QStringLiteral("--eval"),
                   QStringLiteral("(switch-to-buffer (find-file-noselect \"%1\"))")
                       .arg(environment.pathOf(QStringLiteral("a.m")))});
    expectItToStandStill(std::make_shared<EmacsEditor>(kLeftAlone),
                         std::make_shared<EmacsEditor>(kLeftAlone));
}

} // namespace
} // namespace navrel
