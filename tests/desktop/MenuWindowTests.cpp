#include "desktop/MenuText.h"
#include "desktop/windows/MenuWindow.h"
#include "tests/WaitUntil.h"

#include <QApplication>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>

namespace navrel {
namespace {

class MenuWindowTest : public ::testing::Test {
protected:
    MenuWindowTest() { window_.QWidget::show(); }

    QListWidget& list() const { return *window_.findChild<QListWidget*>(); }
    QListWidgetItem& item(int row) const { return *list().item(row); }

    void press(Qt::Key key) const {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&list(), &press);
    }
    void click(int row) const {
        const QPoint position = list().visualItemRect(&item(row)).center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const Qt::MouseButtons buttons =
                type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
            QMouseEvent event(type, position, list().viewport()->mapToGlobal(position),
                              Qt::LeftButton, buttons, Qt::NoModifier);
            QCoreApplication::sendEvent(list().viewport(), &event);
        }
    }

    StatusMenu menu_;
    int manuals_ = 0;
    int switches_ = 0;
    MenuEntry& version_ = menu_.addText(1, QStringLiteral("Navrel & <b>co</b>"));
    MenuEntry& automatic_ =
        menu_.addSwitch(4, QStringLiteral("Automatic"), [this] { ++switches_; });
    MenuEntry& manual_ = menu_.addAction(5, QStringLiteral("Manual"), [this] { ++manuals_; });
    MenuWindow window_{menu_, QIcon()};
};

TEST_F(MenuWindowTest, itShowsTheSameEntriesAsTheMenu) {
    menu_.addSeparator();
    menu_.setShortcuts({QStringLiteral("a_b & c")}, {});
    ASSERT_EQ(list().count(), 5);
    EXPECT_EQ(item(0).text(), QStringLiteral("Navrel & <b>co</b>"));
    EXPECT_EQ(item(0).flags(), Qt::NoItemFlags);
    EXPECT_EQ(item(1).checkState(), Qt::Unchecked);
    EXPECT_NE(list().itemWidget(&item(3)), nullptr);
    EXPECT_EQ(item(4).text(), QStringLiteral("a_b & c"));
    EXPECT_EQ(item(4).toolTip(), toolTipForTitle(QStringLiteral("a_b & c")));
    automatic_.setChecked(true);
    EXPECT_EQ(item(1).checkState(), Qt::Checked);
}

TEST_F(MenuWindowTest, oneClickChoosesOnce) {
    click(2);
    ASSERT_TRUE(waitUntil([this] { return manuals_ > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(manuals_, 1);
    click(0);
    QCoreApplication::processEvents();
    EXPECT_EQ(manuals_ + switches_, 1);
}

TEST_F(MenuWindowTest, theKeyboardReachesEveryEntry) {
    list().setCurrentRow(1);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return switches_ == 1; }));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_TRUE(waitUntil([this] { return manuals_ == 1; }));
}

TEST_F(MenuWindowTest, noRowIsCutHoweverManyThereAre) {
    for (const int count : {0, 3, 1000}) {
        QStringList titles;
        for (int number = 0; number < count; ++number) {
            titles.append(QStringLiteral("Shortcut %1").arg(number));
        }
        menu_.addSeparator();
        menu_.setShortcuts(titles, {});
        QCoreApplication::processEvents();
        const QRect visible = list().viewport()->rect();
        int wholeRows = 0;
        for (int row = 0; row < list().count(); ++row) {
            const QRect rect = list().visualItemRect(&item(row));
            EXPECT_TRUE(visible.contains(rect) || !visible.intersects(rect)) << count << " " << row;
            wholeRows += visible.contains(rect) ? 1 : 0;
        }
        EXPECT_TRUE(wholeRows == list().count() || count == 1000) << wholeRows;
        EXPECT_LT(window_.height(), window_.screen()->size().height());
    }
}

