#pragma once

#include <QString>
#include <QWidget>

namespace navrel {

/// A text as a code that cameras read: dark on light in every theme, with the quiet zone that they
/// need around it. Main thread.
class QRCode final : public QWidget {
public:
    QRCode();

    /// Shows another text; nothing for an empty one, and for one that is too long for a code.
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
