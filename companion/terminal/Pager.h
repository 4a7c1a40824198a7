#pragma once

#include "companion/terminal/Output.h"

#include <QByteArray>
#include <QString>

namespace navrel {

/// Whether a text is longer than the terminal.
bool needsPager(const QString& text, const TerminalTraits& traits);

/// Shows a text in the user's pager (PAGER, else less) and waits for its end: the keys are the
/// pager's until then. False where there is none; nothing was shown then.
bool showInPager(const QByteArray& text);

} // namespace navrel
