// The real program's status item: on a session bus with the real daemon, and on a real X server.

#include "desktop/tray/DBusMenuTypes.h"
#include "support/process/ToolRunner.h"
#include "tests/RecordingTool.h"
#include "tests/SessionBus.h"
#include "tests/SmallProject.h"
#include "tests/TestWebServer.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/endtoend/HeadlessNeovim.h"
#include "tests/endtoend/NavrelProcess.h"
#include "tests/endtoend/XServer.h"

#include <QDBusObjectPath>
#include <QHostAddress>
#include <QSettings>
#include <QTemporaryFile>
#include <QUdpSocket>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace navrel {
namespace {

const QString kItemPath = QStringLiteral("/StatusNotifierItem");
const QString kItemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString kMenuInterface = QStringLiteral("com.canonical.dbusmenu");

/// The program on a project with two shortcuts, beside a session bus.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "needs dbus-daemon";
        }
        registerDBusMenuTypes();
        bus_ = std::make_unique<SessionBus>();
        client_ = std::make_unique<QDBusConnection>(bus_->connect());
        panel_ = std::make_unique<FakePanel>(*client_);
        navrel_.setEnvironment(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus_->address());
        project_.writeFile(QStringLiteral("a.m"), "\n// navrel: fix_me & \"all\"\n");
        project_.writeFile(QStringLiteral("b.m"), "\n\n\n// navrel: then this\n");
        project_.addEntry("A", "a.m");
        project_.addEntry("B", "b.m");
        navrel_.setLastKnownProject(project_.bundle());
    }

    bool isOnPanel() {
        return waitUntil([this] { return panel_->items.size() == 1; });
    }
    QDBusMessage askMenu(const char* method, const QVariantList& arguments) {
        const QVariant path = propertyOverBus(*client_, panel_->items.value(0), kItemPath,
                                              kItemInterface, QStringLiteral("Menu"));
        return callOverBus(*client_, panel_->items.value(0),
                           qvariant_cast<QDBusObjectPath>(path).path(), kMenuInterface,
                           QString::fromLatin1(method), arguments);
    }
    QList<DBusMenuLayoutItem> entries() {
        const auto reply = askMenu("GetLayout", {0, -1, QStringList()});
        return qdbus_cast<DBusMenuLayoutItem>(reply.arguments().value(1)).children;
    }
    QStringList labels() {
        QStringList labels;
        for (const auto& entry : entries()) {
            labels.append(entry.properties.value(QStringLiteral("label")).toString());
        }
        labels.removeAll(QString());
        return labels;
    }
    bool waitForLabel(const QString& label) {
        return waitUntil([&] { return labels().contains(label); });
    }
    void click(const QString& label) {
        for (const auto& entry : entries()) {
            if (entry.properties.value(QStringLiteral("label")) == label) {
                askMenu("Event", {entry.id, QStringLiteral("clicked"),
                                  QVariant::fromValue(QDBusVariant(0)), 0U});
                return;
            }
        }
        ADD_FAILURE() << "No entry " << qPrintable(label);
    }

    ScratchEnvironment environment_;
    SmallProject project_;
    NavrelProcess navrel_;
    std::unique_ptr<SessionBus> bus_;
    std::unique_ptr<QDBusConnection> client_;
    std::unique_ptr<FakePanel> panel_;
};

const QString kFirstShortcut = QStringLiteral("fix__me & \"all\"");
const QString kSecondShortcut = QStringLiteral("then this");

TEST_F(ShellTest, theMenuIsReadOverTheBus) {
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    EXPECT_TRUE(waitForLabel(QStringLiteral("Current project: App.xcodeproj")));
    const QStringList shown = labels();
    EXPECT_TRUE(shown.value(0).startsWith(QStringLiteral("Navrel (v"))) << qPrintable(shown[0]);
    EXPECT_EQ(shown.mid(2),
              (QStringList{QStringLiteral("Choose Project…"),
                           QStringLiteral("Select Project Automatically"),
                           QStringLiteral("Phone or Tablet…"), QStringLiteral("Manual"),
                           QStringLiteral("About Navrel"), QStringLiteral("Find iOS Device"),
                           QStringLiteral("Quit Navrel")}));
}

