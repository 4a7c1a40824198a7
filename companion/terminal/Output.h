#pragma once

#include <QString>

namespace navrel {

/// What the terminal at the other end can show.
struct TerminalTraits {
    bool isTerminal = false; ///< else a file or a pipe: nothing is wrapped, nothing is paged
    bool isUnicode = true;   ///< what the locale's encoding carries
    int width = 0;           ///< in columns; 0 for no limit
    int height = 0;          ///< in lines; 0 for no limit
};

/// How many columns a line takes: escapes take none, wide letters two.
int columnsOf(const QString& line);

/// A line as several of at most `width` columns, broken at blanks where there are any. Further ones
/// begin below the line's second column of text, or two columns in. Pure.
QString wrappedLine(const QString& line, int width);

/// Text for a locale without Unicode: our own signs as ASCII that looks like them, other characters
/// by their numbers. Pure.
QString asASCII(const QString& text);

/// The text as those traits want it. Pure.
QString fitted(const QString& text, const TerminalTraits& traits);

} // namespace navrel
