#include "scanning/LineExpressions.h"

#include "support/text/UTF8.h"

#include <utility>

namespace navrel {

namespace {

QByteArray textOfGroup(const QString& text, const RegularExpression::Match& match,
                       std::size_t group) {
    const RegularExpression::Range range = match.ranges[group];
    return QStringView(text).sliced(range.location, range.length).toUtf8();
}

} // namespace

std::optional<SuperclassExpression>
SuperclassExpression::forBaseName(QByteArrayView baseName, std::chrono::milliseconds atMost,
                                  const ScanPattern& pattern) {
    const auto name = decodeUTF8(baseName);
    if (!name) {
        return std::nullopt;
    }
    const QString placeholder = QStringLiteral("%@");
    QString text = pattern.text;
    // Not escaped, deliberately: "Foo+Bar" repeats the letter before the plus sign.
    text.replace(text.indexOf(placeholder), placeholder.size(), *name);
    auto outcome = RegularExpression::compile(text, pattern.options);
    auto* expression = std::get_if<RegularExpression>(&outcome);
    if (expression == nullptr) {
        return std::nullopt;
    }
    return SuperclassExpression(std::move(*expression),
                                RegularExpression::Deadline::clock::now() + atMost);
}

std::optional<QByteArray> SuperclassExpression::superclassOnLine(QByteArrayView line) {
    const auto text = decodeUTF8(line);
    if (!text) {
        return std::nullopt;
    }
    const auto found = expression_.matchesIn(*text, deadline_);
    error_ = found.error;
    // A base name with groups of its own can leave the first one out of a match.
    if (found.error || found.matches.empty() || found.matches.back().ranges[1].location < 0) {
        return std::nullopt;
    }
    return textOfGroup(*text, found.matches.back(), 1);
}

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