TEST_F(ShellTest, aShortcutThatIsChosenOpensAtItsLineInTheEditor) {
    if (!HeadlessNeovim::isAvailable()) {
        GTEST_SKIP() << "needs nvim";
    }
    const QString socket = environment_.pathOf(QStringLiteral("neovim"));
    environment_.set("NVIM", socket.toUtf8());
    HeadlessNeovim neovim;
    ASSERT_TRUE(neovim.start(socket, project_.folder() + QStringLiteral("/a.m")));
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    ASSERT_TRUE(waitForLabel(kSecondShortcut));
    EXPECT_EQ(labels().mid(9), (QStringList{kFirstShortcut, kSecondShortcut}));

    click(kSecondShortcut);
    const QByteArray wanted = project_.folder().toUtf8() + "/b.m4V";
    EXPECT_TRUE(waitUntil([&] {
        return neovim.valueOf(QStringLiteral("expand('%:p') . line('.') . mode()")) == wanted;
    }));
}

TEST_F(ShellTest, aPanelThatStartsLaterOrAgainShowsTheItem) {
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([this] { return QFile::exists(navrel_.storeFile()); }));
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(panel_->appear());
        ASSERT_TRUE(isOnPanel());
        EXPECT_TRUE(waitForLabel(QStringLiteral("Quit Navrel")));
        panel_->disappear();
    }
}

TEST_F(ShellTest, theQuitEntryStoresAutomaticSelectionAndEndsTheProgram) {
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    const auto preference = [this] {
        return QSettings(navrel_.defaultsFile(), QSettings::IniFormat)
            .value(QStringLiteral("automaticProjectSelection"))
            .toString();
    };
    ASSERT_EQ(preference(), QStringLiteral("false"));
    click(QStringLiteral("Select Project Automatically"));
    click(QStringLiteral("Quit Navrel"));
    EXPECT_EQ(navrel_.waitForExit(), 0) << navrel_.log().data();
    EXPECT_EQ(preference(), QStringLiteral("true"));
}

TEST_F(ShellTest, theUpdateAlertComesBeforeTheItem) {
    std::atomic<bool> mayAnswer = false;
    const TestWebServer server([&](int connection, const TestWebServer& itself) {
        while (!mayAnswer && !itself.isEnding()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        TestWebServer::text("99.0")(connection, itself);
    });
    navrel_.setEnvironment(QStringLiteral("NAVREL_SERVER"), server.url().toString());
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([&] { return !server.requests().empty(); }));
    EXPECT_TRUE(panel_->items.isEmpty());
    mayAnswer = true;
    ASSERT_TRUE(isOnPanel());
    // Without a display the alert counts as dismissed.
    EXPECT_TRUE(navrel_.log().contains("No display to ask on: Navrel update"));
}

TEST_F(ShellTest, aServerThatStallsHoldsTheItemForThreeSecondsAtTheMost) {
    const TestWebServer server(TestWebServer::stall());
    navrel_.setEnvironment(QStringLiteral("NAVREL_SERVER"), server.url().toString());
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([&] { return !server.requests().empty(); }));
    ASSERT_TRUE(isOnPanel()); // the server stalls for as long as the test lasts
    EXPECT_FALSE(navrel_.log().contains("Navrel update"));
}

TEST_F(ShellTest, aResolverThatNeverAnswersHoldsNeitherStartNorQuit) {
    QUdpSocket resolver;
    if (!resolver.bind(QHostAddress::LocalHost, 53)) {
        GTEST_SKIP() << "needs the port of a name server";
    }
    QTemporaryFile configuration;
    ASSERT_TRUE(configuration.open());
    configuration.write("nameserver 127.0.0.1\noptions timeout:30 attempts:5\n");
    configuration.close();
    if (!navrel_.replaceFile(QStringLiteral("/etc/resolv.conf"), configuration.fileName())) {
        GTEST_SKIP() << "needs leave to mount";
    }
    navrel_.setEnvironment(QStringLiteral("NAVREL_SERVER"),
                           QStringLiteral("http://updates.example.org"));
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([&] { return resolver.hasPendingDatagrams(); }));
    ASSERT_TRUE(isOnPanel());
    click(QStringLiteral("Quit Navrel"));
    EXPECT_EQ(navrel_.waitForExit(), 0); // which waits for less than the resolver
}

