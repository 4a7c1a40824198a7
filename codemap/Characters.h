#pragma once

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

} // namespace navrel
