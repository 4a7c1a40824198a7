#include "scanning/ScanPatterns.h"

#include "support/Assertion.h"

#include <utility>
#include <variant>

namespace navrel {

RegularExpression compiled(const ScanPattern& pattern) {
    auto outcome = RegularExpression::compile(pattern.text, pattern.options);
    auto* expression = std::get_if<RegularExpression>(&outcome);
    NAVREL_ASSERT(expression != nullptr);
    return std::move(*expression);
}

} // namespace navrel
