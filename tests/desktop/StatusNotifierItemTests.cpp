#include "app/StatusMenu.h"
#include "desktop/tray/StatusNotifierItem.h"
#include "desktop/tray/StatusNotifierTypes.h"
#include "tests/SessionBus.h"
#include "tests/WaitUntil.h"

#include <QDBusObjectPath>
#include <QPixmap>
#include <gtest/gtest.h>

#include <memory>

namespace navrel {
namespace {

const QString kPath = QStringLiteral("/StatusNotifierItem");
const QString kInterface = QStringLiteral("org.kde.StatusNotifierItem");

class StatusNotifierItemTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "needs dbus-daemon";
        }
        bus_ = std::make_unique<SessionBus>();
        client_ = std::make_unique<QDBusConnection>(bus_->connect());
        panel_ = std::make_unique<FakePanel>(*client_);
    }

    void makeItem(const QIcon& icon = QIcon()) {
        item_ = std::make_unique<StatusNotifierItem>(
            bus_->connect(), menu_,
            StatusNotifierItem::Appearance{QStringLiteral("symbolic"), icon},
            [this](QPoint position) { shownAt_ = position; }, [this] { ++hostChanges_; });
    }
    bool isShown() {
        return waitUntil([this] { return panel_->items.size() == 1 && item_->hasHost(); });
    }
    QVariant property(const char* name) {
        return propertyOverBus(*client_, panel_->items.value(0), kPath, kInterface,
                               QString::fromLatin1(name));
    }

    StatusMenu menu_;
    std::unique_ptr<SessionBus> bus_;
    std::unique_ptr<QDBusConnection> client_;
    std::unique_ptr<FakePanel> panel_;
    std::unique_ptr<StatusNotifierItem> item_;
    std::optional<QPoint> shownAt_;
    int hostChanges_ = 0;
};

TEST_F(StatusNotifierItemTest, aPanelThatIsThereGetsTheItem) {
    ASSERT_TRUE(panel_->appear());
    makeItem();
    EXPECT_TRUE(isShown());
    EXPECT_EQ(hostChanges_, 1);
    EXPECT_EQ(panel_->items.value(0),
              QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(::getpid()));
}

TEST_F(StatusNotifierItemTest, aPanelThatStartsLaterGetsTheItem) {
    makeItem();
    EXPECT_FALSE(item_->hasHost());
    ASSERT_TRUE(panel_->appear());
    EXPECT_TRUE(isShown());
}

TEST_F(StatusNotifierItemTest, aPanelThatRestartsGetsTheItemAgain) {
    ASSERT_TRUE(panel_->appear());
    makeItem();
    ASSERT_TRUE(isShown());
    panel_->disappear();
    EXPECT_TRUE(waitUntil([this] { return !item_->hasHost(); }));
    ASSERT_TRUE(panel_->appear());
    EXPECT_TRUE(isShown());
    EXPECT_EQ(hostChanges_, 3);
}

TEST_F(StatusNotifierItemTest, aWatcherWithoutAHostShowsNothing) {
    panel_->setHasHost(false);
    ASSERT_TRUE(panel_->appear());
    makeItem();
    EXPECT_TRUE(waitUntil([this] { return panel_->items.size() == 1; }));
    // A round over the same connections: what was asked before is answered by now.
    property("Id");
    property("Id");
    EXPECT_FALSE(item_->hasHost());
    panel_->setHasHost(true);
    EXPECT_TRUE(waitUntil([this] { return item_->hasHost(); }));
    panel_->setHasHost(false);
    EXPECT_TRUE(waitUntil([this] { return !item_->hasHost(); }));
}

TEST_F(StatusNotifierItemTest, withoutAPanelItIsKnownThatThereIsNone) {
    makeItem();
    EXPECT_FALSE(item_->isHostKnown());
    EXPECT_TRUE(waitUntil([this] { return item_->isHostKnown(); }));
    EXPECT_FALSE(item_->hasHost());
    EXPECT_EQ(hostChanges_, 1);
}

