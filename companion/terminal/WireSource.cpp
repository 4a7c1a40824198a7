#include "companion/terminal/WireSource.h"

#include "protocol/CompanionKeys.h"
#include "protocol/CompanionProtocol.h"
#include "support/propertylist/PropertyList.h"

#include <QVariantList>

#include <set>

namespace navrel {

namespace json = boost::json;

namespace {

/// A hostile Navrel's groups nest deeper than calls may.
constexpr int kDeepestGroup = 200;

std::string bytesOf(const QVariantMap& map, const char* key) {
    return map.value(QLatin1String(key)).toString().toStdString();
}

QVariantList itemsOf(const std::optional<QVariantMap>& reply) {
    return reply ? reply->value(key::items).toList() : QVariantList();
}

CodeAnswer noProject() {
    return CodeAnswer::failure(
        CommandResult::notFound, QStringLiteral("No project is loaded."),
        QStringLiteral("Open a file of an Xcode project in your editor, or choose a project in "
                       "Navrel's menu."));
}

CodeAnswer answer(json::object view) {
    view["revision"] = 0;
    return {CommandResult::done, std::move(view), {}, {}};
}

json::object fileOf(const QVariantMap& item) {
    return {{"id", bytesOf(item, "identifier")},
            {"name", bytesOf(item, "name")},
            {"path", bytesOf(item, "path")}};
}

/// Asks for the groups of a project, each once: a project may name one twice, or within itself.
class TreeWalk {
public:
    explicit TreeWalk(const WireSource::Ask& ask) : ask_(ask) {}

    json::object nodeOf(const QVariantMap& item, int depth) {
        json::object node = fileOf(item);
        const bool isGroup = booleanOf(item.value(key::isGroup)).value_or(false);
        node["kind"] = isGroup ? "group" : "file";
        const QString identifier = item.value(key::identifier).toString();
        if (isGroup && depth < kDeepestGroup && entered_.insert(identifier).second) {
            node["children"] =
                childrenOf(ask_(kFrameNavigator, {{key::identifier, identifier}}), depth);
        }
        return node;
    }

    json::array childrenOf(const std::optional<QVariantMap>& reply, int depth) {
        json::array children;
        for (const QVariant& item : itemsOf(reply)) {
            children.push_back(nodeOf(item.toMap(), depth + 1));
        }
        return children;
    }

