#pragma once

#include "codemap/cfamily/Token.h"

#include <string_view>

namespace navrel::cfamily {

/// Which words of a text are words of the language.
enum class Dialect : std::uint8_t {
    c,       ///< C and Objective-C
    cpp,     ///< C++ and Objective-C++
    unknown, ///< a header: the words of C++ where they stand as in C++
};

struct WordEntry {
    std::string_view text;
    Word word = Word::name;
    bool isCppOnly = false;
};

/// The entry of a word that means something; null for a name. The word must not be empty.
const WordEntry* findWord(std::string_view word);

/// What a word means. `next` is the first byte after it that is not blank: it tells a word of C++
/// in a header from a name of C.
Word wordOf(const WordEntry& entry, Dialect dialect, char next);

/// What a word after "@" means.
AtWord atWordOf(std::string_view word);

/// Whether a word has capitals, digits and "_" only: macros are named like this.
bool isAllCapitals(std::string_view word);
/// Whether a word is in capitals, or is so up to its last part: "SEQUENCE_END_cb". A constant's
/// name may look like this, too, or a function's.
bool looksLikeMacro(std::string_view word);

} // namespace navrel::cfamily
