#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace navrel {

/// One entry of the tree, in the order in which a navigator shows them.
struct ProjectTreeEntry {
    QVariantMap item; ///< as in a navigator reply: "name", "identifier", "isGroup", "path"
    QString branches; ///< the lines of the tree before the entry
};

/// Asks for a group's listing: a navigator reply, or nothing.
using NavigatorSource = std::function<std::optional<QVariantMap>(const QString& identifier)>;

/// Calls `visit` for everything below a group, given by its navigator reply, until it returns
/// false. A group that has been shown already (projects may name one twice, or within itself) is
/// visited again, but not entered.
void visitProjectTree(const QVariantMap& root, const NavigatorSource& source,
                      const std::function<bool(const ProjectTreeEntry&)>& visit);

} // namespace navrel
