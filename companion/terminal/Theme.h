#pragma once

#include "companion/terminal/Output.h"
#include "companion/terminal/TerminalText.h"

#include <chrono>
#include <string_view>

namespace navrel {

/// The background that the variable COLORFGBG names ("15;0"), which some terminals set. Pure.
TerminalText::Background backgroundOfVariable(std::string_view text);

/// The background that a terminal's reply to the question for it names
/// ("\e]11;rgb:ffff/ffff/ffff\e\\"), by its brightness. Pure.
TerminalText::Background backgroundOfReply(std::string_view reply);

/// Asks the terminal that a descriptor is of for its background. One that does not know the
/// question still answers the one behind it, so that the wait ends at once; one that answers
/// nothing is waited for that long. What the user has typed meanwhile may be lost.
TerminalText::Background askForBackground(int terminal, std::chrono::milliseconds atMost);

/// What standard output is, by the locale, the environment and the kernel.
TerminalTraits traitsOfOutput();

} // namespace navrel