TEST_F(MenuWindowTest, theLeastSizeOfAWindowIsNotTheUsers) {
    QFont small = window_.font();
    small.setPixelSize(4);
    list().setFont(small);
    menu_.setShortcuts({}, {});
    QCoreApplication::processEvents();
    menu_.setShortcuts({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                        QStringLiteral("d"), QStringLiteral("e"), QStringLiteral("f")},
                       {});
    QCoreApplication::processEvents();
    const QRect visible = list().viewport()->rect();
    EXPECT_TRUE(visible.contains(list().visualItemRect(&item(list().count() - 1))));
}

TEST_F(MenuWindowTest, theUsersSizeStays) {
    window_.resize(500, 300);
    QCoreApplication::processEvents();
    menu_.setShortcuts({QStringLiteral("a"), QStringLiteral("b")}, {});
    EXPECT_EQ(window_.size(), QSize(500, 300));
}

/// With sentences above the menu's entries.
class MenuWindowStateTest : public MenuWindowTest {
protected:
    MenuWindowStateTest() {
        menu_.setState([this] { return state_; });
        stated_.QWidget::show();
    }

    QListWidget& list() const { return *stated_.findChild<QListWidget*>(); }
    QString sentence(int row) const {
        return static_cast<QLabel*>(list().itemWidget(list().item(row)))->text();
    }

    std::vector<StateSentence> state_ = {
        {StateSentence::Part::project, StateSentence::Level::good,
         QStringLiteral("<b>Tide</b> & co is loaded: 3 files."), QString()},
        {StateSentence::Part::device, StateSentence::Level::idle,
         QStringLiteral("No device is attached."), QStringLiteral("Plug one in.")},
    };
    MenuWindow stated_{menu_, QIcon()};
};

TEST_F(MenuWindowStateTest, saysHowTheProgramStandsAboveTheEntries) {
    ASSERT_EQ(list().count(), 6);
    EXPECT_EQ(sentence(0), QStringLiteral("Project: <b>Tide</b> & co is loaded: 3 files."));
    EXPECT_EQ(sentence(1), QStringLiteral("Device: No device is attached."));
    EXPECT_EQ(list().item(1)->data(Qt::AccessibleTextRole).toString(), sentence(1));
    EXPECT_EQ(list().item(0)->flags(), Qt::NoItemFlags);
    EXPECT_EQ(list().item(3)->text(), QStringLiteral("Navrel & <b>co</b>"));
}

TEST_F(MenuWindowStateTest, followsTheStateAndCutsNoRow) {
    state_[1] = {StateSentence::Part::device, StateSentence::Level::warning,
                 QStringLiteral("A device is attached, but no app listens on its port 2345."),
                 QStringLiteral("Open the companion app on the device and keep it in front.")};
    EXPECT_TRUE(waitUntil([this] {
        return sentence(1) == QStringLiteral("Device: ") + state_[1].text + u' ' + state_[1].hint;
    }));
    QCoreApplication::processEvents();
    const QRect visible = list().viewport()->rect();
    for (int row = 0; row < list().count(); ++row) {
        EXPECT_TRUE(visible.contains(list().visualItemRect(list().item(row)))) << row;
    }
    const QWidget& label = *list().itemWidget(list().item(1));
    EXPECT_GE(label.height(), label.heightForWidth(label.width()));
}

TEST_F(MenuWindowTest, closingOnlyMinimizesIt) {
    window_.close();
    EXPECT_TRUE(window_.isMinimized());
    EXPECT_TRUE(window_.isVisible());
}

TEST_F(MenuWindowTest, theEndOfTheSessionEndsTheProgramWithTheWindowOpen) {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [] {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    });
    QTimer::singleShot(std::chrono::seconds(5), &loop, [&loop] { loop.exit(1); });
    EXPECT_EQ(loop.exec(), 0);
}

TEST_F(MenuWindowTest, itHasNamesForScreenReaders) {
    EXPECT_EQ(window_.windowTitle(), QStringLiteral("Navrel"));
    EXPECT_EQ(list().accessibleName(), QStringLiteral("Navrel"));
}

} // namespace
} // namespace navrel
