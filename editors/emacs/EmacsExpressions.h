#pragma once

#include <QByteArray>

#include <optional>

/// What Emacs is told to do, in its own Lisp. A path stands in the text as base64 alone, so that no
/// character of it can end a string or begin an expression. Pure.
namespace navrel {

/// "PROCESS PATH" in quotes: the number of its process, and the name of the file in the selected
/// window as base64; empty when that window shows none.
QByteArray emacsActiveFileExpression();

/// Opens a file and selects a line: one operation. Its value is `opened`, or a text in quotes that
/// says why not.
QByteArray emacsOpenExpression(const QByteArray& path, std::optional<int> line);

/// The same for a jump. A column (from 1, in characters) puts the cursor there, with nothing
/// selected; 0 is none.
/// The way back is also where `xref-pop-marker-stack` finds it.
QByteArray emacsJumpExpression(const QByteArray& path, std::optional<int> line, int column);

/// Where the user is: "LINE COLUMN MODIFIED PATH" in quotes, the path as base64 and empty as above,
/// lines and columns from 1, the column in characters, MODIFIED 0 or 1.
QByteArray emacsPlaceExpression();

} // namespace navrel
