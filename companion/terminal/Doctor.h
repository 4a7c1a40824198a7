#pragma once

#include "companion/terminal/CodeSource.h"
#include "companion/terminal/Output.h"
#include "companion/terminal/TerminalText.h"

#include <QString>

#include <string>

namespace navrel {

/// What is known without Navrel.
struct DoctorFacts {
    QString version;  ///< of the companion
    QString system;   ///< "Debian GNU/Linux 12 (bookworm)"
    QString terminal; ///< TERM; empty for none
    QString locale;
    QString home;       ///< absolute; shown as ~
    std::string socket; ///< where Navrel listens for its owner; empty for none
    bool isSocketThere = false;
    bool isUSBDaemonThere = false;
    TerminalTraits traits;
};

/// The facts of this process.
DoctorFacts doctorFacts(const QString& version);

/// All that a report of a problem needs, in plain text: nothing in it names the user. Pure, but for
/// the source, which may be null.
QString doctorText(const DoctorFacts& facts, CodeSource* source, const TerminalText& text);

/// A text with the home folder as ~. Pure.
QString withoutHome(QString text, const QString& home);

} // namespace navrel
