#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// Some lines of a source.
struct SourceLines {
    std::uint64_t from = 1; ///< the first line, from 1
    std::uint64_t to = 0;   ///< the last one; below `from` where there is none
    std::uint64_t total = 0;
    std::string text; ///< a line feed between two lines
};

/// Lines `from` to `to` of a text, as many as one answer may hold. Pure.
SourceLines linesOfText(std::string_view text, std::uint64_t from, std::uint64_t to);

/// The same for a file of the project, as UTF-8; nothing where it is no regular file, cannot be
/// read, or is larger than sources are. Reads the disk. Any thread.
std::optional<SourceLines> linesOfFile(const MapNode& file, std::uint64_t from, std::uint64_t to);

} // namespace navrel
