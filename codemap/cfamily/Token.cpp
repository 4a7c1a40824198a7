#include "codemap/cfamily/Token.h"

#include <array>

namespace navrel::cfamily {

namespace {

enum : std::uint8_t { kNamePart = 1, kNameBegin = 2, kDigit = 4, kBlank = 8 };

constexpr std::array<std::uint8_t, 256> makeClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (std::size_t byte = 0; byte < classes.size(); ++byte) {
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                              byte == '_' || byte == '$' || byte >= 0x80;
        if (isLetter) {
            classes[byte] = kNamePart | kNameBegin;
        } else if (byte >= '0' && byte <= '9') {
            classes[byte] = kNamePart | kDigit;
        } else if (byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == 0) {
            classes[byte] = kBlank;
        }
    }
    return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = makeClasses();

std::uint8_t classOf(char byte) {
    return kClasses[static_cast<unsigned char>(byte)];
}

} // namespace

bool isNameByte(char byte) {
    return (classOf(byte) & kNamePart) != 0;
}

bool isNameStart(char byte) {
    return (classOf(byte) & kNameBegin) != 0;
}

bool isDigit(char byte) {
    return (classOf(byte) & kDigit) != 0;
}

bool isBlank(char byte) {
    return (classOf(byte) & kBlank) != 0;
}

} // namespace navrel::cfamily
