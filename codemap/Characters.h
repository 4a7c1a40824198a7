#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace navrel {

/// Blanks and line ends.
constexpr bool isWhiteSpace(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Of ASCII; other bytes stay.
constexpr char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

inline std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), &lowerCase);
    return result;
}

} // namespace navrel
