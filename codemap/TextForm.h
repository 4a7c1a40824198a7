#pragma once

#include <string_view>

namespace navrel {

/// What one pass over the bytes of a text shows.
struct TextForm {
    bool isASCII = true;
    /// Whether it is words with one blank between two: no other white space or control character
    /// is in it, and none at its ends.
    bool isOneLine = true;
};

TextForm formOf(std::string_view text);

} // namespace navrel
