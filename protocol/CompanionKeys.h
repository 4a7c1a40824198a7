#pragma once

#include <QString>

namespace navrel {

/// The keys of requests and replies, as they are on the wire.
namespace key {
inline const QString allowed = QStringLiteral("allowed");
inline const QString autoUpdate = QStringLiteral("autoUpdate");
inline const QString counterpart = QStringLiteral("counterpart");
inline const QString extension = QStringLiteral("extension");
inline const QString identifier = QStringLiteral("identifier");
inline const QString isGroup = QStringLiteral("isGroup");
inline const QString items = QStringLiteral("items");
inline const QString label = QStringLiteral("label");
inline const QString line = QStringLiteral("line");
inline const QString name = QStringLiteral("name");
inline const QString path = QStringLiteral("path");
inline const QString project = QStringLiteral("project");
inline const QString shortcut = QStringLiteral("shortcut");
inline const QString superclass = QStringLiteral("superclass");
inline const QString title = QStringLiteral("title");
inline const QString type = QStringLiteral("type");
inline const QString version = QStringLiteral("version");
} // namespace key

} // namespace navrel
