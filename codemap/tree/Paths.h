#pragma once

#include <string>
#include <string_view>

/// Absolute paths as texts: one slash between two parts, none at the end, no "." and "..". None of
/// these functions looks at the disk. Any thread.
namespace navrel {

/// A path within a folder; one that begins with a slash stands for itself. "." and ".." are
/// resolved by the text.
std::string resolvedPath(std::string_view folder, std::string_view path);

/// Without the last part: "/" for "/a" and for "/".
std::string_view parentFolder(std::string_view path);
/// The last part, slashes at the end not counted.
std::string_view lastPart(std::string_view path);
/// What stands after the last dot of the last part; empty where there is none, or nothing before
/// it.
std::string_view extensionOf(std::string_view path);
/// The last part without its extension.
std::string_view lastPartWithoutExtension(std::string_view path);

/// Whether a path lies below a folder, or is it.
bool isWithin(std::string_view path, std::string_view folder);
/// The way from a folder to a path: "../Other/a.c".
std::string relativePath(std::string_view path, std::string_view folder);
/// The last two parts: "Other/a.c".
std::string_view lastTwoParts(std::string_view path);

} // namespace navrel
