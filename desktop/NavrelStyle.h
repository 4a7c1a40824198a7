#pragma once

#include <QPalette>
#include <QProxyStyle>

namespace navrel {

/// Qt's own style (Fusion), made legible in every theme. Check boxes and radio buttons are drawn in
/// the text's colour: Fusion draws them darker than the background, where a dark theme hides them.
/// Disabled text has enough contrast: Navrel's menus have disabled entries that are there to be
/// read. Main thread.
class NavrelStyle final : public QProxyStyle {
public:
    /// Replaces the application's style by this one if that is Fusion. Any other style is left, as
    /// it knows its own theme. There must be a QApplication.
    static void install();

    NavrelStyle();

    void polish(QPalette& palette) override;
    using QProxyStyle::polish;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// The contrast ratio of two colours, from 1 to 21, as the Web Content Accessibility Guidelines
/// define it. Pure.
double contrastOf(const QColor& one, const QColor& other);

/// The smallest contrast ratio of legible text, by the same guidelines (level AA).
inline constexpr double kLegibleContrast = 4.5;

/// The palette with disabled text of at least kLegibleContrast, as far as enabled text has that.
/// Pure.
QPalette withLegibleDisabledText(QPalette palette);

} // namespace navrel
