#include "companion/terminal/QRText.h"

#include <qrcodegen.hpp>

namespace navrel {

namespace {

/// Empty squares around the code. The standard wants four; cameras do with two, and fewer columns
/// fit into more terminals.
constexpr int kMargin = 2;

QString blockOf(bool isUpperDark, bool isLowerDark) {
    if (isUpperDark && isLowerDark) {
        return QStringLiteral("█");
    }
    return isUpperDark   ? QStringLiteral("▀")
           : isLowerDark ? QStringLiteral("▄")
                         : QStringLiteral(" ");
}

} // namespace

QString qrText(const std::string& text, TerminalText::Style style) {
    const auto code = qrcodegen::QrCode::encodeText(text.c_str(), qrcodegen::QrCode::Ecc::LOW);
    const bool isColoured = style == TerminalText::Style::coloured;
    const int end = code.getSize() + kMargin;
    QString result;
    for (int row = -kMargin; row < end; row += 2) {
        result += isColoured ? QStringLiteral("\x1b[38;5;16;48;5;231m") : QString();
        for (int column = -kMargin; column < end; ++column) {
            // Squares outside the code are light.
            result += blockOf(code.getModule(column, row), code.getModule(column, row + 1));
        }
        result += isColoured ? QStringLiteral("\x1b[0m\n") : QStringLiteral("\n");
    }
    return result;
}

} // namespace navrel
