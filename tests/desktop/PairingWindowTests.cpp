#include "desktop/MenuText.h"
#include "desktop/windows/PairingWindow.h"
#include "desktop/windows/QRCode.h"
#include "tests/WaitUntil.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using Mode = AccessSettings::Mode;

const QString kHostile = QStringLiteral("<h1>iPad</h1><a href=\"http://x\">x</a>");

PairingContents contents() {
    PairingContents contents;
    contents.mode = Mode::network;
    contents.state = QStringLiteral("Devices in this network can reach Navrel.");
    contents.addresses = {QStringLiteral("https://192.168.1.5:2346"),
                          QStringLiteral("https://10.0.0.7:2346")};
    contents.address = contents.addresses.at(0);
    contents.url = QStringLiteral("https://192.168.1.5:2346/#p=ABCDEFGHIJKLMNOPQRSTUV");
    contents.code = QStringLiteral("123 456");
    contents.fingerprint = QStringLiteral("AB:CD");
    contents.devices = {{3, kHostile, QStringLiteral("connected now"), false},
                        {5, QStringLiteral("Phone"), QStringLiteral("used 2 days ago"), true}};
    return contents;
}

class PairingWindowTest : public ::testing::Test {
protected:
    PairingWindowTest() {
        window_.show(contents());
        window_.QWidget::show();
    }

    template <typename Widget>
    Widget* named(const QString& name) const {
        for (auto* widget : window_.findChildren<Widget*>()) {
            if (widget->accessibleName() == name) {
                return widget;
            }
        }
        return nullptr;
    }
    QRCode* code() const {
        return dynamic_cast<QRCode*>(
            named<QWidget>(QStringLiteral("Code for the device's camera")));
    }

    QStringList events_;
    PairingWindow window_{{
        [this](Mode mode) {
            events_.append(QStringLiteral("mode %1").arg(static_cast<int>(mode)));
        },
        [this](const QString& address) { events_.append(address); },
        [this] { events_.append(QStringLiteral("code")); },
        [this](int device) { events_.append(QStringLiteral("forget %1").arg(device)); },
        [this](int device, bool readOnly) {
            events_.append(QStringLiteral("%1 read only %2").arg(device).arg(readOnly));
        },
        [this] { ++due_; },
    }};
    int due_ = 0;
};

TEST_F(PairingWindowTest, showsWhatItIsGiven) {
    EXPECT_EQ(code()->text(), contents().url);
    EXPECT_EQ(named<QComboBox>(QStringLiteral("Address"))->count(), 2);
    EXPECT_EQ(named<QLabel>(QStringLiteral("Code to type"))->text(), QStringLiteral("123 456"));
    const auto* devices = named<QTableWidget>(QStringLiteral("Paired devices"));
    ASSERT_EQ(devices->rowCount(), 2);
    EXPECT_EQ(devices->item(1, 0)->text(), QStringLiteral("Phone"));
    EXPECT_EQ(devices->item(1, 1)->text(), QStringLiteral("used 2 days ago"));
    QStringList checked;
    for (const auto* button : window_.findChildren<QRadioButton*>()) {
        if (button->isChecked()) {
            checked.append(button->text().remove(u'&'));
        }
    }
    EXPECT_EQ(checked, QStringList{QStringLiteral("Devices in this network")});
}

TEST_F(PairingWindowTest, foreignTextIsPlainInEveryPart) {
    for (const auto* label : window_.findChildren<QLabel*>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << qPrintable(label->text());
        EXPECT_FALSE(label->openExternalLinks());
    }
    const auto* devices = named<QTableWidget>(QStringLiteral("Paired devices"));
    EXPECT_EQ(devices->item(0, 0)->text(), kHostile);
    EXPECT_EQ(devices->item(0, 0)->toolTip(), toolTipForTitle(kHostile));
    EXPECT_FALSE(devices->item(0, 0)->toolTip().contains(QStringLiteral("<a")));
    for (const auto* widget : window_.findChildren<QWidget*>()) {
        EXPECT_TRUE(widget->toolTip().isEmpty());
    }
}

TEST_F(PairingWindowTest, tellsWhatTheUserDoes) {
    for (auto* button : window_.findChildren<QRadioButton*>()) {
        if (button->text().contains(QStringLiteral("obody"))) {
            button->click();
        }
    }
    named<QCheckBox>(QStringLiteral("Read only: Phone"))->click();
    named<QPushButton>(QStringLiteral("Forget Phone"))->click();
    ASSERT_TRUE(waitUntil([this] { return events_.size() == 3; }));
    EXPECT_EQ(events_, (QStringList{QStringLiteral("mode 0"), QStringLiteral("5 read only 0"),
                                    QStringLiteral("forget 5")}));
}

TEST_F(PairingWindowTest, whereNobodyCanReachItNothingIsOfferedForPairing) {
    PairingContents off;
    off.state = QStringLiteral("No browser can reach Navrel.");
    window_.show(off);
    EXPECT_FALSE(code()->isVisible());
    EXPECT_FALSE(named<QComboBox>(QStringLiteral("Address"))->isVisible());
    EXPECT_FALSE(named<QTableWidget>(QStringLiteral("Paired devices"))->isVisible());
    EXPECT_EQ(code()->text(), QString());
}

TEST_F(PairingWindowTest, asksForItsContentsWhileItShowsAndEscapeClosesIt) {
    EXPECT_TRUE(waitUntil([this] { return due_ > 0; }));
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&window_, &escape);
    EXPECT_FALSE(window_.isVisible());
}

TEST_F(PairingWindowTest, theCodeIsDarkOnLightWithAQuietZone) {
    const QImage image = code()->grab().toImage();
    int dark = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            const bool isBorder = x < 20 || y < 20 || x >= image.width() - 20;
            ASSERT_TRUE(color == Qt::white || (color == Qt::black && !isBorder)) << x << ' ' << y;
            dark += color == Qt::black ? 1 : 0;
        }
    }
    EXPECT_GT(dark, image.width() * image.height() / 8);
    code()->setText(QString(10'000, u'x')); // too much for a code
    EXPECT_EQ(code()->text(), QString());
}

} // namespace
} // namespace navrel