TEST_F(StatusNotifierItemTest, aPanelThatRefusesTheItemDoesNotShowIt) {
    ASSERT_TRUE(panel_->appear());
    makeItem();
    ASSERT_TRUE(isShown());
    panel_->disappear();
    panel_->setManners(FakePanel::Manners::Refuses);
    ASSERT_TRUE(panel_->appear());
    EXPECT_TRUE(waitUntil([this] { return panel_->refusals > 0 && !item_->isHostKnown(); }));
    EXPECT_FALSE(item_->hasHost());
}

TEST_F(StatusNotifierItemTest, theItemIsAnIconWithAMenu) {
    ASSERT_TRUE(panel_->appear());
    QPixmap picture(64, 64);
    picture.fill(QColor(1, 2, 3));
    makeItem(QIcon(picture));
    ASSERT_TRUE(isShown());

    EXPECT_EQ(property("Category"), QStringLiteral("ApplicationStatus"));
    EXPECT_EQ(property("Id"), QStringLiteral("nl.kelvane.Navrel"));
    EXPECT_EQ(property("Title"), QStringLiteral("Navrel"));
    EXPECT_EQ(property("Status"), QStringLiteral("Active"));
    EXPECT_EQ(property("ItemIsMenu"), true);
    EXPECT_EQ(property("IconName"), QStringLiteral("symbolic"));
    EXPECT_EQ(qvariant_cast<QDBusObjectPath>(property("Menu")).path(), item_->menuPath());
    const auto toolTip = qdbus_cast<DBusToolTip>(property("ToolTip"));
    EXPECT_TRUE(toolTip.title.isEmpty());
    EXPECT_TRUE(toolTip.text.isEmpty());

    const auto pictures = qdbus_cast<DBusPictures>(property("IconPixmap"));
    ASSERT_FALSE(pictures.isEmpty());
    EXPECT_EQ(pictures.at(0).bytes.size(), 4 * pictures.at(0).width * pictures.at(0).height);
    EXPECT_EQ(pictures.at(0).bytes.first(4), QByteArray("\xFF\x01\x02\x03", 4));
}

TEST_F(StatusNotifierItemTest, withoutAnImageThereIsAnItemWithoutPictures) {
    ASSERT_TRUE(panel_->appear());
    makeItem(QIcon(QStringLiteral(":/no such image.png")));
    ASSERT_TRUE(isShown());
    for (const auto& picture : qdbus_cast<DBusPictures>(property("IconPixmap"))) {
        EXPECT_TRUE(picture.bytes.isEmpty());
    }
}

TEST_F(StatusNotifierItemTest, aPanelThatReadsNoMenuHasItShownAtAPoint) {
    ASSERT_TRUE(panel_->appear());
    makeItem();
    ASSERT_TRUE(isShown());
    callOverBus(*client_, panel_->items.at(0), kPath, kInterface, QStringLiteral("ContextMenu"),
                {12, 34});
    EXPECT_EQ(shownAt_, QPoint(12, 34));
    callOverBus(*client_, panel_->items.at(0), kPath, kInterface, QStringLiteral("Activate"),
                {56, 78});
    EXPECT_EQ(shownAt_, QPoint(56, 78));
}

TEST_F(StatusNotifierItemTest, theMenuIsReadWhereTheItemSays) {
    menu_.addText(1, QStringLiteral("Navrel"));
    ASSERT_TRUE(panel_->appear());
    makeItem();
    ASSERT_TRUE(isShown());
    const auto reply = callOverBus(*client_, panel_->items.at(0), item_->menuPath(),
                                   QStringLiteral("com.canonical.dbusmenu"),
                                   QStringLiteral("GetLayout"), {0, -1, QStringList()});
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(reply.signature(), QStringLiteral("u(ia{sv}av)"));
}

TEST_F(StatusNotifierItemTest, theItemLeavesTheBusWhenItEnds) {
    ASSERT_TRUE(panel_->appear());
    makeItem();
    ASSERT_TRUE(isShown());
    item_.reset();
    const auto reply = callOverBus(*client_, panel_->items.at(0), kPath, kInterface,
                                   QStringLiteral("Activate"), {1, 1});
    EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage);
    EXPECT_FALSE(shownAt_.has_value());
}

} // namespace
} // namespace navrel
