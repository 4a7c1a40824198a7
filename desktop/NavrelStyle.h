#pragma once

#include <QPalette>
#include <QProxyStyle>

namespace navrel {

/// Qt's own style, but legible in every theme: the boxes of switches and the
/// circles of choices have the text's colour, where Qt
/// draws them darker than the background, which cannot be seen in a dark theme, and disabled text
/// can be read, since menus have entries that are only read. Main thread.
class NavrelStyle final : public QProxyStyle {
public:
    /// Puts it in the place of the application's style, unless that is another than Qt's own: those
    /// know how their themes look.
    static void install();

    NavrelStyle();

    void polish(QPalette& palette) override;
    using QProxyStyle::polish;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

/// The contrast of two colours, from 1 to 21, as the Web Content Accessibility Guidelines measure
/// it.
double contrastOf(const QColor& one, const QColor& other);

/// The palette with a colour for disabled text that can be read on its background.
QPalette withLegibleDisabledText(QPalette palette);

/// What text must have to be read by most.
inline constexpr double kLegibleContrast = 4.5;

} // namespace navrel
