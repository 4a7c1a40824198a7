#include "desktop/windows/QRCode.h"

#include "support/core/MainThread.h"

#include <QPainter>
#include <qrcodegen/qrcodegen.hpp>

#include <algorithm>
#include <stdexcept>

namespace navrel {

namespace {

/// What the standard asks for around a code, in modules.
constexpr int kQuietZone = 4;
constexpr int kSideInPixels = 260;

} // namespace

QRCode::QRCode() {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Code for the device's camera"));
}

QSize QRCode::sizeHint() const {
    return {kSideInPixels, kSideInPixels};
}

void QRCode::setText(const QString& text) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (text == text_) {
        return;
    }
    text_ = text;
    side_ = 0;
    isDark_.clear();
    update();
    if (text.isEmpty()) {
        return;
    }
    try {
        const auto code = qrcodegen::QrCode::encodeText(text.toUtf8().constData(),
                                                        qrcodegen::QrCode::Ecc::MEDIUM);
        side_ = code.getSize();
        for (int y = 0; y < side_; ++y) {
            for (int x = 0; x < side_; ++x) {
                isDark_.append(code.getModule(x, y));
            }
        }
    } catch (const std::length_error&) {
        text_.clear(); // too long: nothing is shown
    }
}

void QRCode::paintEvent(QPaintEvent*) {
    if (side_ == 0) {
        return;
    }
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    const int module = std::max(1, std::min(width(), height()) / (side_ + 2 * kQuietZone));
    const int left = (width() - side_ * module) / 2;
    const int top = (height() - side_ * module) / 2;
    for (int y = 0; y < side_; ++y) {
        for (int x = 0; x < side_; ++x) {
            if (isDark_.at(y * side_ + x)) {
                painter.fillRect(left + x * module, top + y * module, module, module, Qt::black);
            }
        }
    }
}

} // namespace navrel
