#include "desktop/tray/DBusMenu.h"
#include "tests/SessionBus.h"
#include "tests/WaitUntil.h"

#include <QDBusArgument>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace navrel {
namespace {

using ::testing::ElementsAre;

const QString kPath = QStringLiteral("/MenuBar");
const QString kInterface = QStringLiteral("com.canonical.dbusmenu");

/// Writes down the signals of a menu.
class SignalLog final : public QObject {
    Q_OBJECT

public:
    SignalLog(QDBusConnection bus, const QString& service) {
        for (const char* const member : {"LayoutUpdated", "ItemsPropertiesUpdated"}) {
            EXPECT_TRUE(bus.connect(service, kPath, kInterface, QLatin1String(member), this,
                                    SLOT(note(QDBusMessage))));
        }
    }

    QStringList members;
    QList<QVariantList> arguments;

private Q_SLOTS:
    void note(const QDBusMessage& message) {
        members.append(message.member());
        arguments.append(message.arguments());
    }
};

/// A menu on a session bus, read by a client as panels read it.
class DBusMenuTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!SessionBus::isAvailable()) {
            GTEST_SKIP() << "needs dbus-daemon";
        }
        bus_ = std::make_unique<SessionBus>();
        QDBusConnection serving = bus_->connect();
        client_ = std::make_unique<QDBusConnection>(bus_->connect());
        service_ = serving.baseService();
        project_ = &menu_.addText(2, QStringLiteral("Current project: my_app & co"));
        menu_.addSeparator();
        automatic_ = &menu_.addSwitch(4, QStringLiteral("Automatic"), [this] { ++switches_; });
        exportedMenu_ = new DBusMenu(menu_, exported_);
        ASSERT_TRUE(serving.registerObject(kPath, &exported_));
    }

    QDBusMessage call(const char* method, const QVariantList& arguments = {}) {
        return callOverBus(*client_, service_, kPath, kInterface, QString::fromLatin1(method),
                           arguments);
    }
    DBusMenuLayoutItem layout(int parent = 0, int depth = -1, const QStringList& names = {}) {
        const QDBusMessage reply = call("GetLayout", {parent, depth, names});
        revision_ = reply.arguments().value(0).toUInt();
        return qdbus_cast<DBusMenuLayoutItem>(reply.arguments().value(1));
    }
    static QStringList labels(const DBusMenuLayoutItem& layout) {
        QStringList labels;
        for (const DBusMenuLayoutItem& child : layout.children) {
            labels.append(child.properties.value(QStringLiteral("label")).toString());
        }
        return labels;
    }

    StatusMenu menu_;
    MenuEntry* project_ = nullptr;
    MenuEntry* automatic_ = nullptr;
    int switches_ = 0;
    QObject exported_;
    DBusMenu* exportedMenu_ = nullptr;
    std::unique_ptr<SessionBus> bus_;
    std::unique_ptr<QDBusConnection> client_;
    QString service_;
    uint revision_ = 0;
};

TEST_F(DBusMenuTest, theLayoutHoldsTheEntriesInOrderWithUnderscoresAsWritten) {
    menu_.setShortcuts({QStringLiteral("fix_me & \"them\" שלום 🎉")}, {});
    const DBusMenuLayoutItem root = layout();
    EXPECT_EQ(root.id, 0);
    EXPECT_EQ(root.properties.value(QStringLiteral("children-display")), QStringLiteral("submenu"));
    EXPECT_EQ(labels(root), (QStringList{QStringLiteral("Current project: my__app & co"), QString(),
                                         QStringLiteral("Automatic"),
                                         QStringLiteral("fix__me & \"them\" שלום 🎉")}));
    EXPECT_EQ(root.children.at(0).properties.value(QStringLiteral("enabled")), false);
    EXPECT_EQ(root.children.at(1).properties.value(QStringLiteral("type")),
              QStringLiteral("separator"));
    EXPECT_EQ(root.children.at(2).properties.value(QStringLiteral("toggle-type")),
              QStringLiteral("checkmark"));
    EXPECT_EQ(root.children.at(2).properties.value(QStringLiteral("toggle-state")), 0);
    EXPECT_FALSE(root.children.at(3).properties.contains(QStringLiteral("enabled")));
}

TEST_F(DBusMenuTest, aDepthOfZeroHasOnlyTheRootAndNamesSelectProperties) {
    EXPECT_TRUE(layout(0, 0).children.isEmpty());
    EXPECT_EQ(layout(0, 1).children.size(), 3);
    const auto root = layout(0, -1, {QStringLiteral("enabled")});
    EXPECT_TRUE(root.properties.isEmpty());
    EXPECT_EQ(root.children.at(0).properties.keys(), QStringList{QStringLiteral("enabled")});
    EXPECT_TRUE(root.children.at(2).properties.isEmpty());
}

TEST_F(DBusMenuTest, anEntryAloneHasNothingBelowItAndAnUnknownOneNothingAtAll) {
    const auto entry = layout(automatic_->id());
    EXPECT_EQ(entry.id, automatic_->id());
    EXPECT_EQ(entry.properties.value(QStringLiteral("label")), QStringLiteral("Automatic"));
    EXPECT_TRUE(layout(9999).properties.isEmpty());
    EXPECT_TRUE(layout(-1).children.isEmpty());
}

