// What is the case in a world that the test has in hand, and the sentence that says so.

#include "app/DeviceFacts.h"
#include "app/EditorFacts.h"
#include "app/StateSentences.h"
#include "support/dispatch/DispatchQueue.h"
#include "tests/FakeUSBDaemon.h"
#include "tests/app/ServedProject.h"
#include "transport/usb/PTUSBHub.h"
#include "transport/usb/daemon/USBDaemonKeeper.h"

namespace navrel {
namespace {

/// A USB daemon, a simulator and a user of the test's choice.
class DeviceFactsTest : public ServedProject {
protected:
    DeviceFactsTest() {
        hub_ = PTUSBHub::create(
            std::make_shared<USBDaemonKeeper>(*USBDaemonAddress::fromText(daemon_.address())));
        loopbackPeer_ = [this](int socket) { return peer_.value_or(systemLoopbackPeer(socket)); };
    }

    void TearDown() override {
        daemon_.stop();
        hub_ = nullptr;
    }

    void launchAndListen() {
        launchUnconnected();
        hub_->listenOnQueue(DispatchQueue::mainQueue(), nullptr, nullptr);
    }

    QString sentence() const {
        ProgramFacts facts;
        delegate_->addFacts(facts);
        return sentenceOf(facts.device).text;
    }
    [[nodiscard]] bool waitForSentence(const char* expected) {
        return waitWhileTimePasses([&] { return sentence() == QString::fromUtf8(expected); });
    }

    FakeUSBDaemon daemon_;
    std::optional<LoopbackPeer> peer_;
};

constexpr char kNoDaemon[] = "No device is found: the USB daemon, usbmuxd, is not running.";
constexpr char kNoDevice[] = "No device is attached.";
constexpr char kSilent[] = "A device is attached, but no app listens on its port 2345.";
constexpr char kConnected[] = "A device is connected over USB.";

TEST_F(DeviceFactsTest, followTheDaemonAndItsDevices) {
    launchAndListen();
    EXPECT_TRUE(waitForSentence(kNoDaemon)) << qUtf8Printable(sentence());
    ASSERT_TRUE(daemon_.start());
    EXPECT_TRUE(waitForSentence(kNoDevice)) << qUtf8Printable(sentence());
    daemon_.connectAnswer = 3; // refused: no app listens there
    daemon_.attach(7);
    EXPECT_TRUE(waitForSentence(kSilent)) << qUtf8Printable(sentence());
    daemon_.connectAnswer = 0;
    EXPECT_TRUE(waitForSentence(kConnected)) << qUtf8Printable(sentence());
    daemon_.stop(); // its socket's file stays
    EXPECT_TRUE(waitForSentence(kNoDaemon)) << qUtf8Printable(sentence());
}

TEST_F(DeviceFactsTest, sayThatTheCompanionIsOnThisMachine) {
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(device_.listen());
    launchAndListen();
    ASSERT_TRUE(device_.waitForConnection());
    EXPECT_TRUE(waitForSentence("A companion app on this machine is connected."))
        << qUtf8Printable(sentence());
}

TEST_F(DeviceFactsTest, nameTheUserWhoIsInTheCompanionsPlace) {
    ASSERT_TRUE(daemon_.start());
    ASSERT_TRUE(device_.listen());
    peer_ = LoopbackPeer{1, false};
    launchAndListen();
    EXPECT_TRUE(waitForSentence("Port 2345 of this machine belongs to another user (daemon), who "
                                "is not shown your project."))
        << qUtf8Printable(sentence());
}

class EditorInHand final : public Editor {
public:
    QString shownName;
    Presence shownPresence = Presence::answers;
    std::optional<EditorPosition> shownPosition;

    std::optional<QString> activeProjectPath() override { return std::nullopt; }
    std::optional<QString> activeFileName() override { return std::nullopt; }
    void openFile(const QString&, std::optional<int>) override {}
    QString name() override { return shownName; }
    Presence presence() override { return shownPresence; }
    std::optional<EditorPosition> position() override { return shownPosition; }
};

TEST(EditorFacts, sayWhoAnswersAndWhoDoesNot) {
    EditorInHand editor;
    const auto sentence = [&](bool isAsked) {
        return sentenceOf(editorFacts(editor, isAsked)).text;
    };
    EXPECT_EQ(sentence(false),
              QStringLiteral("No editor is asked while no browser or terminal follows it."));
    EXPECT_EQ(sentence(true), QStringLiteral("No editor answers."));
    editor.shownPosition = EditorPosition();
    EXPECT_EQ(sentence(true), QStringLiteral("The editor answers."));
    editor.shownName = QStringLiteral("Neovim");
    EXPECT_EQ(sentence(true), QStringLiteral("Neovim answers."));
    editor.shownPresence = Editor::Presence::silent;
    EXPECT_EQ(sentence(true), QStringLiteral("Neovim does not answer."));
    editor.shownPresence = Editor::Presence::stopped;
    EXPECT_EQ(sentence(true), QStringLiteral("Neovim is stopped."));
}

} // namespace
} // namespace navrel
