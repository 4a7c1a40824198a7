#pragma once

#include <cstddef>
#include <string_view>

/// Searches that pass over what a body or a comment is made of, many bytes at a time.
namespace navrel::cfamily {

/// The first byte from `position` on at which a body may begin or end something: a brace, a quote,
/// "/", "#", "%" or "@". The text's size where there is none.
std::size_t findBodySign(std::string_view text, std::size_t position);

/// The place of the first of two bytes that follow each other; the text's size where they do not.
std::size_t findPair(std::string_view text, std::size_t position, char first, char second);

/// The place of the next line feed; the text's size where there is none.
std::size_t findLineFeed(std::string_view text, std::size_t position);

} // namespace navrel::cfamily
