#pragma once

#include <QString>
#include <QWidget>

namespace navrel {

/// Shows a text as a QR code: dark on light in every theme, with the quiet zone that scanners need.
/// Main thread.
class QRCode final : public QWidget {
public:
    QRCode();

    /// Replaces the text. Shows nothing for an empty text, and for one that is too long for a code.
    void setText(const QString& text);
    const QString& text() const { return text_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
    int side_ = 0;       ///< in modules; 0 while nothing is shown
    QList<bool> isDark_; ///< of each module, row by row
};

} // namespace navrel
