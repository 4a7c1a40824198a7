#pragma once

#include "codemap/Outline.h"

#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// Larger sources are listed without an outline: hand-written ones are a hundred times smaller.
inline constexpr std::size_t kMaximumSourceSize = std::size_t{16} * 1024 * 1024;

/// The outline of a source text in UTF-8, with or without a byte order mark; invalid bytes are
/// survived, and NUL is white space. Pure; time in proportion to the length of the text. Broken
/// code costs the declaration that it is in.
Outline outlineOfSource(Language language, std::string_view text);

/// One recogniser a language.
Outline outlineOfSwift(std::string_view text);
/// C, Objective-C, C++, Objective-C++ and headers, whose text tells which of these they are.
Outline outlineOfCFamily(Language language, std::string_view text);

/// A file's bytes as UTF-8: UTF-16 by its byte order mark, Latin-1 where the bytes are no UTF-8.
/// Nothing where they need no change.
std::optional<std::string> decodedSource(std::string_view bytes);

} // namespace navrel
