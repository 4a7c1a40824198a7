#pragma once

#include "companion/terminal/TerminalText.h"

#include <QString>

#include <string>

namespace navrel {

/// A text as a QR code for a camera, two rows of its squares in a line of half blocks. Coloured, it
/// is black on white whatever the terminal's colours are; plain, it is dark where a printer prints.
QString qrText(const std::string& text, TerminalText::Style style);

} // namespace navrel
