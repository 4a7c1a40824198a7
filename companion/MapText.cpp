#include "companion/MapText.h"

#include <QList>
#include <QPair>
#include <QStringList>

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/value.hpp>

namespace navrel {

namespace json = boost::json;

namespace {

constexpr int kIndentation = 2;
constexpr int kLineWidth = 6;

QString textOf(const json::object& object, const char* key) {
    const json::value* const value = object.if_contains(key);
    if (value == nullptr || !value->is_string()) {
        return {};
    }
    const json::string& text = value->get_string();
    return TerminalText::harmless(
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

qint64 numberOf(const json::object& object, const char* key) {
    const json::value* const value = object.if_contains(key);
    return value != nullptr && value->is_number() ? value->to_number<qint64>() : 0;
}

const json::array& arrayOf(const json::object& object, const char* key) {
    static const json::array kNothing;
    const json::value* const value = object.if_contains(key);
    return value != nullptr && value->is_array() ? value->get_array() : kNothing;
}

const json::object& objectOf(const json::object& object, const char* key) {
    static const json::object kNothing;
    const json::value* const value = object.if_contains(key);
    return value != nullptr && value->is_object() ? value->get_object() : kNothing;
}

QString joined(const json::array& texts) {
    QStringList result;
    for (const json::value& text : texts) {
        const json::string& bytes = text.as_string();
        result += TerminalText::harmless(
            QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())));
    }
    return result.join(QStringLiteral(", "));
}

QString withBlankBefore(const QString& text) {
    return text.isEmpty() ? text : QLatin1Char(' ') + text;
}

} // namespace

QString MapText::tree(const Object& view) const {
    QString result;
    const Object& root = objectOf(view, "root");
    if (!root.empty()) {
        appendNode(root, {}, {}, result);
    }
    return result;
}

void MapText::appendNode(const Object& node, const QString& branches, const QString& branchesBelow,
                         QString& result) const {
    result += branches + nodeLine(node) + QLatin1Char('\n');
    const json::array& children = arrayOf(node, "children");
    for (std::size_t index = 0; index < children.size(); ++index) {
        const bool isLast = index + 1 == children.size();
        const QString own = isLast ? QStringLiteral("└── ") : QStringLiteral("├── ");
        const QString below = isLast ? QStringLiteral("    ") : QStringLiteral("│   ");
        appendNode(children[index].as_object(), branchesBelow + own, branchesBelow + below, result);
    }
}

QString MapText::nodeLine(const Object& node) const {
    const QString kind = textOf(node, "kind");
    QString line = textOf(node, "name");
    if (kind != QStringLiteral("file")) {
        line = text_.group(line);
        if (kind != QStringLiteral("group")) {
            line += QStringLiteral(" (%1)").arg(kind);
        }
    }
    const qint64 symbols = numberOf(node, "symbols");
    if (symbols > 0) {
        line += text_.faint(QStringLiteral("  %1").arg(symbols));
    }
    const QString targets = joined(arrayOf(node, "targets"));
    if (!targets.isEmpty()) {
        line += text_.faint(QStringLiteral("  [%1]").arg(targets));
    } else if (kind == QStringLiteral("file") && node.contains("language") &&
               textOf(node, "language") != QStringLiteral("header")) {
        line += text_.faint(QStringLiteral("  (not in a target)"));
    }
    if (node.contains("missing")) {
        line += text_.warning(QStringLiteral("  missing"));
    }
    return line;
}

QString MapText::outline(const Object& view) const {
    QList<QPair<qint64, QString>> lines;
    for (const json::value& item : arrayOf(view, "headings")) {
        const Object& heading = item.as_object();

        lines.append({numberOf(heading, "line"),
                      text_.heading(QStringLiteral("── ") + textOf(heading, "text"))});
    }
    appendSymbols(view, "items", 0, lines);
    for (const json::value& item : arrayOf(view, "notes")) {
        const Object& note = item.as_object();
        lines.append(
            {numberOf(note, "line"),
             text_.warning(textOf(note, "kind") + QStringLiteral(": ") + textOf(note, "text"))});
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    QString result;
    for (const auto& [line, text] : lines) {
        result += text_.faint(QStringLiteral("%1").arg(line, kLineWidth)) + QStringLiteral("  ") +
                  text + QLatin1Char('\n');
    }
    return result;
}

/// Declarations nest no deeper than their outline, which bounds the recursion.
void MapText::appendSymbols(const Object& parent, const char* key, int depth,
                            QList<QPair<qint64, QString>>& lines) const {
    for (const json::value& item : arrayOf(parent, key)) {
        const Object& symbol = item.as_object();
        QString line(depth * kIndentation, QLatin1Char(' '));
        line += text_.faint(textOf(symbol, "kind")) + withBlankBefore(textOf(symbol, "name"));
        const QString inherits = joined(arrayOf(symbol, "inherits"));
        if (!inherits.isEmpty()) {
            line += text_.faint(QStringLiteral(": ") + inherits);
        }
        lines.append({numberOf(symbol, "line"), line});
        appendSymbols(symbol, "children", depth + 1, lines);
    }
}

QString MapText::place(const Object& item) const {
    const qint64 line = numberOf(item, "line");
    const QString path = textOf(objectOf(item, "file"), "path");
    return text_.faint(line > 0 ? QStringLiteral("%1:%2").arg(path).arg(line) : path);
}

QString MapText::search(const Object& view) const {
    QString result;
    for (const json::value& value : arrayOf(view, "items")) {
        const Object& item = value.as_object();
        const QString container = textOf(item, "container");
        result += textOf(item, "kind") + withBlankBefore(textOf(item, "name"));
        if (!container.isEmpty()) {
            result += text_.faint(QStringLiteral(" in ") + container);
        }
        result += QStringLiteral("  ") + place(item) + QLatin1Char('\n');
    }
    return result;
}

QString MapText::types(const Object& view) const {
    QString result;
    for (const json::value& value : arrayOf(view, "items")) {
        const Object& type = value.as_object();
        if (!type.contains("kind")) {
            result += text_.faint(textOf(type, "name") + QStringLiteral(" (not in this project)")) +
                      QLatin1Char('\n');
            continue;
        }
        result += textOf(type, "kind") + withBlankBefore(textOf(type, "name"));
        const QString inherits = joined(arrayOf(type, "inherits"));
        if (!inherits.isEmpty()) {
            result += QStringLiteral(": ") + inherits;
        }
        result += QStringLiteral("  ") + place(type) + QLatin1Char('\n');
    }
    return result;
}

QString MapText::notes(const Object& view) const {
    QString result;
    for (const json::value& value : arrayOf(view, "items")) {
        const Object& note = value.as_object();
        result += place(note) + QStringLiteral("  ") + text_.accent(textOf(note, "kind")) +
                  withBlankBefore(textOf(note, "text")) + QLatin1Char('\n');
    }
    return result;
}

QString MapText::changes(const Object& view) const {
    const QString state = textOf(view, "state");
    if (state == QStringLiteral("noRepository")) {
        return QStringLiteral("The project is in no Git repository.\n");
    }
    if (state != QStringLiteral("ok")) {
        return QStringLiteral("The Git repository cannot be read.\n");
    }
    QString result = QStringLiteral("Since %1 (%2)\n")
                         .arg(textOf(view, "base"), textOf(view, "mergeBase").left(12));
    for (const json::value& value : arrayOf(view, "files")) {
        const Object& file = value.as_object();
        result += QStringLiteral("%1  %2\n")
                      .arg(textOf(file, "status"), textOf(objectOf(file, "file"), "path"));
        for (const json::value& symbol : arrayOf(file, "symbols")) {
            result += QStringLiteral("%1  %2\n")
                          .arg(numberOf(symbol.as_object(), "line"), kLineWidth)
                          .arg(textOf(symbol.as_object(), "name"));
        }
    }
    return result;
}

} // namespace navrel
