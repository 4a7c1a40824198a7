// The real program with a device on the cable and a browser at the same time: neither keeps the
// other waiting, and what one changes the other sees.

#include "tests/SessionBus.h"
#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"
#include "tests/web/ServedSite.h"
#include "tests/web/WebClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace navrel {
namespace {

constexpr std::uint16_t kPort = 2346;
constexpr quint32 kMainGroup = 202;
constexpr quint32 kFileTypes = 205;
const QString kNotificationsPath = QStringLiteral("/org/freedesktop/Notifications");

class BrowserTest : public ::testing::Test {
protected:
    void SetUp() override {
        project_.writeFile(QStringLiteral("Tide.h"), "@interface Tide : NSObject\n@end\n");
        project_.addEntry("A", "Tide.h");
        navrel_.setLastKnownProject(project_.bundle());
        navrel_.setEnvironment(QStringLiteral("NAVREL_BROWSER"), QStringLiteral("machine"));
        ASSERT_TRUE(device_.listen());
        ASSERT_TRUE(navrel_.start());
        ASSERT_TRUE(device_.waitForConnection());
        ASSERT_TRUE(device_.waitUntilServed());
        pair();
    }

    /// As the page does it, with a ticket from the owner's socket.
    void pair() {
        std::string ticket;
        ASSERT_TRUE(waitUntil([&] {
            const WebAnswer offer = asOwner("POST /api/pairing");
            const std::string url = valueAt(offer.body, "url");
            ticket = url.substr(url.find('=') + 1);
            return offer.status == 200;
        }));
        browser_.emplace(kPort);
        const WebAnswer answer =
            post("/api/pair", R"({"label":"iPad","ticket":")" + ticket + "\"}");
        ASSERT_EQ(answer.status, 204) << answer.body;
        const std::string& field = answer.fields.at("set-cookie");
        cookie_ = field.substr(0, field.find(';'));
    }

    /// Over the owner's socket, which may ask as often as it likes.
    WebAnswer asOwner(const std::string& request) const {
        const QString socket = navrel_.runtimeFolder() + QStringLiteral("/nl.kelvane.Navrel.sock");
        return WebClient(socket.toStdString()).ask(request + " HTTP/1.1\r\n\r\n");
    }
    bool ownerSees(const std::string& target, const std::string& text) const {
        return waitUntil(
            [&] { return asOwner("GET " + target).body.find(text) != std::string::npos; });
    }

    WebAnswer get(const std::string& target) {
        return browser_->ask("GET " + target +
                             " HTTP/1.1\r\nHost: localhost\r\nCookie: " + cookie_ + "\r\n\r\n");
    }
    WebAnswer post(const std::string& target, const std::string& body) {
        return browser_->ask(
            "POST " + target +
            " HTTP/1.1\r\nHost: localhost\r\nOrigin: http://localhost\r\nX-Navrel: 1\r\nCookie: " +
            cookie_ + "\r\nContent-Type: application/json\r\nContent-Length: " +
            std::to_string(body.size()) + "\r\n\r\n" + body);
    }

    bool isHeaderAllowedOnTheDevice() {
        const auto answer = device_.ask(kFileTypes);
        const QVariantList items =
            answer ? answer->value(QStringLiteral("items")).toList() : QVariantList();
        return std::any_of(items.begin(), items.end(), [](const QVariant& item) {
            const QVariantMap type = item.toMap();
            return type.value(QStringLiteral("extension")) == QStringLiteral("h") &&
                   type.value(QStringLiteral("allowed")).toInt() == 1;
        });
    }

    SmallProject project_;
    NavrelProcess navrel_;
    TestDevice device_;
    std::optional<WebClient> browser_;
    std::string cookie_;
};

TEST_F(BrowserTest, aDeviceAndABrowserAreServedSideBySide) {
    EXPECT_TRUE(waitUntil(
        [this] { return get("/api/tree").body.find("\"name\":\"Tide.h\"") != std::string::npos; }));
    for (int round = 0; round < 20; ++round) {
        const auto group = device_.ask(kMainGroup);
        ASSERT_TRUE(group.has_value()) << round;
        EXPECT_EQ(group->value(QStringLiteral("items")).toList().size(), 1) << round;
        EXPECT_EQ(get("/api/state").status, 200) << round;
    }
    EXPECT_THAT(get("/api/state").body, ::testing::HasSubstr(R"("device":{"state":"connected")"));
}

TEST_F(BrowserTest, aSwitchInTheBrowserIsTheDevicesToo) {
    ASSERT_TRUE(ownerSees("/api/filetypes", R"({"extension":"h","allowed":true})"));
    ASSERT_TRUE(isHeaderAllowedOnTheDevice());
    const WebAnswer answer =
        post("/api/filetypes", R"({"items":[{"extension":"h","allowed":false}]})");
    ASSERT_EQ(answer.status, 202) << answer.body;
    EXPECT_TRUE(waitUntil([this] { return !isHeaderAllowedOnTheDevice(); }));
    EXPECT_TRUE(ownerSees("/api/filetypes", R"({"extension":"h","allowed":false})"));
}

TEST_F(BrowserTest, aBrowserThatReadsNothingKeepsTheDeviceWaitingForNothing) {
    std::vector<WebClient> stuck;
    for (int count = 0; count < 8; ++count) {
        stuck.emplace_back(kPort);
        std::string many;
        for (int request = 0; request < 10; ++request) {
            many += "GET /api/tree HTTP/1.1\r\nHost: localhost\r\nCookie: " + cookie_ + "\r\n\r\n";
        }
        ASSERT_TRUE(stuck.back().send(many + "GET / HTTP/1.1\r\nHost: loc"));
    }
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(device_.ask(kMainGroup).has_value()) << round;
    }
}

/// The desktop's own notifications, as far as programs see them.
class Notifications final : public QDBusVirtualObject {
public:
    explicit Notifications(QDBusConnection bus) : bus_(std::move(bus)) {}
    ~Notifications() override { bus_.unregisterObject(kNotificationsPath); }

    [[nodiscard]] bool appear() {
        return bus_.registerVirtualObject(kNotificationsPath, this) &&
               bus_.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }

    QStringList summaries;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        constexpr int kSummary = 3;
        if (message.member() != QStringLiteral("Notify")) {
            return false;
        }
        summaries.append(message.arguments().value(kSummary).toString());
        return connection.send(message.createReply(1U));
    }

private:
    QDBusConnection bus_;
};

class PairingNoticeTest : public BrowserTest {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "needs dbus-daemon";
        }
        bus_ = std::make_unique<SessionBus>();
        notifications_ = std::make_unique<Notifications>(bus_->connect());
        ASSERT_TRUE(notifications_->appear());
        navrel_.setEnvironment(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus_->address());
        BrowserTest::SetUp();
    }

    std::unique_ptr<SessionBus> bus_;
    std::unique_ptr<Notifications> notifications_;
};

TEST_F(PairingNoticeTest, theDesktopSaysWhichDeviceWasPaired) {
    EXPECT_TRUE(waitUntil([this] { return !notifications_->summaries.isEmpty(); }));
    EXPECT_EQ(notifications_->summaries, QStringList{QStringLiteral("Paired: iPad")});
    EXPECT_TRUE(navrel_.waitForLog("paired the browser \"iPad\""));
}

} // namespace
} // namespace navrel
