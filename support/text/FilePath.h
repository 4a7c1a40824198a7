#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>

#include <climits>

/// Operations on the text of file paths. Paths are UTF-8 bytes, as the project model and the file
/// system have them. No function reads the file system. Any thread.
namespace navrel {

/// The longest path in bytes that can name a file.
inline constexpr qsizetype kMaximumPathLength = PATH_MAX - 1;

/// Whether a path can name a file: it must not be empty or too long, nor have a NUL byte.
bool canNameAFile(QByteArrayView path);

/// As above. False also for half of a surrogate pair: as bytes, such a path would name another
/// file.
bool canNameAFile(QStringView path);

/// The path of `component` within `path`: both joined with one slash, repeated slashes made one, a
/// slash at the end dropped; ".." and "." stay as they are. A component that begins with a slash is
/// joined like any other. An empty part adds nothing.
QByteArray appendingPathComponent(QByteArrayView path, QByteArrayView component);

/// The part after the last slash, not counting slashes at the end; "/" for the root, empty for the
/// empty path.
QByteArray lastPathComponent(QByteArrayView path);

/// The path without its last component: "/a" for "/a/b", "/" for "/a", the empty text for "a".
QByteArray deletingLastPathComponent(QByteArrayView path);

/// The part after the last dot of the last component, exactly as written. Empty if there is no dot,
/// nothing after it, or nothing before it (".profile" has no extension).
QByteArray pathExtension(QByteArrayView path);

/// As the functions above, but returning a part of the path: valid as long as the path is.
QByteArrayView lastPathComponentView(QByteArrayView path);
QByteArrayView pathExtensionView(QByteArrayView path);

/// The path without its extension and the dot before it.
QByteArray deletingPathExtension(QByteArrayView path);

} // namespace navrel
