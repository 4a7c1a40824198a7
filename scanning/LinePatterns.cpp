#include "scanning/LinePatterns.h"

#include "support/core/Assertion.h"

#include <utility>
#include <variant>

namespace navrel {

RegularExpression compiled(const ScanPattern& pattern) {
    auto outcome = RegularExpression::compile(pattern.text, pattern.options);
    auto* expression = std::get_if<RegularExpression>(&outcome);
    NAVREL_ASSERT(expression != nullptr);
    return std::move(*expression);
}

QByteArray textOfGroup(const QString& text, const RegularExpression::Match& match,
                       std::size_t group) {
    const RegularExpression::Range range = match.ranges[group];
    return QStringView(text).sliced(range.location, range.length).toUtf8();
}

} // namespace navrel
