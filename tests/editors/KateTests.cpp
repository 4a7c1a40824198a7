// The real Kate, without a display, on a session bus of its own.

#include "editors/FollowedEditor.h"
#include "editors/kate/KateEditor.h"
#include "support/process/ToolRunner.h"
#include "tests/SessionBus.h"
#include "tests/StopProcess.h"
#include "tests/WaitUntil.h"
#include "tests/editors/AwaitOutcome.h"
#include "tests/editors/ScratchEnvironment.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QProcess>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace navrel {
namespace {

using Kind = EditorOutcome::Kind;

/// How a request to it ended.
template <typename Request>
Kind kateOutcomeOf(Request request) {
    const EditorOutcome outcome = awaitOutcome(request);
    EXPECT_TRUE(outcome.editor.isEmpty() || outcome.editor == QStringLiteral("Kate"));
    return outcome.kind;
}

TEST(KateEditor, withoutABusOrAKateNoneRuns) {
    KateEditor nowhere(QDBusConnection(QStringLiteral("no such connection")));
    EXPECT_EQ(nowhere.activeFile(QDeadlineTimer(1000)), std::nullopt);
    EXPECT_FALSE(nowhere.open("/a.m", 1, QDeadlineTimer(1000)));
    if (!SessionBus::isAvailable()) {
        GTEST_SKIP() << "needs dbus-daemon";
    }
    SessionBus bus;
    KateEditor nobody(bus.connect(), kPatience);
    EXPECT_EQ(nobody.activeFile(QDeadlineTimer(kPatience)), std::nullopt);
    EXPECT_EQ(nobody.jump({"/a.m", 1, 0, false}, QDeadlineTimer(kPatience)).outcome.kind,
              Kind::notRunning);
}

/// A Kate that is on the bus, counts what it is asked and answers with an error each time: alive as
/// little as one that is stopped, without anyone waiting for that. Or one that shows a file.
class FakeKate final : public QDBusVirtualObject {
public:
    explicit FakeKate(const QDBusConnection& bus) : bus_(bus) {}
    bool appear() {
        for (const char* const path : {"/kate", "/MainApplication"}) {
            bus_.registerVirtualObject(QLatin1String(path), this, QDBusConnection::SubPath);
        }
        return bus_.registerService(QStringLiteral("org.kde.kate-1"));
    }
    int questions() const { return questions_; }
    /// From now on it answers, and shows this file whatever it is asked to open, as it does while
    /// it asks whether to save the file.
    void show(const QString& file) { file_ = file; }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        ++questions_;
        return connection.send(file_.isEmpty()
                                   ? message.createErrorReply(QDBusError::Failed, QString())
                                   : message.createReply(answerTo(message)));
    }

private:
    QVariant answerTo(const QDBusMessage& message) const {
        if (message.member() == QStringLiteral("Introspect")) {
            return QStringLiteral("<node><node name=\"MainWindow_1\"/></node>");
        }
        if (message.member() == QStringLiteral("Get")) {
            const bool isFile = message.arguments().value(1) == QStringLiteral("windowFilePath");
            return QVariant::fromValue(QDBusVariant(isFile ? QVariant(file_) : QVariant(true)));
        }
        return QStringLiteral("a token");
    }

    QDBusConnection bus_;
    int questions_ = 0;
    QString file_;
};

class KateStandIn : public ::testing::Test {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "needs dbus-daemon";
        }
        bus = std::make_unique<SessionBus>();
        kate = std::make_unique<FakeKate>(bus->connect());
        ASSERT_TRUE(kate->appear());
        editor = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{
                std::make_shared<KateEditor>(bus->connect(), kPatience)},
            nullptr);
    }
    /// The questions of several rounds.
    int questionsMeanwhile() const {
        const int before = kate->questions();
        const QDeadlineTimer severalRounds(std::chrono::seconds(2));
        waitUntil([&] { return severalRounds.hasExpired(); });
        return kate->questions() - before;
    }

    std::unique_ptr<SessionBus> bus;
    std::unique_ptr<FakeKate> kate;
    std::unique_ptr<FollowedEditor> editor;
};

TEST_F(KateStandIn, itIsAskedOnlyWhileSomebodyFollows) {
    EXPECT_EQ(questionsMeanwhile(), 0) << "nobody follows";
    editor->onMove([](const EditorPosition&) {});
    EXPECT_TRUE(waitUntil([&] { return kate->questions() >= 3; }));
    editor->onMove(nullptr);
    EXPECT_LE(questionsMeanwhile(), 1) << "one may be under way";
}

TEST_F(KateStandIn, eachJumpSaysThatItDoesNotAnswer) {
    // This thread waits for the answer that it would have to give.
    EXPECT_EQ(editor->activeFileName(), std::nullopt);
    for (int jump = 0; jump < 3; ++jump) {
        EXPECT_EQ(kateOutcomeOf([&](const auto& done) {
                      editor->open(QStringLiteral("/a.txt"), 3, 0, done);
                  }),
                  Kind::asksUser);
    }
}

TEST_F(KateStandIn, oneThatStaysAtAnotherFileWaitsForItsUser) {
    kate->show(QStringLiteral("/b.txt"));
    const auto jumpTo = [&](const QString& path) {
        return kateOutcomeOf([&](const auto& done) { editor->open(path, 3, 0, done); });
    };
    EXPECT_EQ(jumpTo(QStringLiteral("/a.txt")), Kind::asksUser);
    EXPECT_EQ(jumpTo(QStringLiteral("/b.txt")), Kind::opened);
}

