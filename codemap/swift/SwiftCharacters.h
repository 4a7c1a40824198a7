#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace navrel {

/// What a byte may be part of. A set of these.
namespace swift_bytes {
inline constexpr std::uint8_t kBlank = 1;    ///< NUL, too; not the line feed
inline constexpr std::uint8_t kName = 2;     ///< of an identifier, beyond ASCII too
inline constexpr std::uint8_t kDigit = 4;    ///< of an identifier, but not its first
inline constexpr std::uint8_t kOperator = 8; ///< ASCII only
inline constexpr std::uint8_t kBlock = 16;   ///< what is to be looked at in a block of statements
inline constexpr std::uint8_t kString = 32;  ///< what is to be looked at in a string
inline constexpr std::uint8_t kLineFeed = 64;
} // namespace swift_bytes

constexpr std::array<std::uint8_t, 256> makeSwiftBytes() {
    using namespace swift_bytes;
    std::array<std::uint8_t, 256> classes{};
    const auto add = [&classes](const char* characters, std::uint8_t what) {
        for (; *characters != '\0'; ++characters) {
            auto& entry = classes[static_cast<unsigned char>(*characters)];
            entry = static_cast<std::uint8_t>(entry | what);
        }
    };
    add(" \t\r\f\v", kBlank);
    classes[0] = kBlank;
    add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_$", kName);
    add("0123456789", kDigit);
    add("+-*/=<>!&|^~?%", kOperator);
    add("{}\"/#`", kBlock);
    add("\"\\\n", kString);
    add("\n", kLineFeed);
    for (std::size_t byte = 0x80; byte < classes.size(); ++byte) {
        classes[byte] = kName;
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> kSwiftBytes = makeSwiftBytes();

constexpr bool isSwift(char character, std::uint8_t what) {
    return (kSwiftBytes[static_cast<unsigned char>(character)] & what) != 0;
}

} // namespace navrel