TEST_F(DBusMenuTest, aLongTitleIsShortAndItsWholeTextIsTheDescription) {
    const QString title = QString(200, u'x');
    menu_.setShortcuts({title}, {});
    const QVariantMap properties = layout().children.last().properties;
    EXPECT_LT(properties.value(QStringLiteral("label")).toString().size(), 100);
    EXPECT_EQ(properties.value(QStringLiteral("accessible-desc")), title);
}

TEST_F(DBusMenuTest, propertiesAreGivenForAGroupOfEntries) {
    const QDBusMessage reply =
        call("GetGroupProperties", {QVariant::fromValue(QList<int>{automatic_->id(), 9999, 0}),
                                    QStringList{QStringLiteral("label")}});
    const auto items = qdbus_cast<QList<DBusMenuItem>>(reply.arguments().value(0));
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items.at(0).id, automatic_->id());
    EXPECT_EQ(items.at(0).properties,
              (QVariantMap{{QStringLiteral("label"), QStringLiteral("Automatic")}}));
    EXPECT_EQ(items.at(1).id, 0);

    const QDBusMessage all =
        call("GetGroupProperties", {QVariant::fromValue(QList<int>()), QStringList()});
    EXPECT_EQ(qdbus_cast<QList<DBusMenuItem>>(all.arguments().value(0)).size(), 3);
}

TEST_F(DBusMenuTest, onePropertyIsGivenByName) {
    const auto label = call("GetProperty", {automatic_->id(), QStringLiteral("label")});
    EXPECT_EQ(label.arguments().value(0).value<QDBusVariant>().variant(),
              QStringLiteral("Automatic"));
    const auto none = call("GetProperty", {9999, QStringLiteral("label")});
    EXPECT_EQ(none.arguments().value(0).value<QDBusVariant>().variant(), QString());
}

TEST_F(DBusMenuTest, aClickChoosesTheEntryAndOtherEventsDoNot) {
    const QVariant data = QVariant::fromValue(QDBusVariant(0));
    for (const char* event : {"hovered", "opened", "closed", "clicked", "unheard-of"}) {
        call("Event", {automatic_->id(), QString::fromLatin1(event), data, 0U});
    }
    EXPECT_TRUE(waitUntil([this] { return switches_ == 1; }));
    call("Event", {9999, QStringLiteral("clicked"), data, 0U});
    call("Event", {project_->id(), QStringLiteral("clicked"), data, 0U});
    layout();
    EXPECT_EQ(switches_, 1);
}

TEST_F(DBusMenuTest, aGroupOfEventsTellsWhichEntriesAreUnknown) {
    const QDBusVariant data{QVariant(0)};
    const QList<DBusMenuEvent> events{{automatic_->id(), QStringLiteral("clicked"), data, 0},
                                      {9999, QStringLiteral("clicked"), data, 0}};
    const auto reply = call("EventGroup", {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{9999});
    EXPECT_TRUE(waitUntil([this] { return switches_ == 1; }));
}

TEST_F(DBusMenuTest, aMenuAboutToShowNeedsNoReading) {
    EXPECT_EQ(call("AboutToShow", {0}).arguments(), QVariantList{false});
    const auto reply =
        call("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, automatic_->id(), 9999})});
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>());
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(1)), QList<int>{9999});
}

TEST_F(DBusMenuTest, theRevisionGrowsWithEveryChangeOfTheEntries) {
    layout();
    const uint before = revision_;
    menu_.setShortcuts({QStringLiteral("a")}, {});
    layout();
    EXPECT_GT(revision_, before);
}

TEST_F(DBusMenuTest, changesAreAnnouncedOnTheBus) {
    SignalLog log(*client_, service_);
    menu_.setShortcuts({QStringLiteral("a")}, {});
    EXPECT_TRUE(
        waitUntil([&] { return log.members == QStringList{QStringLiteral("LayoutUpdated")}; }));
    EXPECT_EQ(log.arguments.last().value(1), 0);

    automatic_->setChecked(true);
    ASSERT_TRUE(waitUntil([&] { return log.members.size() == 2; }));
    EXPECT_EQ(log.members.last(), QStringLiteral("ItemsPropertiesUpdated"));
    const auto updated = qdbus_cast<QList<DBusMenuItem>>(log.arguments.last().value(0));
    ASSERT_EQ(updated.size(), 1);
    EXPECT_EQ(updated.at(0).id, automatic_->id());
    EXPECT_EQ(updated.at(0).properties.value(QStringLiteral("toggle-state")), 1);
}

TEST_F(DBusMenuTest, theMenuTellsItsVersionAndState) {
    const auto property = [this](const char* name) {
        return propertyOverBus(*client_, service_, kPath, kInterface, QString::fromLatin1(name));
    };
    EXPECT_EQ(property("Version"), 3U);
    EXPECT_EQ(property("Status"), QStringLiteral("normal"));
    EXPECT_EQ(property("TextDirection"), QStringLiteral("ltr"));
}

} // namespace
} // namespace navrel

#include "DBusMenuTests.moc"
