#include "companion/ProjectTree.h"

#include <QSet>
#include <QVariantList>

#include <vector>

namespace navrel {

namespace {

/// A group being listed: its items, and how far the listing has come.
struct OpenGroup {
    QVariantList items;
    qsizetype next = 0;
    QString indentation;
};

OpenGroup openGroup(const QVariantMap& reply, const QString& indentation) {
    return {reply.value(QStringLiteral("items")).toList(), 0, indentation};
}

} // namespace

void visitProjectTree(const QVariantMap& root, const NavigatorSource& source,
                      const std::function<bool(const ProjectTreeEntry&)>& visit) {
    QSet<QString> entered = {root.value(QStringLiteral("identifier")).toString()};
    // A stack of its own: a hostile project nests deeper than calls may.
    std::vector<OpenGroup> open = {openGroup(root, QString())};
    while (!open.empty()) {
        OpenGroup& group = open.back();
        if (group.next == group.items.size()) {
            open.pop_back();
            continue;
        }
        const QVariantMap item = group.items.at(group.next++).toMap();
        const bool isLast = group.next == group.items.size();
        const QString branch = isLast ? QStringLiteral("└── ") : QStringLiteral("├── ");
        if (!visit({item, group.indentation + branch})) {
            return;
        }
        const QString identifier = item.value(QStringLiteral("identifier")).toString();
        if (!item.value(QStringLiteral("isGroup")).toBool() || entered.contains(identifier)) {
            continue;
        }
        entered.insert(identifier);
        const QString indentation =
            group.indentation + (isLast ? QStringLiteral("    ") : QStringLiteral("│   "));
        if (const auto reply = source(identifier)) {
            open.push_back(openGroup(*reply, indentation));
        }
    }
}

} // namespace navrel
