// What the real program says about itself, with USB daemons and editors that come and go.

#include "app/ProgramVersion.h"
#include "support/process/ToolRunner.h"
#include "tests/FakeUSBDaemon.h"
#include "tests/ForeignListener.h"
#include "tests/RealUSBDaemon.h"
#include "tests/SessionBus.h"
#include "tests/SmallProject.h"
#include "tests/StopProcess.h"
#include "tests/TestDevice.h"
#include "tests/TestWebServer.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/endtoend/HeadlessNeovim.h"
#include "tests/endtoend/NavrelProcess.h"
#include "tests/web/WebClient.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

#include <regex>
#include <unistd.h>

namespace navrel {
namespace {

class StateTest : public ::testing::Test {
protected:
    void SetUp() override {
        project_.writeFile(QStringLiteral("a.m"), "- (void)run {\n}\n");
        project_.addEntry("A", "a.m");
        navrel_.setLastKnownProject(project_.bundle());
    }

    std::string state() const {
        const QString socket = navrel_.runtimeFolder() + QStringLiteral("/nl.kelvane.Navrel.sock");
        return WebClient(socket.toStdString()).ask("GET /api/state HTTP/1.1\r\n\r\n").body;
    }
    /// Waits until the state has a sentence that a pattern fits.
    [[nodiscard]] bool waitForSentence(const std::string& pattern) const {
        const std::regex sentence("\"text\":\"" + pattern + "\"");
        return waitUntil([&] { return std::regex_search(state(), sentence); });
    }

    [[nodiscard]] bool writeProjectFile(const QByteArray& text) const {
        QFile file(project_.bundle() + QStringLiteral("/project.pbxproj"));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    }

    SmallProject project_;
    NavrelProcess navrel_;
};

constexpr char kNoDaemon[] = "No device is found: the USB daemon, usbmuxd, is not running\\.";
constexpr char kNoDevice[] = "No device is attached\\.";

TEST_F(StateTest, followsADeviceOverUSB) {
    FakeUSBDaemon daemon;
    navrel_.setUSBDaemonAddress(daemon.address());
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence(kNoDaemon)) << state();
    ASSERT_TRUE(daemon.start());
    EXPECT_TRUE(waitForSentence(kNoDevice)) << state();
    daemon.connectAnswer = 3;
    daemon.attach(7);
    EXPECT_TRUE(waitForSentence("A device is attached, but no app listens on its port 2345\\."))
        << state();
    daemon.connectAnswer = 0;
    TestDevice device;
    device.adopt(daemon.waitForDeviceConnection());
    ASSERT_TRUE(device.waitUntilServed());
    EXPECT_TRUE(waitForSentence("A device is connected over USB since [0-2][0-9]:[0-5][0-9]\\."))
        << state();
    daemon.stop();
    EXPECT_TRUE(waitForSentence(kNoDaemon)) << state();
}

TEST_F(StateTest, followsDebiansUSBDaemon) {
    RealUSBDaemon daemon;
    if (!daemon.start()) {
        GTEST_SKIP() << "no USB daemon can run here: " << daemon.log().constData();
    }
    navrel_.setUSBDaemonAddress(daemon.address());
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence(kNoDevice)) << state();
    daemon.stop(); // its socket's file stays
    EXPECT_TRUE(waitForSentence(kNoDaemon)) << state();
    ASSERT_TRUE(daemon.start());
    EXPECT_TRUE(waitForSentence(kNoDevice)) << state();
}

TEST_F(StateTest, saysThatTheCompanionIsOnThisMachine) {
    TestDevice device;
    ASSERT_TRUE(device.listen());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(device.waitForConnection());
    EXPECT_TRUE(waitForSentence("A companion app on this machine is connected since "
                                "[0-2][0-9]:[0-5][0-9]\\."))
        << state();
}

TEST_F(StateTest, saysThatAnotherUserIsInTheCompanionsPlace) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const ForeignListener listener;
    if (!listener.isReady()) {
        GTEST_SKIP() << "this namespace knows no other user";
    }
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence("Port 2345 of this machine belongs to another user \\([^)]+\\), "
                                "who is not shown your project\\."))
        << state();
}

TEST_F(StateTest, saysWhatTheUpdateServerAnswered) {
    const auto waitForAnswer = [this](const QString& server, const std::string& pattern) {
        navrel_.kill();
        navrel_.setEnvironment(QStringLiteral("NAVREL_SERVER"), server);
        return navrel_.start() && waitForSentence(pattern);
    };
    const TestWebServer current(TestWebServer::text(programVersion().toUtf8()));
    EXPECT_TRUE(waitForAnswer(current.url().toString(), "This is the latest version\\."))
        << state();
    const TestWebServer newer(TestWebServer::text("99.0"));
    EXPECT_TRUE(waitForAnswer(newer.url().toString(), "Another version is available: 99\\.0\\."))
        << state();
    EXPECT_TRUE(waitForAnswer(QStringLiteral("http://127.0.0.1:9"),
                              "The update server did not answer at start-up\\."))
        << state();
}

