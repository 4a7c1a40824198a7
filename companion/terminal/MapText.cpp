#include "companion/terminal/MapText.h"

#include "companion/terminal/ViewAccess.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/value.hpp>

namespace navrel {

namespace json = boost::json;

namespace {

constexpr int kIndentation = 2;
constexpr int kLineWidth = 6;

QString joined(const json::array& texts) {
    QStringList result;
    for (const json::value& text : texts) {
        if (const json::string* const bytes = text.if_string()) {
            result += TerminalText::harmless(
                QString::fromUtf8(bytes->data(), static_cast<qsizetype>(bytes->size())));
        }
    }
    return result.join(QStringLiteral(", "));
}

/// Without the escapes that set colour and weight.
QString uncoloured(QString text) {
    static const QRegularExpression kEscape(QStringLiteral("\x1B\\[[0-9;]*m"));
    return text.remove(kEscape);
}

QString withBlankBefore(const QString& text) {
    return text.isEmpty() ? text : QLatin1Char(' ') + text;
}

/// Whether a name says already what it is the name of: "init(station:)".
bool saysKind(const QString& name, const QString& kind) {
    static const QStringList kKindsInNames = {QStringLiteral("init"), QStringLiteral("deinit"),
                                              QStringLiteral("subscript")};
    return kKindsInNames.contains(kind) && name.startsWith(kind);
}

} // namespace

QString MapText::tree(const Object& view) const {
    QString result;
    const Object& root = objectAt(view, "root");
    if (!root.empty()) {
        appendNode(root, {}, {}, result);
    }
    return result;
}

void MapText::appendNode(const Object& node, const QString& branches, const QString& branchesBelow,
                         QString& result) const {
    result += branches + nodeLine(node) + QLatin1Char('\n');
    const json::array& children = arrayAt(node, "children");
    for (std::size_t index = 0; index < children.size(); ++index) {
        const bool isLast = index + 1 == children.size();
        const QString own = text_.isSpoken() ? QString(kIndentation, QLatin1Char(' '))
                            : isLast         ? QStringLiteral("└── ")
                                             : QStringLiteral("├── ");
        const QString below = text_.isSpoken() ? own
                              : isLast         ? QStringLiteral("    ")
                                               : QStringLiteral("│   ");
        appendNode(objectOf(children[index]), branchesBelow + own, branchesBelow + below, result);
    }
}

QString MapText::nodeLine(const Object& node) const {
    const QString kind = textAt(node, "kind");
    QString line = textAt(node, "name");
    if (kind != QStringLiteral("file")) {
        line = text_.group(line);
        if (kind != QStringLiteral("group")) {
            line += QStringLiteral(" (%1)").arg(kind);
        }
    }
    const qint64 symbols = numberAt(node, "symbols");
    if (symbols > 0) {
        line += text_.faint(QStringLiteral("  %1").arg(symbols));
    }
    const QString targets = joined(arrayAt(node, "targets"));
    if (!targets.isEmpty()) {
        line += text_.faint(QStringLiteral("  [%1]").arg(targets));
    } else if (kind == QStringLiteral("file") && node.contains("language") &&
               textAt(node, "language") != QStringLiteral("header")) {
        line += text_.faint(QStringLiteral("  (not in a target)"));
    }
    if (node.contains("missing")) {
        line += text_.warning(QStringLiteral("  missing"));
    }
    return line;
}

QString MapText::group(const Object& node) const {
    QString result;
    for (const json::value& item : arrayAt(node, "children")) {
        const Object& child = objectOf(item);
        const bool isFile = bytesAt(child, "kind") == "file";
        result += isFile ? nodeLine(child) : text_.group(textAt(child, "name") + QLatin1Char('/'));
        result += QLatin1Char('\n');
    }
    return result;
}

QString MapText::outline(const Object& view) const {
    QString result;
    for (const auto& [line, text] : outlineLines(view)) {
        result += text + QLatin1Char('\n');
    }
    return result;
}

QList<QPair<qint64, QString>> MapText::outlineLines(const Object& view, qint64 lit) const {
    QList<QPair<qint64, QString>> lines;
    for (const json::value& item : arrayAt(view, "headings")) {
        const Object& heading = objectOf(item);
        lines.append(
            {numberAt(heading, "line"),
             text_.heading((text_.isSpoken() ? QStringLiteral("heading ") : QStringLiteral("── ")) +
                           textAt(heading, "text"))});
    }
    appendSymbols(view, "items", 0, lines);
    for (const json::value& item : arrayAt(view, "notes")) {
        const Object& note = objectOf(item);
        const QString text = textAt(note, "kind") + QStringLiteral(": ") + textAt(note, "text");
        lines.append({numberAt(note, "line"), bytesAt(note, "kind") == "shortcut"
                                                  ? text_.accent(text)
                                                  : text_.warning(text)});
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    for (auto& [line, text] : lines) {
        const QString number = QStringLiteral("%1").arg(line, kLineWidth);
        text = line == lit && lit > 0 ? text_.lit(number + QStringLiteral("  ") + uncoloured(text))
                                      : text_.faint(number) + QStringLiteral("  ") + text;
    }
    return lines;
}

QString MapText::declaration(const Object& symbol) const {
    const QString kind = textAt(symbol, "kind");
    const QString name = textAt(symbol, "name");
    return saysKind(name, kind) ? name : text_.faint(kind) + withBlankBefore(name);
}

/// Declarations nest no deeper than their outline, which bounds the recursion.
void MapText::appendSymbols(const Object& parent, const char* key, int depth,
                            QList<QPair<qint64, QString>>& lines) const {
    for (const json::value& item : arrayAt(parent, key)) {
        const Object& symbol = objectOf(item);
        QString line(depth * kIndentation, QLatin1Char(' '));
        line += declaration(symbol);
        const QString inherits = joined(arrayAt(symbol, "inherits"));
        if (!inherits.isEmpty()) {
            line += text_.faint(QStringLiteral(": ") + inherits);
        }
        lines.append({numberAt(symbol, "line"), line});
        appendSymbols(symbol, "children", depth + 1, lines);
    }
}

QString MapText::place(const Object& item) const {
    const qint64 line = numberAt(item, "line");
    const QString path = textAt(objectAt(item, "file"), "path");
    return text_.faint(line > 0 ? QStringLiteral("%1:%2").arg(path).arg(line) : path);
}

QString MapText::search(const Object& view) const {
    QString result;
    for (const json::value& value : arrayAt(view, "items")) {
        const Object& item = objectOf(value);
        const QString container = textAt(item, "container");
        const QString kind = textAt(item, "kind");
        const QString name = textAt(item, "name");
        result += saysKind(name, kind) ? name : kind + withBlankBefore(name);
        if (!container.isEmpty()) {
            result += text_.faint(QStringLiteral(" in ") + container);
        }
        result += QStringLiteral("  ") + place(item) + QLatin1Char('\n');
    }
    return result;
}

QString MapText::types(const Object& view) const {
    QString result;
    for (const json::value& value : arrayAt(view, "items")) {
        const Object& type = objectOf(value);
        if (!type.contains("kind")) {
            result += text_.faint(textAt(type, "name") + QStringLiteral(" (not in this project)")) +
                      QLatin1Char('\n');
            continue;
        }
        result += textAt(type, "kind") + withBlankBefore(textAt(type, "name"));
        const QString inherits = joined(arrayAt(type, "inherits"));
        if (!inherits.isEmpty()) {
            result += QStringLiteral(": ") + inherits;
        }
        result += QStringLiteral("  ") + place(type) + QLatin1Char('\n');
    }
    return result;
}

QString MapText::notes(const Object& view) const {
    QString result;
    for (const json::value& value : arrayAt(view, "items")) {
        const Object& note = objectOf(value);
        result += place(note) + QStringLiteral("  ") + text_.accent(textAt(note, "kind")) +
                  withBlankBefore(textAt(note, "text")) + QLatin1Char('\n');
    }
    return result;
}

QString MapText::changes(const Object& view) const {
    const QString state = textAt(view, "state");
    if (state == QStringLiteral("noRepository")) {
        return QStringLiteral("The project is in no Git repository.\n");
    }
    if (state != QStringLiteral("ok")) {
        return QStringLiteral("The Git repository cannot be read.\n");
    }
    QString result = QStringLiteral("Since %1 (%2)\n")
                         .arg(textAt(view, "base"), textAt(view, "mergeBase").left(12));
    for (const json::value& value : arrayAt(view, "files")) {
        const Object& file = objectOf(value);
        result += QStringLiteral("%1  %2\n")
                      .arg(textAt(file, "status"), textAt(objectAt(file, "file"), "path"));
        for (const json::value& symbol : arrayAt(file, "symbols")) {
            result += QStringLiteral("%1  %2\n")
                          .arg(numberAt(objectOf(symbol), "line"), kLineWidth)
                          .arg(textAt(objectOf(symbol), "name"));
        }
    }
    return result;
}

} // namespace navrel