    void enter(const QString& identifier) { entered_.insert(identifier); }

private:
    const WireSource::Ask& ask_;
    std::set<QString> entered_;
};

std::uint32_t lineOf(const QVariantMap& item) {
    return item.value(key::line).toUInt();
}

void addElement(const QVariantMap& element, const json::object& file, json::object& outline) {
    const std::string type = bytesOf(element, "type");
    const std::string name = bytesOf(element, "name");
    const std::uint32_t line = lineOf(element);
    if (type == "mark") {
        outline["headings"].as_array().push_back({{"line", line}, {"text", name}});
    } else if (type == "warning" || type == "shortcut") {
        outline["notes"].as_array().push_back(
            {{"kind", type}, {"text", name}, {"line", line}, {"file", file}});
    } else {
        outline["items"].as_array().push_back(
            {{"kind", type}, {"name", name}, {"line", line}, {"endLine", line}});
    }
}

} // namespace

CodeAnswer WireSource::project() {
    const auto reply = ask_(kFrameProject, {});
    return reply ? answer({{"state", "loaded"}, {"folder", bytesOf(*reply, "project")}})
                 : noProject();
}

CodeAnswer WireSource::version() {
    const auto reply = ask_(kFrameVersion, {});
    return reply ? answer({{"program", "Navrel"}, {"version", bytesOf(*reply, "version")}})
                 : CodeAnswer::failure(CommandResult::noNavrel,
                                       QStringLiteral("Navrel did not answer."),
                                       QStringLiteral("Try again; if it stays silent, restart "
                                                      "Navrel."));
}

CodeAnswer WireSource::tree() {
    const auto reply = ask_(kFrameRootNavigator, {});
    if (!reply) {
        return noProject();
    }
    TreeWalk walk(ask_);
    walk.enter(reply->value(key::identifier).toString());
    json::object root = {{"id", bytesOf(*reply, "identifier")},
                         {"name", bytesOf(*reply, "label")},
                         {"kind", "group"},
                         {"path", bytesOf(*reply, "path")},
                         {"children", walk.childrenOf(reply, 0)}};
    return answer({{"root", std::move(root)}});
}

CodeAnswer WireSource::outline(const std::string& file) {
    const auto reply = ask_(kFrameElements, {{key::identifier, QString::fromStdString(file)}});
    if (!reply) {
        return CodeAnswer::failure(CommandResult::notFound,
                                   QStringLiteral("This file has no outline."),
                                   QStringLiteral("Only sources have one."));
    }
    json::object view = {{"id", file},
                         {"name", bytesOf(*reply, "title")},
                         {"path", bytesOf(*reply, "path")},
                         {"counterparts", json::array()},
                         {"items", json::array()},
                         {"headings", json::array()},
                         {"notes", json::array()}};
    const std::string counterpart = bytesOf(*reply, "counterpart");
    if (!counterpart.empty()) {
        view["counterparts"].as_array().push_back(
            {{"id", counterpart}, {"name", counterpart}, {"path", counterpart}});
    }
    const json::object own = {{"id", file}, {"path", bytesOf(*reply, "path")}};
    for (const QVariant& item : itemsOf(reply)) {
        addElement(item.toMap(), own, view);
    }
    return answer(std::move(view));
}

CodeAnswer WireSource::types() {
    json::array types;
    for (const QVariant& name : itemsOf(ask_(kFrameSuperclasses, {}))) {
        const std::string superclass = name.toString().toStdString();
        types.push_back({{"name", superclass}, {"known", false}});
        const auto reply = ask_(kFrameNavigator, {{key::superclass, name.toString()}});
        for (const QVariant& item : itemsOf(reply)) {
            const QVariantMap file = item.toMap();
            types.push_back({{"name", bytesOf(file, "name")},
                             {"kind", "class"},
                             {"inherits", {superclass}},
                             {"file", fileOf(file)},
                             {"known", true}});
        }
    }
    return answer({{"items", std::move(types)}});
}

CodeAnswer WireSource::shortcuts() {
    json::array notes;
    for (const QVariant& item : itemsOf(ask_(kFrameShortcuts, {}))) {
        const QVariantMap shortcut = item.toMap();
        const std::string path = bytesOf(shortcut, "path");
        notes.push_back({{"kind", "shortcut"},
                         {"text", bytesOf(shortcut, "shortcut")},
                         {"line", lineOf(shortcut)},
                         {"file", {{"path", path}}}});
    }
    return answer({{"items", std::move(notes)}});
}

namespace {

CodeAnswer fileTypesIn(const std::optional<QVariantMap>& reply) {
    json::array types;
    for (const QVariant& item : itemsOf(reply)) {
        const QVariantMap type = item.toMap();
        types.push_back({{"extension", bytesOf(type, "extension")},
                         {"allowed", booleanOf(type.value(key::allowed)).value_or(false)}});
    }
    return answer({{"items", std::move(types)}});
}

} // namespace

CodeAnswer WireSource::fileTypes() {
    return fileTypesIn(ask_(kFrameFileTypes, {}));
}

CodeAnswer WireSource::switchFileType(const std::string& extension, bool allowed) {
    return fileTypesIn(
        ask_(kFrameChangeFileType, {{key::extension, QString::fromStdString(extension)},
                                    {key::allowed, allowed ? 1 : 0}}));
}

CodeAnswer WireSource::open(const std::string&, const std::string& path, std::uint32_t line,
                            std::uint32_t) {
    QVariantMap request = {{key::path, QString::fromStdString(path)}};
    if (line > 0) {
        request.insert(key::line, line);
    }
    ask_(kFrameOpenFile, request);
    return answer({{"outcome", "asked"}});
}

} // namespace navrel
