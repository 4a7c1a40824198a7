#include "desktop/MenuText.h"
#include "desktop/tray/MenuWidget.h"
#include "tests/WaitUntil.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

class MenuWidgetTest : public ::testing::Test {
protected:
    QAction& action(int position) const { return *widget_.actions().at(position); }

    StatusMenu menu_;
    int switches_ = 0;
    MenuEntry& project_ = menu_.addText(2, QStringLiteral("Current project: a&b_c"));
    MenuEntry& automatic_ =
        menu_.addSwitch(4, QStringLiteral("Automatic"), [this] { ++switches_; });
    MenuWidget widget_{menu_};
};

TEST_F(MenuWidgetTest, entriesAppearAsWritten) {
    menu_.addSeparator();
    menu_.setShortcuts({QStringLiteral("x & y\tz")}, {});
    ASSERT_EQ(widget_.actions().size(), 4);
    EXPECT_EQ(action(0).text(), QStringLiteral("Current project: a&&b_c"));
    EXPECT_FALSE(action(0).isEnabled());
    EXPECT_TRUE(action(1).isCheckable());
    EXPECT_TRUE(action(2).isSeparator());
    EXPECT_EQ(action(3).text(), QStringLiteral("x && y z"));
}

TEST_F(MenuWidgetTest, changesShowAtOnce) {
    project_.setTitle(QStringLiteral("Current project: other"));
    automatic_.setChecked(true);
    EXPECT_EQ(action(0).text(), QStringLiteral("Current project: other"));
    EXPECT_TRUE(action(1).isChecked());
}

TEST_F(MenuWidgetTest, aLongTitleHasItsWholeTextAsToolTip) {
    const QString title = QString(100, u'x');
    menu_.setShortcuts({title}, {});
    EXPECT_LT(action(2).text().size(), title.size());
    EXPECT_EQ(action(2).toolTip(), toolTipForTitle(title));
    EXPECT_TRUE(widget_.toolTipsVisible());
}

TEST_F(MenuWidgetTest, triggeringAnEntryChoosesIt) {
    action(1).trigger();
    EXPECT_TRUE(waitUntil([this] { return switches_ == 1; }));
}

TEST_F(MenuWidgetTest, theCheckMarkShowsTheStateNotTheClick) {
    // Nothing turned the switch on, so a click leaves it off.
    action(1).trigger();
    ASSERT_TRUE(waitUntil([this] { return switches_ == 1; }));
    EXPECT_FALSE(action(1).isChecked());
}

} // namespace
} // namespace navrel
