#pragma once

#include <QString>

/// How titles are shown, whose text is anybody's: shortcut comments, names of projects. Any thread.
namespace navrel {

/// The longest title that a menu shows whole, in characters as a person counts them.
inline constexpr int kMaximumTitleLength = 60;

/// A title on one line of at most kMaximumTitleLength characters: white space and control
/// characters as blanks, a long title with "…" for its middle.
QString titleOnOneLine(const QString& title);

/// The whole title as a tooltip of Qt, which takes some texts for markup and breaks the lines of
/// markup only: so it is markup, which shows the title as written.
QString toolTipForTitle(const QString& title);

/// The text with every character doubled that would announce a mnemonic: "_" in menus over D-Bus,
/// "&" in Qt's.
QString withoutMnemonics(const QString& text, QChar announcer);

} // namespace navrel
