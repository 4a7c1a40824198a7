#pragma once

#include <QDir>
#include <QString>

#include <optional>

namespace navrel {

/// The path that an editor is given for a requested one: absolute, so that nothing in it can look
/// like an option, an address or a command. Nil for what names no file: nothing, or a NUL character
/// within. A relative path is one from the folder of this process.
inline std::optional<QString> requestedPath(const QString& path) {
    if (path.isEmpty() || path.contains(QChar(u'\0'))) {
        return std::nullopt;
    }
    return path.startsWith(QLatin1Char('/')) ? path : QDir::currentPath() + QLatin1Char('/') + path;
}

} // namespace navrel
