#pragma once

#include <QString>

/// Prepares titles for display. Their text is foreign: shortcut comments, names of projects. Pure.
namespace navrel {

/// The longest title that a menu shows whole, in characters as users see them (grapheme clusters).
inline constexpr int kMaximumTitleLength = 60;

/// A title on one line of at most kMaximumTitleLength characters: white space and control
/// characters become blanks, and "…" replaces the middle of a long title.
QString titleOnOneLine(const QString& title);

/// The whole title as a tooltip for Qt: markup that shows the title literally. Qt would take some
/// plain texts for markup, and breaks lines only of markup.
QString toolTipForTitle(const QString& title);

/// The text without mnemonics: every `announcer` is doubled, which is "_" in menus over D-Bus and
/// "&" in Qt's.
QString withoutMnemonics(const QString& text, QChar announcer);

} // namespace navrel