TEST_F(StateTest, followsTheProjectAndItsSources) {
    project_.writeFile(QStringLiteral("a.m"), "@interface Tide : NSObject\n@end\n");
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence("App is loaded: 1 file\\.")) << state();
    EXPECT_TRUE(waitForSentence("1 symbol in 1 file can be searched\\.")) << state();
    ASSERT_TRUE(writeProjectFile("{ objects = {\n<<<<<<< ours\n"));
    EXPECT_TRUE(waitForSentence("App cannot be read at line 2: .*\\.")) << state();
    EXPECT_TRUE(waitForSentence("There are no sources to search\\.")) << state();
    project_.writeFile(QStringLiteral("b.m"), "\n");
    project_.addEntry("B", "b.m"); // which writes the project again
    EXPECT_TRUE(waitForSentence("App is loaded: 2 files\\.")) << state();
}

TEST_F(StateTest, countsTheFilesWhileItReadsThem) {
    // Of a kind that the store does not read, so that Navrel answers meanwhile.
    QByteArray functions;
    for (int function = 0; function < 2000; ++function) {
        functions += "void rise" + QByteArray::number(function) + "() {\n    tide += 1;\n}\n";
    }
    for (int file = 0; file < 300; ++file) {
        const QByteArray name = "f" + QByteArray::number(file);
        project_.writeFile(QString::fromUtf8(name) + QStringLiteral(".cc"), functions);
        project_.addEntry(name.toUpper(), name + ".cc");
    }
    const std::regex isReading("\"text\":\"Navrel is reading App: [1-9][0-9]* files? so far\\.\"");
    const auto isSeen = [&](const std::string& text) {
        return std::regex_search(text, isReading) &&
               text.find("Navrel is reading the sources.") != std::string::npos;
    };
    // It may be over before it was looked at: then once more.
    bool wasSeen = false;
    for (int start = 0; start < 20 && !wasSeen; ++start) {
        navrel_.kill();
        ASSERT_TRUE(navrel_.start());
        EXPECT_TRUE(waitUntil([&] {
            const std::string text = state();
            wasSeen = wasSeen || isSeen(text);
            return wasSeen || text.find("App is loaded: 301 files.") != std::string::npos;
        }));
    }
    EXPECT_TRUE(wasSeen);
}

TEST_F(StateTest, saysThatThereIsNoProject) {
    // No editor that happens to run on this machine.
    navrel_.setEnvironment(QStringLiteral("NAVREL_EDITOR"), QStringLiteral("desktop"));
    navrel_.writeDefaults("[General]\nautomaticProjectSelection=false\n");
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence("No project is chosen\\.")) << state();
    EXPECT_TRUE(waitForSentence("No editor is asked while no browser or terminal follows it\\."))
        << state();
    EXPECT_TRUE(waitForSentence("No browser can reach Navrel\\.")) << state();
    EXPECT_TRUE(waitForSentence("Navrel asks no server for updates\\.")) << state();
    EXPECT_TRUE(waitForSentence("There are no sources to search\\.")) << state();
    navrel_.kill();
    navrel_.writeDefaults("[General]\nautomaticProjectSelection=true\nlastKnownProject=\n");
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence("The editor shows no project\\.")) << state();
}

TEST_F(StateTest, saysWhereBrowsersReachIt) {
    navrel_.setEnvironment(QStringLiteral("NAVREL_BROWSER"), QStringLiteral("machine"));
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence("Paired browsers on this machine can reach Navrel at "
                                "http://[^ ]*:2346: 0 paired, 0 connected\\."))
        << state();
}

/// The program asks the editor once a second, since it follows the editor's project.
class EditorStateTest : public StateTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StateTest::SetUp());
        navrel_.writeDefaults("[General]\nautomaticProjectSelection=true\nlastKnownProject=\"" +
                              project_.bundle().toUtf8() + "\"\n");
    }

    QString file() const { return project_.folder() + QStringLiteral("/a.m"); }

    ScratchEnvironment environment_;
};

class NeovimStateTest : public EditorStateTest {
protected:
    void SetUp() override {
        if (!HeadlessNeovim::isAvailable()) {
            GTEST_SKIP() << "needs nvim";
        }
        ASSERT_NO_FATAL_FAILURE(EditorStateTest::SetUp());
        environment_.set("NVIM", socket().toUtf8());
    }

    QString socket() const { return environment_.pathOf(QStringLiteral("neovim")); }
    [[nodiscard]] bool startNeovim() { return neovim_.start(socket(), file()); }

    HeadlessNeovim neovim_;
};

constexpr char kNoEditor[] = "No editor answers\\.";
constexpr char kNeovimAnswers[] = "Neovim answers\\.";

