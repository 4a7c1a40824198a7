#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>

#include <climits>

/// Operations on the text of file paths, as UTF-8 bytes: the form in which the project model keeps
/// them and in which the file system takes them. None looks at the file system. Any thread.
namespace navrel {

/// No longer path names a file.
inline constexpr qsizetype kMaximumPathLength = PATH_MAX - 1;

/// Whether a path can name a file at all.
bool canNameAFile(QByteArrayView path);

/// The same of a path as a text. One with half of a surrogate pair names none: its bytes would be
/// those of another file.
bool canNameAFile(QStringView path);

/// The path of `component` within `path`: both joined with one slash, repeated slashes made one, a
/// slash at the end dropped; ".." and "." stay as they are. A component that begins with a slash is
/// joined like any other. An empty part adds nothing.
QByteArray appendingPathComponent(QByteArrayView path, QByteArrayView component);

/// What stands after the last slash, slashes at the end not counted; "/" for the root, the empty
/// text for the empty path.
QByteArray lastPathComponent(QByteArrayView path);

/// The path without its last component: "/a" for "/a/b", "/" for "/a", the empty text for "a".
QByteArray deletingLastPathComponent(QByteArrayView path);

/// What stands after the last dot of the last component, exactly as written. Empty where there is
/// no dot, nothing after it, or nothing before it (".profile" has no extension).
QByteArray pathExtension(QByteArrayView path);

/// The last component and the extension as parts of the path, valid as long as it is.
QByteArrayView lastPathComponentView(QByteArrayView path);
QByteArrayView pathExtensionView(QByteArrayView path);

/// The path without its extension and the dot before it.
QByteArray deletingPathExtension(QByteArrayView path);

} // namespace navrel
