#pragma once

#include <QScreen>
#include <QWidget>

namespace navrel {

/// How high a window may make itself on its screen, in pixels, so that its frame and the panels
/// still fit.
inline int mostHeightOnScreen(const QWidget& window) {
    constexpr double kShare = 0.85;
    return static_cast<int>(window.screen()->availableGeometry().height() * kShare);
}

} // namespace navrel
