#pragma once

#include <QByteArray>

#include <optional>

/// What Emacs is told to do, in its own Lisp. A path stands in the text as base64 alone, so that no
/// character of it can end a string or begin an expression. Pure.
namespace navrel {

/// Name of the file in the selected window, as base64 in quotes; the empty text in quotes when that
/// window shows none.
QByteArray emacsActiveFileExpression();

/// Opens a file and selects a line: one operation. Its value is `opened`, or a text in quotes that
/// says why not.
QByteArray emacsOpenExpression(const QByteArray& path, std::optional<int> line);

} // namespace navrel
