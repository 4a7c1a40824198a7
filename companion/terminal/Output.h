#pragma once

#include <QString>

namespace navrel {

/// What standard output can show.
struct TerminalTraits {
    bool isTerminal = false; ///< false for a file or a pipe, where nothing is wrapped or paged
    bool isUnicode = true;   ///< the locale's encoding is one of Unicode
    int width = 0;           ///< in columns; 0 for no limit
    int height = 0;          ///< in lines; 0 for no limit
};

/// How many columns a line takes up: escape sequences take none, wide characters two. Depends on
/// the locale (wcwidth).
int columnsOf(const QString& line);

/// A line broken into lines of at most `width` columns, joined by line feeds. Breaks at blanks
/// where it can. Continuation lines are indented to the line's second column of text (what follows
/// its first gap of two blanks), or by two columns more than the line. Unchanged for a width of 0.
QString wrappedLine(const QString& line, int width);

/// Text for a locale without Unicode: the signs that Navrel draws become similar ASCII, every other
/// character its code point: "<U+00E9>". Pure.
QString asASCII(const QString& text);

/// The text, of any number of lines, in ASCII and wrapped as the traits require.
QString fitted(const QString& text, const TerminalTraits& traits);

} // namespace navrel