TEST_F(NeovimStateTest, followsAnEditorThatStartsAndDies) {
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
    ASSERT_TRUE(startNeovim());
    EXPECT_TRUE(waitForSentence(kNeovimAnswers)) << state();
    neovim_.kill();
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
}

TEST_F(NeovimStateTest, followsAnEditorThatIsStopped) {
    ASSERT_TRUE(startNeovim());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitForSentence(kNeovimAnswers)) << state();
    ASSERT_TRUE(stopProcess(neovim_.processID()));
    EXPECT_TRUE(waitForSentence("Neovim is stopped\\.")) << state();
    ASSERT_TRUE(continueProcess(neovim_.processID()));
    EXPECT_TRUE(waitForSentence(kNeovimAnswers)) << state();
}

TEST_F(NeovimStateTest, followsAnEditorThatIsBusy) {
    ASSERT_TRUE(startNeovim());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitForSentence(kNeovimAnswers)) << state();
    // Half a command: the name of a register is to follow.
    neovim_.valueOf(QStringLiteral("feedkeys('\"')"));
    EXPECT_TRUE(waitForSentence("Neovim does not answer\\.")) << state();
}

/// Any other editor, with the same runtime folder as the program.
class OtherEditorStateTest : public EditorStateTest {
protected:
    ~OtherEditorStateTest() override {
        goOn();
        endEditor();
    }

    [[nodiscard]] bool startEditor(const QString& program, const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), navrel_.runtimeFolder());
        editor_.setProcessEnvironment(environment);
        editor_.setStandardOutputFile(QProcess::nullDevice());
        editor_.setStandardErrorFile(QProcess::nullDevice());
        editor_.start(program, arguments + QStringList{file()});
        return editor_.waitForStarted();
    }
    void goOn() const { continueProcess(editor_.processId()); }
    void endEditor() {
        editor_.kill();
        editor_.waitForFinished();
    }

    QProcess editor_;
};

TEST_F(OtherEditorStateTest, followsEmacs) {
    if (!findTool(QStringLiteral("emacs"))) {
        GTEST_SKIP() << "needs emacs";
    }
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
    ASSERT_TRUE(startEditor(QStringLiteral("emacs"),
                            {QStringLiteral("-Q"), QStringLiteral("--fg-daemon")}));
    EXPECT_TRUE(waitForSentence("Emacs answers\\.")) << state();
    ASSERT_TRUE(stopProcess(editor_.processId()));
    EXPECT_TRUE(waitForSentence("Emacs is stopped\\.")) << state();
    goOn();
    EXPECT_TRUE(waitForSentence("Emacs answers\\.")) << state();

    // Busy for as long as it runs.
    const QString waiting = QStringLiteral("(call-process \"tail\" nil nil nil \"-f\" "
                                           "(format \"--pid=%d\" (emacs-pid)) \"/dev/null\")");
    QProcess client;
    client.setProcessEnvironment(editor_.processEnvironment());
    client.start(QStringLiteral("emacsclient"), {QStringLiteral("--eval"), waiting});
    EXPECT_TRUE(waitForSentence("Emacs does not answer\\.")) << state();
    endEditor();
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
    client.waitForFinished();
}

TEST_F(OtherEditorStateTest, followsVim) {
    if (!findTool(QStringLiteral("vim"))) {
        GTEST_SKIP() << "needs vim";
    }
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
    ASSERT_TRUE(startEditor(QStringLiteral("vim"),
                            {QStringLiteral("--not-a-term"), QStringLiteral("--clean"),
                             QStringLiteral("-S"),
                             QStringLiteral(NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim")}));
    EXPECT_TRUE(waitForSentence("Vim answers\\.")) << state();
    ASSERT_TRUE(stopProcess(editor_.processId()));
    EXPECT_TRUE(waitForSentence("Vim is stopped\\.")) << state();
    goOn();
    EXPECT_TRUE(waitForSentence("Vim answers\\.")) << state();
    endEditor();
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
}

TEST_F(OtherEditorStateTest, followsKate) {
    if (!findTool(QStringLiteral("kate")) || !SessionBus::isAvailable()) {
        GTEST_SKIP() << "needs kate and dbus-daemon";
    }
    const SessionBus bus;
    environment_.set("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    environment_.set("QT_QPA_PLATFORM", "offscreen");
    navrel_.setEnvironment(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
    ASSERT_TRUE(startEditor(QStringLiteral("kate"), {QStringLiteral("-n")}));
    EXPECT_TRUE(waitForSentence("Kate answers\\.")) << state();
    ASSERT_TRUE(stopProcess(editor_.processId()));
    EXPECT_TRUE(waitForSentence("Kate does not answer\\.")) << state();
    goOn();
    EXPECT_TRUE(waitForSentence("Kate answers\\.")) << state();
    endEditor();
    EXPECT_TRUE(waitForSentence(kNoEditor)) << state();
}

} // namespace
} // namespace navrel