class Kate : public ::testing::Test {
protected:
    void SetUp() override {
        if (!findTool(QStringLiteral("kate")) || !SessionBus::isAvailable()) {
            GTEST_SKIP() << "needs kate and dbus-daemon";
        }
        ScratchEnvironment::write(fileA().toUtf8(), ScratchEnvironment::lines(200));
        ScratchEnvironment::write(fileB().toUtf8(), ScratchEnvironment::lines(200));
        bus = std::make_unique<SessionBus>();
        environment.set("DBUS_SESSION_BUS_ADDRESS", bus->address().toUtf8());
        environment.set("QT_QPA_PLATFORM", "offscreen");
        kate.setStandardErrorFile(QProcess::nullDevice());
        kate.start(QStringLiteral("kate"), {QStringLiteral("-n"), fileA()});
        editor = std::make_unique<FollowedEditor>(
            std::vector<std::shared_ptr<RunningEditor>>{
                std::make_shared<KateEditor>(bus->connect(), kPatience)},
            nullptr);
        editor->onMove([this](const EditorPosition& position) { last = position; });
        ASSERT_TRUE(waitUntil([&] { return last && last->path == fileA(); }));
    }
    ~Kate() override {
        editor = nullptr;
        continueProcess(kate.processId());
        kate.kill();
        kate.waitForFinished();
    }

    // No sources: for those Kate asks whether it may start a language server.
    QString fileA() const { return environment.pathOf(QStringLiteral("work/a.txt")); }
    QString fileB() const { return environment.pathOf(QStringLiteral("work/b: 100%.txt")); }

    Kind open(const QString& file, int line, int column = 0) {
        return kateOutcomeOf([&](const auto& done) { editor->open(file, line, column, done); });
    }
    Kind back() {
        return kateOutcomeOf([&](const auto& done) { editor->back(done); });
    }
    bool shows(const QString& file) {
        return waitUntil([&] { return last && last->path == file; });
    }
    /// Whether it says so in the end: on a busy machine the first question may find no answer.
    bool names(const QString& file) {
        return waitUntil([&] { return editor->activeFileName() == file; });
    }

    /// What Kate writes when it quits: the cursors of its documents, and the lines around them.
    QByteArray sessionAfterQuitting() {
        const auto connection = bus->connect();
        const QString service = QStringLiteral("org.kde.kate-%1").arg(kate.processId());
        callOverBus(connection, service, QStringLiteral("/kate/MainWindow_1"),
                    QStringLiteral("org.kde.kate.KateMainWindow"), QStringLiteral("slotFileQuit"));
        EXPECT_TRUE(waitUntil([&] { return kate.state() == QProcess::NotRunning; }));
        return ScratchEnvironment::read(
            environment.bytesOf("home/.local/share/kate/anonymous.katesession"));
    }

    ScratchEnvironment environment;
    std::unique_ptr<SessionBus> bus;
    QProcess kate;
    std::unique_ptr<FollowedEditor> editor;
    std::optional<EditorPosition> last;
};

TEST_F(Kate, aJumpLeadsToTheLineAndIsFollowed) {
    EXPECT_EQ(open(fileB(), 42), Kind::opened);
    EXPECT_TRUE(shows(fileB()));
    EXPECT_TRUE(names(QStringLiteral("b: 100%.txt")));
    const QByteArray session = sessionAfterQuitting();
    EXPECT_TRUE(session.contains("CursorLine=41")) << "it counts from 0";
    EXPECT_TRUE(session.contains("work/b:")) << session.constData();
    // Its process may be gone a moment before its name.
    EXPECT_TRUE(waitUntil([&] { return open(fileB(), 42) == Kind::notRunning; }));
}

TEST_F(Kate, theWayBackLeadsThroughWhereItWasLedTo) {
    EXPECT_EQ(open(fileB(), 42, 3), Kind::opened);
    ASSERT_TRUE(shows(fileB()));
    EXPECT_EQ(open(fileB(), 90), Kind::opened);
    EXPECT_EQ(back(), Kind::opened);
    EXPECT_EQ(back(), Kind::opened);
    EXPECT_TRUE(shows(fileA()));
    EXPECT_EQ(back(), Kind::refused);
    const QByteArray session = sessionAfterQuitting();
    EXPECT_TRUE(session.contains("CursorLine=41"));
    EXPECT_TRUE(session.contains("CursorColumn=2")) << session.constData();
}

TEST_F(Kate, oneThatIsStoppedShowsWhatItShowedAndIsNotAskedToOpen) {
    ASSERT_TRUE(names(QStringLiteral("a.txt")));
    ASSERT_TRUE(stopProcess(kate.processId()));
    EXPECT_EQ(editor->activeFileName(), QStringLiteral("a.txt"));
    EXPECT_EQ(editor->activeFileName(), QStringLiteral("a.txt"));
    constexpr std::chrono::seconds enoughToFindIt(2);
    FollowedEditor hasty({std::make_shared<KateEditor>(bus->connect(), enoughToFindIt)}, nullptr);
    // On a busy machine the bus itself may take as long: then nobody knows of a Kate.
    EXPECT_TRUE(waitUntil([&] {
        const Kind kind = kateOutcomeOf([&](const auto& done) { hasty.open(fileB(), 3, 0, done); });
        EXPECT_NE(kind, Kind::opened);
        return kind == Kind::asksUser;
    }));
    ASSERT_TRUE(continueProcess(kate.processId()));
    EXPECT_FALSE(sessionAfterQuitting().contains("work/b:")) << "it opened the file all the same";
}

} // namespace
} // namespace navrel
