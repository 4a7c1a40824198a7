#pragma once

#include <cstdint>
#include <string_view>

namespace navrel::cfamily {

/// A line of the preprocessor.
struct Directive {
    enum class Kind : std::uint8_t {
        other,
        condition,   ///< #if, #ifdef, #ifndef
        alternative, ///< #elif, #else
        endOfCondition,
        definition,
        mark, ///< #pragma mark
        warning,
        error,
    };
    Kind kind = Kind::other;
    bool isNever = false; ///< #if 0
    bool isSeparator = false;
    /// What is defined, the heading, or the message; a part of the directive.
    std::string_view text;
    std::string_view parameters; ///< of a macro, with their parentheses
};

/// `line` begins with "#" or "%:" and holds the directive's continuations.
Directive readDirective(std::string_view line);

} // namespace navrel::cfamily
