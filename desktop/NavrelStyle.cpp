#include "desktop/NavrelStyle.h"

#include "support/core/MainThread.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cmath>

namespace navrel {

namespace {

const QString kQtStyle = QStringLiteral("fusion");

// In pixels.
constexpr qreal kPenWidth = 1.2;
constexpr qreal kCornerRadius = 2;
/// The radius of a radio button's dot, as a share of the button's width.
constexpr qreal kDotShare = 0.22;
/// How many shades there are from the background's colour to the text's.
constexpr int kShades = 20;

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor mixed(const QColor& from, const QColor& to, double share) {
    const auto component = [share](double one, double other) {
        return static_cast<float>(one + (other - one) * share);
    };
    return QColor::fromRgbF(component(from.redF(), to.redF()),
                            component(from.greenF(), to.greenF()),
                            component(from.blueF(), to.blueF()));
}

/// The faintest shade of the text that can still be read.
QColor legibleShade(const QColor& background, const QColor& text) {
    for (int shade = kShades / 2; shade < kShades; ++shade) {
        const QColor color = mixed(background, text, static_cast<double>(shade) / kShades);
        if (contrastOf(background, color) >= kLegibleContrast) {
            return color;
        }
    }
    return text;
}

void drawRadioButton(const QStyleOption& option, QPainter& painter) {
    const QColor color = option.palette.color(QPalette::WindowText);
    const qreal side = std::min(option.rect.width(), option.rect.height()) - 2 * kPenWidth;
    QRectF circle(0, 0, side, side);
    circle.moveCenter(QRectF(option.rect).center());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, kPenWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(circle);
    if ((option.state & QStyle::State_On) != 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(circle.center(), side * kDotShare, side * kDotShare);
    }
    painter.restore();
}

bool isCheckBox(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_IndicatorItemViewItemCheck ||
           element == QStyle::PE_IndicatorCheckBox || element == QStyle::PE_IndicatorMenuCheckMark;
}

void drawCheckBox(const QStyleOption& option, QPainter& painter) {
    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    const QPalette::ColorRole role = isSelected ? QPalette::HighlightedText : QPalette::WindowText;
    const qreal side = std::min(option.rect.width(), option.rect.height()) - 2 * kPenWidth;
    QRectF box(0, 0, side, side);
    box.moveCenter(QRectF(option.rect).center());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(option.palette.color(role), kPenWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(box, kCornerRadius, kCornerRadius);
    if ((option.state & QStyle::State_On) != 0) {
        painter.setPen(QPen(option.palette.color(role), 2 * kPenWidth, Qt::SolidLine, Qt::RoundCap,
                            Qt::RoundJoin));
        const auto at = [&box](qreal x, qreal y) {
            return box.topLeft() + QPointF(x * box.width(), y * box.height());
        };
        painter.drawPolyline(QPolygonF{{at(0.22, 0.52), at(0.42, 0.72), at(0.78, 0.28)}});
    }
    painter.restore();
}

} // namespace

NavrelStyle::NavrelStyle() : QProxyStyle(kQtStyle) {}

void NavrelStyle::install() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (QApplication::style()->name().compare(kQtStyle, Qt::CaseInsensitive) == 0) {
        QApplication::setStyle(new NavrelStyle);
    }
}

void NavrelStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    palette = withLegibleDisabledText(palette);
}

void NavrelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    if (isCheckBox(element)) {
        drawCheckBox(*option, *painter);
    } else if (element == PE_IndicatorRadioButton) {
        drawRadioButton(*option, *painter);
    } else {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

double contrastOf(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)}); // values
    return (lighter + 0.05) / (darker + 0.05);
}

QPalette withLegibleDisabledText(QPalette palette) {
    const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::Window, QPalette::WindowText},
        {QPalette::Base, QPalette::Text},
        {QPalette::Button, QPalette::ButtonText}};
    for (const auto& [background, text] : pairs) {
        const QColor below = palette.color(QPalette::Active, background);
        if (contrastOf(below, palette.color(QPalette::Disabled, text)) < kLegibleContrast) {
            palette.setColor(QPalette::Disabled, text,
                             legibleShade(below, palette.color(QPalette::Active, text)));
        }
    }
    return palette;
}

} // namespace navrel
