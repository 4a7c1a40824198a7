#include "codemap/CodeMapSnapshot.h"

#include <array>
#include <charconv>

namespace navrel {

namespace {

constexpr std::size_t kDigits = 16;
constexpr int kHexadecimal = 16;

bool isDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
}

} // namespace

std::string textOfNodeID(NodeID id) {
    std::array<char, kDigits> digits{};
    const auto end = std::to_chars(digits.begin(), digits.end(), id, kHexadecimal).ptr;
    const auto length = static_cast<std::size_t>(end - digits.begin());
    return std::string(kDigits - length, '0').append(digits.data(), length);
}

std::optional<NodeID> nodeIDFromText(std::string_view text) {
    if (text.size() != kDigits) {
        return std::nullopt;
    }
    for (const char character : text) {
        if (!isDigit(character)) {
            return std::nullopt;
        }
    }
    NodeID id = 0;
    std::from_chars(text.data(), text.data() + text.size(), id, kHexadecimal);
    return id;
}

std::string_view nameOf(NodeKind kind) {
    constexpr std::array<std::string_view, 7> kNames = {
        "group", "file", "folder", "variant", "package", "project", "workspace",
    };
    return kNames[static_cast<std::size_t>(kind)];
}

} // namespace navrel
