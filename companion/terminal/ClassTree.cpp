#include "companion/terminal/ClassTree.h"

#include "codemap/Characters.h"
#include "companion/terminal/Names.h"
#include "companion/terminal/ViewAccess.h"

#include <algorithm>

namespace navrel {

namespace json = boost::json;

namespace {

constexpr int kTreeIndentation = 2;
/// Deeper ones would leave the right edge of any terminal.
constexpr int kDeepest = 40;

} // namespace

ClassTree::ClassTree(const json::object& types, const TerminalText& text) : text_(text) {
    for (const json::value& item : arrayAt(types, "items")) {
        const json::object& type = objectOf(item);
        const std::string name = bytesAt(type, "name");
        names_.insert(name);
        for (const json::value& parent : arrayAt(type, "inherits")) {
            if (parent.is_string()) {
                derived_.emplace(parent.get_string(), &type);
                names_.emplace(parent.get_string());
                children_.insert(name);
            }
        }
    }
}

QString ClassTree::line(const json::object& type) const {
    const json::object& file = objectAt(type, "file");
    const qint64 number = numberAt(type, "line");
    const QString path = textAt(file, "path");
    return textAt(type, "name") + QStringLiteral("  ") +
           text_.faint(number > 0 ? QStringLiteral("%1:%2").arg(path).arg(number) : path);
}

/// A type that was entered before (it has two parents, or derives from itself while somebody edits
/// it) is shown again, but not entered.
void ClassTree::appendBelow(const std::string& name, int depth, Names& entered,
                            QString& result) const {
    if (depth > kDeepest || !entered.insert(name).second) {
        return;
    }
    const auto [first, last] = derived_.equal_range(name);
    for (auto it = first; it != last; ++it) {
        result += QString(depth * kTreeIndentation, u' ') + line(*it->second) + u'\n';
        appendBelow(bytesAt(*it->second, "name"), depth + 1, entered, result);
    }
}

QString ClassTree::all() const {
    QString result;
    Names entered;
    for (auto it = derived_.begin(); it != derived_.end(); it = derived_.upper_bound(it->first)) {
        if (!children_.contains(it->first)) { // else it is shown below its own parent
            result +=
                text_.group(TerminalText::harmless(QString::fromStdString(it->first))) + u'\n';
            appendBelow(it->first, 1, entered, result);
        }
    }
    return result;
}

std::optional<QString> ClassTree::below(std::string_view name) const {
    auto found = names_.find(std::string(name));
    if (found == names_.end()) {
        found = std::find_if(names_.begin(), names_.end(), [&](const std::string& each) {
            return lowered(each) == lowered(name);
        });
    }
    if (found == names_.end()) {
        return std::nullopt;
    }
    QString result;
    Names entered;
    appendBelow(*found, 0, entered, result);
    return result;
}

} // namespace navrel
