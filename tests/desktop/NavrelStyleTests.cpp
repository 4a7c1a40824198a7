#include "desktop/NavrelStyle.h"

#include <QImage>
#include <QPainter>
#include <QStyleOption>
#include <gtest/gtest.h>

namespace navrel {
namespace {

struct Theme {
    QColor window;
    QColor text;
    QColor disabled;
};
const Theme kDark = {QColor(0x24, 0x24, 0x24), QColor(0xF0, 0xF0, 0xF0), QColor(0x50, 0x50, 0x50)};
const Theme kLight = {QColor(0xFF, 0xFF, 0xFF), QColor(0x10, 0x10, 0x10), QColor(0xBE, 0xBE, 0xBE)};

QPalette paletteOf(const Theme& theme) {
    QPalette palette;
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button}) {
        palette.setColor(role, theme.window);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, theme.text);
        palette.setColor(QPalette::Disabled, role, theme.disabled);
    }
    return palette;
}

/// The best contrast of any pixel of the box with what is around it.
double contrastOfBox(const Theme& theme, QStyle::PrimitiveElement element, QStyle::State state) {
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(theme.window);
    QStyleOptionButton option;
    option.rect = image.rect();
    option.palette = paletteOf(theme);
    option.state = QStyle::State_Enabled | state;
    QPainter painter(&image);
    NavrelStyle().drawPrimitive(element, &option, &painter, nullptr);
    painter.end();
    double best = 1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            best = std::max(best, contrastOf(theme.window, image.pixelColor(x, y)));
        }
    }
    return best;
}

TEST(NavrelStyle, switchesAndChoicesCanBeSeenInEachThemeWhetherTheyAreOnOrOff) {
    for (const Theme& theme : {kDark, kLight}) {
        for (const auto element :
             {QStyle::PE_IndicatorItemViewItemCheck, QStyle::PE_IndicatorCheckBox,
              QStyle::PE_IndicatorMenuCheckMark, QStyle::PE_IndicatorRadioButton}) {
            for (const auto state : {QStyle::State_Off, QStyle::State_On}) {
                EXPECT_GE(contrastOfBox(theme, element, state), kLegibleContrast) << element;
            }
        }
    }
}

TEST(NavrelStyle, contrastGoesFromOneToTwentyOne) {
    EXPECT_DOUBLE_EQ(contrastOf(Qt::black, Qt::black), 1);
    EXPECT_DOUBLE_EQ(contrastOf(Qt::white, Qt::black), 21);
    EXPECT_NEAR(contrastOf(Qt::white, QColor(0x76, 0x76, 0x76)), 4.54, 0.01);
}

TEST(NavrelStyle, disabledTextCanBeReadAndStaysFainterThanOther) {
    for (const Theme& theme : {kDark, kLight}) {
        const QPalette palette = withLegibleDisabledText(paletteOf(theme));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            const QColor color = palette.color(QPalette::Disabled, role);
            EXPECT_GE(contrastOf(theme.window, color), kLegibleContrast);
            EXPECT_LT(contrastOf(theme.window, color), contrastOf(theme.window, theme.text));
        }
    }
}

} // namespace
} // namespace navrel
