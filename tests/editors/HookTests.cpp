// Editors that connect by a plug-in: what they may write, and what becomes of those that write
// something else.

#include "editors/FollowedEditor.h"
#include "editors/hooks/HookMessage.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/editors/AwaitOutcome.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

using MessageKind = HookMessage::Kind;

TEST(HookMessage, everyLineOfTheProtocolIsRead) {
    const auto hello =
        hookMessageFrom(R"({"hello":"VS Code","version":1,"pid":7,"folders":["/a","/b"]})");
    ASSERT_TRUE(hello.has_value());
    EXPECT_EQ(hello->kind, MessageKind::Hello);
    EXPECT_EQ(hello->editor, QStringLiteral("VS Code"));
    EXPECT_EQ(hello->folders, QStringList({QStringLiteral("/a"), QStringLiteral("/b")}));

    const auto active = hookMessageFrom(R"({"active":"/a.m","line":3,"column":9,"modified":true})");
    EXPECT_EQ(active->kind, MessageKind::Active);
    EXPECT_EQ(active->place, (EditorPlace{"/a.m", 3, 9, true}));
    EXPECT_EQ(hookMessageFrom(R"({"active":null})")->place, EditorPlace());

    EXPECT_EQ(hookMessageFrom(R"({"opened":4})")->request, 4);
    const auto refused = hookMessageFrom(R"({"refused":5,"reason":"no"})");
    EXPECT_EQ(refused->kind, MessageKind::Refused);
    EXPECT_EQ(refused->request, 5);
    EXPECT_EQ(refused->reason, QStringLiteral("no"));
}

TEST(HookMessage, whatIsNoObjectIsNoMessage) {
    for (const char* line : {"", "x", "[]", "3", "\"text\"", "{", "{\"a\":}", "\xFF", "null"}) {
        EXPECT_FALSE(hookMessageFrom(line).has_value()) << line;
    }
}

TEST(HookMessage, valuesOfAnotherTypeCountAsAbsent) {
    EXPECT_EQ(hookMessageFrom(R"({"hello":3})")->kind, MessageKind::Other);
    EXPECT_EQ(hookMessageFrom(R"({"opened":"4"})")->kind, MessageKind::Other);
    EXPECT_EQ(hookMessageFrom(R"({"later":1})")->kind, MessageKind::Other);
    EXPECT_EQ(hookMessageFrom(R"({"active":{},"line":"x","column":-3})")->place, EditorPlace());
    EXPECT_EQ(hookMessageFrom(R"({"hello":"x","folders":3})")->folders, QStringList());
}

TEST(HookMessage, aRequestIsOneLine) {
    EXPECT_EQ(hookOpenLine({"/a\n\"b.m", 3, 0, false}, 8),
              "{\"id\":8,\"line\":3,\"open\":\"/a\\n\\\"b.m\"}\n");
    EXPECT_EQ(hookOpenLine({"/a.m", 0, 0, false}, 1), "{\"id\":1,\"open\":\"/a.m\"}\n");
    EXPECT_EQ(hookOpenLine({"/a.m", 2, 5, false}, 1),
              "{\"column\":5,\"id\":1,\"line\":2,\"open\":\"/a.m\"}\n");
    EXPECT_EQ(hookBackLine(9), "{\"back\":true,\"id\":9}\n");
}

/// A plug-in, as far as lines go.
class PlugIn {
public:
    explicit PlugIn(const QString& path) { socket.connectToServer(path); }
    void say(const QByteArray& line) {
        socket.write(line + '\n');
        socket.flush();
    }
    QByteArray hear() {
        EXPECT_TRUE(waitUntil([&] { return socket.canReadLine(); }));
        return socket.readLine();
    }
    bool isConnected() const { return socket.state() == QLocalSocket::ConnectedState; }

    QLocalSocket socket;
};

class Hooks : public ::testing::Test {
protected:
    QString path() const { return environment.pathOf(QStringLiteral("hooks")); }
    bool shows(const QByteArray& file, int line) const {
        const auto& latest = socket.latest();
        return latest && latest->path == file && latest->line == line;
    }

    ScratchEnvironment environment;
    HookSocket socket{path()};
};

