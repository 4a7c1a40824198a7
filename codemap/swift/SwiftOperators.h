#pragma once

#include <cstddef>

namespace navrel {

/// How many bytes the character at a place takes in UTF-8: 1 for what is none.
std::size_t lengthOfSwiftCharacter(const char* place, const char* end);

/// Whether an operator may hold the character at a place, which is beyond ASCII: "≤", "√", "→".
bool isSwiftOperatorAt(const char* place, const char* end);

} // namespace navrel
