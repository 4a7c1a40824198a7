#include "scanning/SuperclassExpression.h"

#include "support/text/UTF8.h"

#include <utility>
#include <variant>

namespace navrel {

std::optional<SuperclassExpression> SuperclassExpression::forBaseName(QByteArrayView baseName,
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
    return SuperclassExpression(std::move(*expression));
}

std::optional<QByteArray>
SuperclassExpression::superclassOnLine(QByteArrayView line,
                                       std::optional<RegularExpression::Steps> atMost) {
    steps_ = 0;
    const auto text = decodeUTF8(line);
    if (!text) {
        return std::nullopt;
    }
    const auto found = expression_.matchesIn(*text, atMost);
    steps_ = found.steps;
    error_ = found.error;
    if (found.error || found.matches.empty()) {
        return std::nullopt;
    }
    // A base name can take the group out of the pattern ("\\Q"), or bring one that takes no part.
    const auto& ranges = found.matches.back().ranges;
    if (ranges.size() < 2 || ranges[1].location < 0) {
        return std::nullopt;
    }
    return textOfGroup(*text, found.matches.back(), 1);
}

} // namespace navrel