TEST_F(Hooks, theSocketIsThisUsersAlone) {
    struct stat status = {};
    ASSERT_EQ(::stat(path().toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST_F(Hooks, theEditorThatSpokeLastCounts) {
    PlugIn first(path());
    PlugIn second(path());
    first.say(R"({"hello":"A"})");
    first.say(R"({"active":"/a.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/a.m", 1); }));
    second.say(R"({"active":"/b.m","line":2})");
    ASSERT_TRUE(waitUntil([&] { return shows("/b.m", 2); }));
    first.say(R"({"active":"/a.m","line":3})");
    ASSERT_TRUE(waitUntil([&] { return shows("/a.m", 3); }));
}

TEST_F(Hooks, halfALineIsWaitedFor) {
    PlugIn editor(path());
    editor.socket.write(R"({"active":"/a.m",)");
    editor.socket.flush();
    PlugIn other(path());
    other.say(R"({"active":"/other.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/other.m", 1); }));
    editor.say(R"("line":7})");
    EXPECT_TRUE(waitUntil([&] { return shows("/a.m", 7); }));
}

TEST_F(Hooks, garbageAndLongLinesEndTheConversation) {
    for (const QByteArray& bytes :
         {QByteArray("GET / HTTP/1.1\n"), QByteArray("\0\n", 2), QByteArray(1024 * 1024, 'x'),
          "{\"active\":\"" + QByteArray(1024 * 1024, 'x') + "\"}\n",
          QByteArray(10'000, '[') + '\n'}) {
        PlugIn editor(path());
        ASSERT_TRUE(editor.isConnected());
        editor.socket.write(bytes);
        EXPECT_TRUE(waitUntil([&] { return !editor.isConnected(); })) << bytes.left(10).constData();
    }
    EXPECT_EQ(socket.latest(), std::nullopt);
}

TEST_F(Hooks, onlySoManyEditorsAreServed) {
    std::vector<std::unique_ptr<PlugIn>> editors;
    for (std::size_t i = 0; i < HookSocket::kMaximumEditors; ++i) {
        editors.push_back(std::make_unique<PlugIn>(path()));
        editors.back()->say(R"({"active":"/a.m","line":)" + QByteArray::number(i + 1) + "}");
        ASSERT_TRUE(waitUntil([&] { return shows("/a.m", static_cast<int>(i + 1)); }));
    }
    PlugIn tooMany(path());
    EXPECT_TRUE(waitUntil([&] { return !tooMany.isConnected(); }));
    editors.pop_back();
    EXPECT_TRUE(waitUntil([&] {
        PlugIn next(path());
        next.say(R"({"active":"/next.m","line":1})");
        return waitUntil([&] { return shows("/next.m", 1) || !next.isConnected(); }) &&
               shows("/next.m", 1);
    })) << "a place is free again";
}

TEST_F(Hooks, aFloodLeavesTheOthersTheirTurn) {
    QByteArrayList heard;
    socket.setObserver([&](const EditorPlace& place) { heard.append(place.path); });
    PlugIn flood(path());
    PlugIn other(path());
    constexpr int kLines = 20'000;
    flood.socket.write(QByteArray("{\"active\":\"/flood.m\",\"line\":1}\n").repeated(kLines));
    other.say(R"({"active":"/other.m","line":5})");
    EXPECT_TRUE(waitUntil([&] { return heard.size() == kLines + 1; }));
    EXPECT_LT(heard.indexOf("/other.m"), kLines / 2) << "it had to wait for the flood's end";
}

TEST_F(Hooks, anEditorThatDiesInTheMiddleOfAFloodIsForgotten) {
    for (int round = 1; round <= 20; ++round) {
        auto flood = std::make_unique<PlugIn>(path());
        const QByteArray line =
            R"({"active":"/flood.m","line":)" + QByteArray::number(round) + "}\n";
        flood->socket.write(line.repeated(2000));
        ASSERT_TRUE(waitUntil([&] { return shows("/flood.m", round); }));
        flood->socket.abort();
        flood = nullptr;
        PlugIn other(path());
        other.say(R"({"active":"/other.m","line":5})");
        ASSERT_TRUE(waitUntil([&] { return shows("/other.m", 5); }));
    }
}

TEST_F(Hooks, aRequestGoesToTheWindowThatShowsTheFolder) {
    PlugIn first(path());
    PlugIn second(path());
    first.say(R"({"hello":"First","folders":["/home/one"]})");
    first.say(R"({"active":"/home/one/x.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/home/one/x.m", 1); }));
    second.say(R"({"hello":"Second","folders":["/home/two"]})");
    second.say(R"({"active":"/home/two/y.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/home/two/y.m", 1); }));

    EditorOutcome outcome;
    ASSERT_GT(socket.open({"/home/one/z.m", 9, 0, false}, [&](const auto& got) { outcome = got; }),
              0);
    EXPECT_EQ(first.hear(), "{\"id\":1,\"line\":9,\"open\":\"/home/one/z.m\"}\n");
    first.say(R"({"opened":1})");
    EXPECT_TRUE(waitUntil([&] { return outcome.isOpen(); }));
    EXPECT_EQ(outcome.editor, QStringLiteral("First"));

    ASSERT_GT(socket.open({"/elsewhere/z.m", 1, 0, false}, [&](const auto& got) { outcome = got; }),
              0);
    EXPECT_EQ(second.hear(), "{\"id\":2,\"line\":1,\"open\":\"/elsewhere/z.m\"}\n");
    second.say(R"({"refused":2,"reason":"no such file"})");
    EXPECT_TRUE(waitUntil([&] { return !outcome.isOpen(); }));
    EXPECT_EQ(outcome.reason, QStringLiteral("Second: no such file."));
}

TEST_F(Hooks, theUserIsWhereTheEditorWasLedUntilItSaysOtherwise) {
    PlugIn editor(path());
    editor.say(R"({"hello":"A"})");
    editor.say(R"({"active":"/a.m","line":1,"column":4})");
    ASSERT_TRUE(waitUntil([&] { return shows("/a.m", 1); }));
    int replies = 0;
    const auto count = [&](const auto&) { ++replies; };
    socket.open({"/b.m", 42, 0, false}, count);
    EXPECT_TRUE(shows("/a.m", 1)) << "it has not answered yet";
    editor.say(R"({"opened":1})");
    ASSERT_TRUE(waitUntil([&] { return replies == 1; }));
    EXPECT_EQ(socket.latest(), (EditorPlace{"/b.m", 42, 1, false}));

    socket.open({"/b.m", 90, 0, false}, count);
    editor.say(R"({"active":"/b.m","line":90,"column":2})");
    editor.say(R"({"opened":2})");
    ASSERT_TRUE(waitUntil([&] { return replies == 2; }));
    EXPECT_EQ(socket.latest(), (EditorPlace{"/b.m", 90, 2, false}));

    socket.open({"/b.m", 91, 0, false}, count);
    editor.say(R"({"active":"/b.m","line":90,"column":7})"); // where it was a moment before
    editor.say(R"({"opened":3})");
    ASSERT_TRUE(waitUntil([&] { return replies == 3; }));
    EXPECT_EQ(socket.latest(), (EditorPlace{"/b.m", 91, 1, false}));

    socket.open({"/b.m", 7, 0, false}, count);
    editor.say(R"({"refused":4})");
    ASSERT_TRUE(waitUntil([&] { return replies == 4; }));
    EXPECT_EQ(socket.latest(), (EditorPlace{"/b.m", 91, 1, false}));
}

TEST_F(Hooks, anEditorThatDiesInTheMiddleRefuses) {
    auto editor = std::make_unique<PlugIn>(path());
    editor->say(R"({"hello":"A"})");
    editor->say(R"({"active":"/a.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/a.m", 1); }));
    int replies = 0;
    ASSERT_GT(socket.open({"/b.m", 1, 0, false},
                          [&](const auto& outcome) {
                              EXPECT_FALSE(outcome.isOpen());
                              ++replies;
                          }),
              0);
    editor = nullptr;
    EXPECT_TRUE(waitUntil([&] { return replies == 1; }));
    EXPECT_EQ(socket.latest(), std::nullopt);
    EXPECT_EQ(socket.open({"/b.m", 1, 0, false}, nullptr), 0);
}

TEST_F(Hooks, aWindowThatDoesNotAnswerGetsNoMoreRequestsUntilItSpeaks) {
    PlugIn editor(path());
    editor.say(R"({"hello":"A"})");
    editor.say(R"({"active":"/a.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/a.m", 1); }));
    bool isOpen = false;
    const qint64 request =
        socket.open({"/b.m", 1, 0, false}, [&](const auto& outcome) { isOpen = outcome.isOpen(); });
    ASSERT_EQ(request, 1);
    socket.giveUpOn(request);
    EXPECT_EQ(socket.open({"/b.m", 1, 0, false}, nullptr), 0);
    EXPECT_EQ(socket.goBack(nullptr), 0);
    editor.say(R"({"opened":1})");
    EXPECT_TRUE(waitUntil([&] { return isOpen; })) << "late, but true";
    EXPECT_EQ(socket.goBack([](const auto&) {}), 2);
    EXPECT_EQ(editor.hear(), "{\"id\":1,\"line\":1,\"open\":\"/b.m\"}\n");
    EXPECT_EQ(editor.hear(), "{\"back\":true,\"id\":2}\n");
}

TEST_F(Hooks, whatHasNotSaidHelloGetsNoRequests) {
    PlugIn stranger(path());
    stranger.say(R"({"active":"/a.m","line":1})");
    ASSERT_TRUE(waitUntil([&] { return shows("/a.m", 1); }));
    EXPECT_EQ(socket.open({"/b.m", 1, 0, false}, nullptr), 0);
}

TEST_F(Hooks, theSocketOfARunningProgramIsLeftToIt) {
    LogRecorder log;
    const HookSocket second(path());
    EXPECT_EQ(log.messages().size(), 1);
    PlugIn editor(path());
    editor.say(R"({"active":"/a.m","line":1})");
    EXPECT_TRUE(waitUntil([&] { return shows("/a.m", 1); }));
}

TEST_F(Hooks, otherUsersAreNotServed) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root, to act as somebody else";
    }
    ASSERT_EQ(::chmod(environment.path().toUtf8().constData(), 0755), 0);
    ASSERT_EQ(::chmod(path().toUtf8().constData(), 0666), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        const bool isSomebodyElse = ::setresuid(kNobody, kNobody, kNobody) == 0;
        ::execlp("python3", "python3", "-c",
                 "import socket,sys\n"
                 "s=socket.socket(socket.AF_UNIX); s.connect(sys.argv[1])\n"
                 "try:\n"
                 "    s.sendall(b'{\"active\":\"/evil.m\",\"line\":1}\\n')\n"
                 "    sys.exit(0 if s.recv(1) == b'' else 1)\n"
                 "except (BrokenPipeError, ConnectionResetError):\n"
                 "    sys.exit(0)\n",
                 path().toUtf8().constData(), isSomebodyElse ? nullptr : "not", nullptr);
        ::_exit(2);
    }
    int status = 0;
    ASSERT_TRUE(waitUntil([&] { return ::waitpid(child, &status, WNOHANG) == child; }));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(socket.latest(), std::nullopt);
}

/// The code between the fences of the manual for plug-ins.
QByteArray exampleOfTheManual() {
    const QByteArray page = ScratchEnvironment::read(NAVREL_SOURCE_DIR "/docs/editors.md");
    const qsizetype begin = page.indexOf("```python\n") + 10;
    return page.mid(begin, page.indexOf("```", begin) - begin);
}

TEST(HookExample, thePlugInOfTheManualWorks) {
    const auto python = findTool(QStringLiteral("python3"));
    if (!python) {
        GTEST_SKIP() << "needs python3";
    }
    ScratchEnvironment environment;
    HookSocket socket(*HookSocket::standardPath());
    QProcess plugIn;
    plugIn.start(*python, {QStringLiteral("-c"), QString::fromUtf8(exampleOfTheManual())});
    ASSERT_TRUE(waitUntil([&] { return socket.latest().has_value(); }));
    EXPECT_EQ(socket.latest()->path, "/tmp/example.m");
    EditorOutcome outcome;
    ASSERT_GT(socket.open({"/tmp/b.m", 7, 0, false}, [&](const auto& got) { outcome = got; }), 0);
    EXPECT_TRUE(waitUntil([&] { return outcome.isOpen(); }));
    EXPECT_EQ(outcome.editor, QStringLiteral("Example"));
    EXPECT_EQ(socket.latest()->line, 7);
    plugIn.kill();
    plugIn.waitForFinished();
}

/// The plug-in for Vim, in the real one.
class VimPlugIn : public ::testing::Test {
protected:
    void SetUp() override {
        if (!findTool(QStringLiteral("vim")) || !Terminal::isAvailable()) {
            GTEST_SKIP() << "needs vim and tmux";
        }
        ScratchEnvironment::write(fileA().toUtf8(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB().toUtf8(), ScratchEnvironment::lines(200));
        editor = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{std::make_shared<HookedEditor>(
                *HookSocket::standardPath(), std::chrono::seconds(60))},
            nullptr);
        editor->onMove([this](const EditorPosition& position) { last = position; });
        ASSERT_TRUE(terminal.start(
            {QStringLiteral("vim"), QStringLiteral("--clean"), QStringLiteral("-S"),
             QStringLiteral(NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim"), fileA()}));
    }

    QString fileA() const { return environment.pathOf(QStringLiteral("work/a.m")); }
    QString fileB() const { return environment.pathOf(QStringLiteral("work/b.m")); }
    bool isAt(const QString& file, int line) const {
        return last.path == file && last.line == line;
    }
    bool jump(int line) {
        return awaitOutcome([&](const auto& done) { editor->open(fileB(), line, 0, done); })
            .isOpen();
    }

    ScratchEnvironment environment;
    Terminal terminal{environment.pathOf(QStringLiteral("tmux"))};
    std::unique_ptr<FollowedEditor> editor;
    EditorPosition last;
};

TEST_F(VimPlugIn, keysMoveTheClientAndAJumpLeadsToTheLine) {
    ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 1); }));
    terminal.type({QStringLiteral("4j")});
    ASSERT_TRUE(waitUntil([&] { return isAt(fileA(), 5); }));
    EXPECT_EQ(editor->activeFileName(), QStringLiteral("a.m"));
    EXPECT_TRUE(jump(42));
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 42); }));
    EXPECT_TRUE(terminal.waitForScreen("VISUAL LINE"));

    terminal.type({QStringLiteral("Escape"), QStringLiteral("ihello")});
    ASSERT_TRUE(terminal.waitForScreen("INSERT"));
    EXPECT_TRUE(jump(90)) << "from the middle of typing";
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 90); }));

    editor->back([](const EditorOutcome&) {});
    EXPECT_TRUE(waitUntil([&] { return isAt(fileB(), 42); }));
}

/// A Vim of which each line is read as it comes.
TEST(VimPlugInAlone, aFolderThatIsLeftForAnotherIsSaid) {
    if (!findTool(QStringLiteral("vim")) || !Terminal::isAvailable()) {
        GTEST_SKIP() << "needs vim and tmux";
    }
    const ScratchEnvironment environment;
    QLocalServer server;
    ASSERT_TRUE(server.listen(*HookSocket::standardPath()));
    Terminal terminal(environment.pathOf(QStringLiteral("tmux")));
    ASSERT_TRUE(
        terminal.start({QStringLiteral("vim"), QStringLiteral("--clean"), QStringLiteral("-S"),
                        QStringLiteral(NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim")}));
    ASSERT_TRUE(waitUntil([&] { return server.hasPendingConnections(); }));
    const std::unique_ptr<QLocalSocket> vim(server.nextPendingConnection());
    QStringList folders;
    const auto saysFolders = [&](const QStringList& wanted) {
        return waitUntil([&] {
            while (vim->canReadLine()) {
                const auto message = hookMessageFrom(vim->readLine());
                folders = message && message->kind == HookMessage::Kind::Hello ? message->folders
                                                                               : folders;
            }
            return folders == wanted;
        });
    };
    const QString folder = QDir(environment.path()).canonicalPath();
    ASSERT_TRUE(waitUntil([&] { return vim->canReadLine(); }));
    terminal.type({QStringLiteral(":cd %1").arg(folder), QStringLiteral("Enter")});
    EXPECT_TRUE(saysFolders({folder}));
}

} // namespace
} // namespace navrel
