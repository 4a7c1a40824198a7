#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// The bytes as a gzip file, the same ones each time.
std::string gzipped(std::string_view bytes);

/// What a gzip file of the program's own holds; nothing for another or a damaged one, or one that
/// holds more than `limit`.
std::optional<std::string> gunzipped(std::string_view bytes, std::size_t limit);

} // namespace navrel
