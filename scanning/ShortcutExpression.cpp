#include "scanning/ShortcutExpression.h"

#include "support/text/UTF8.h"

namespace navrel {

ShortcutExpression::ShortcutExpression(const ScanPattern& pattern)
    : expression_(compiled(pattern)) {}

std::optional<QByteArray> ShortcutExpression::shortcutOnLine(QByteArrayView line) {
    const auto text = decodeUTF8(line);
    if (!text) {
        return std::nullopt;
    }
    std::optional<QByteArray> shortcut;
    for (const auto& match : expression_.matchesIn(*text).matches) {
        if (match.ranges[1].length > 0) {
            shortcut = textOfGroup(*text, match, 1);
        }
    }
    return shortcut;
}

} // namespace navrel