TEST_F(ShellTest, theManualEntryHandsItsAddressToTheDesktop) {
    const RecordingTool opener(QStringLiteral("xdg-open"));
    // Nobody listens there: there is no update, and nothing to wait for.
    navrel_.setEnvironment(QStringLiteral("NAVREL_SERVER"), QStringLiteral("http://127.0.0.1:9"));
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    click(QStringLiteral("Manual"));
    ASSERT_TRUE(waitUntil([&] { return !opener.arguments().isEmpty(); }));
    const QByteArray address = opener.arguments().constFirst();
    EXPECT_TRUE(address.startsWith("http://127.0.0.1:9/apps/Navrel/Navrel-v")) << address.data();
    EXPECT_TRUE(address.endsWith(".pdf")) << address.data();
}

/// The same with a display.
class ShellOnDisplayTest : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        if (!XServer::isAvailable()) {
            GTEST_SKIP() << "needs Xvfb and xwininfo";
        }
        display_ = std::make_unique<XServer>();
        navrel_.setEnvironment(QStringLiteral("DISPLAY"), display_->display());
    }

    /// Whether the program shows a window: not the tray's icon, which is a small one.
    bool isWindowShown() const {
        const auto widths = display_->widthsOfShownWindows(QStringLiteral("Navrel"));
        return std::any_of(widths.begin(), widths.end(), [](int width) { return width > 100; });
    }

    std::unique_ptr<XServer> display_;
};

TEST_F(ShellOnDisplayTest, whereNothingShowsStatusItemsAWindowDoesUntilAPanelComes) {
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([this] { return isWindowShown(); }));
    ASSERT_TRUE(panel_->appear());
    EXPECT_TRUE(waitUntil([this] { return !isWindowShown(); }));
    panel_->disappear();
    EXPECT_TRUE(waitUntil([this] { return isWindowShown(); }));
}

TEST_F(ShellOnDisplayTest, aPanelThatWasThereFirstLeavesAWindow) {
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    EXPECT_TRUE(waitForLabel(QStringLiteral("Current project: App.xcodeproj")));
    EXPECT_EQ(panel_->items.size(), 1);
    EXPECT_FALSE(isWindowShown());
    panel_->disappear();
    EXPECT_TRUE(waitUntil([this] { return isWindowShown(); }));
}

TEST_F(ShellOnDisplayTest, aPanelThatNeverAnswersLeavesAWindow) {
    panel_->setManners(FakePanel::Manners::Mute);
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitUntil([this] { return isWindowShown(); }));
    EXPECT_GT(panel_->refusals, 0);
}

TEST_F(ShellOnDisplayTest, aSessionBusThatEndsLeavesAWindow) {
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    EXPECT_TRUE(waitForLabel(QStringLiteral("Current project: App.xcodeproj")));
    bus_->end();
    EXPECT_TRUE(waitUntil([this] { return isWindowShown(); }));
    EXPECT_TRUE(navrel_.isRunning());
}

TEST_F(ShellOnDisplayTest, theProgramIsQuitWhileAPanelAsks) {
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(isOnPanel());
    click(QStringLiteral("Choose Project…"));
    const QString title = QStringLiteral("Select *.xcodeproj file to use with Navrel");
    ASSERT_TRUE(waitUntil([&] { return !display_->widthsOfShownWindows(title).isEmpty(); }));
    click(QStringLiteral("Quit Navrel"));
    EXPECT_EQ(navrel_.waitForExit(), 0);
}

TEST_F(ShellOnDisplayTest, anX11TrayShowsTheItemUntilItGoes) {
    const QString trayer = QStringLiteral("trayer");
    if (!findTool(trayer)) {
        GTEST_SKIP() << "needs trayer";
    }
    display_->startClient(trayer, {});
    ASSERT_TRUE(navrel_.start());
    EXPECT_TRUE(waitUntil([this] {
        return display_->windowsWithin(QStringLiteral("panel")).contains("navrel");
    })) << display_->allWindows().data();
    EXPECT_FALSE(isWindowShown());

    display_->endClient();
    EXPECT_TRUE(waitUntil([this] { return isWindowShown(); }));
}

TEST_F(ShellOnDisplayTest, theUpdateAlertHoldsTheItemUntilItIsAnswered) {
    const TestWebServer server(TestWebServer::text("99.0"));
    navrel_.setEnvironment(QStringLiteral("NAVREL_SERVER"), server.url().toString());
    ASSERT_TRUE(panel_->appear());
    ASSERT_TRUE(navrel_.start());
    ASSERT_TRUE(waitUntil([this] { return isWindowShown(); }));
    EXPECT_TRUE(panel_->items.isEmpty());
}

} // namespace
} // namespace navrel
