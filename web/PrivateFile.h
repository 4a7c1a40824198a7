#pragma once

#include "support/core/Error.h"

#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// Files that no other user may read.

/// The bytes of a regular file, up to `limit`; nothing where there is none, or it is another kind
/// of file, larger, or cannot be read. Links are followed: users keep such files elsewhere.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit);

/// Replaces a file, mode 0600, in one step: after a crash there is the former one or the new one.
/// Makes its folder, mode 0700, where that is missing.
std::optional<Error> replacePrivateFile(const std::string& path, std::string_view bytes);

} // namespace navrel
