#include "web/SourceText.h"

#include "codemap/SourceOutline.h"
#include "web/Limits.h"
#include "web/PrivateFile.h"

#include <algorithm>

namespace navrel {

namespace {

/// The line at the front of `rest`, which loses it and its end.
std::string_view takeLine(std::string_view& rest) {
    const auto end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

/// As much of a text as is allowed, without half a character at its end.
std::string_view cut(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text;
    }
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) {
        --size;
    }
    return text.substr(0, size);
}

} // namespace

SourceLines linesOfText(std::string_view text, std::uint64_t from, std::uint64_t to) {
    SourceLines lines;
    lines.from = std::max<std::uint64_t>(from, 1);
    lines.to = lines.from - 1;
    const bool isWanted = to >= lines.from;
    const std::uint64_t last =
        isWanted ? lines.from + std::min(to - lines.from, std::uint64_t{kMaximumSourceLines - 1})
                 : 0;
    bool isFull = false;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        ++lines.total;
        if (lines.total < lines.from || lines.total > last || isFull) {
            continue;
        }
        const std::size_t room = kMaximumSourceText - lines.text.size();
        isFull = line.size() >= room;
        lines.text.append(lines.total == lines.from ? "" : "\n").append(cut(line, room));
        lines.to = lines.total;
    }
    return lines;
}

std::optional<SourceLines> linesOfFile(const MapNode& file, std::uint64_t from, std::uint64_t to) {
    const auto bytes = readSmallFile(file.absolutePath, kMaximumSourceSize);
    if (!bytes) {
        return std::nullopt;
    }
    const auto decoded = decodedSource(*bytes);
    return linesOfText(decoded ? *decoded : *bytes, from, to);
}

} // namespace navrel
