#pragma once

#include "support/text/FilePath.h"

#include <QDir>
#include <QString>

#include <optional>

namespace navrel {

/// The path that an editor is given for a requested one: absolute, so that nothing in it can look
/// like an option, an address or a command. Nil for a text that can name no file. Relative paths
/// start at the folder of this process.
inline std::optional<QString> requestedPath(const QString& path) {
    if (!canNameAFile(path)) {
        return std::nullopt;
    }
    if (path.startsWith(QLatin1Char('/'))) {
        return path;
    }
    const QString absolute = QDir::currentPath() + QLatin1Char('/') + path;
    return canNameAFile(absolute) ? std::optional(absolute) : std::nullopt;
}

} // namespace navrel
