#include "codemap/SourceOutline.h"

#include "codemap/LineCounter.h"
#include "codemap/OutlineBuilder.h"
#include "support/text/UTF8.h"

#include <cstdint>

namespace navrel {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr char32_t kReplacement = 0xFFFD;

void appendUTF8(char32_t character, std::string& text) {
    const auto continuation = [character](int shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        text += continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        text += continuation(6);
        text += continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        text += continuation(12);
        text += continuation(6);
        text += continuation(0);
    }
}

/// The units of a text in UTF-16, whose first byte is the high one or the low one.
class UTF16Units {
public:
    UTF16Units(std::string_view bytes, bool highByteFirst)
        : bytes_(bytes), highByteFirst_(highByteFirst) {}

    /// A last byte without its other half is no unit.
    std::size_t count() const { return bytes_.size() / 2; }

    char32_t at(std::size_t index) const {
        const auto first = static_cast<unsigned char>(bytes_[2 * index]);
        const auto second = static_cast<unsigned char>(bytes_[2 * index + 1]);
        return highByteFirst_ ? char32_t(first << 8 | second) : char32_t(second << 8 | first);
    }

    bool isHighSurrogate(std::size_t index) const { return (at(index) & 0xFC00) == 0xD800; }
    bool isLowSurrogate(std::size_t index) const {
        return index < count() && (at(index) & 0xFC00) == 0xDC00;
    }

private:
    std::string_view bytes_;
    bool highByteFirst_;
};

std::string decodedUTF16(const UTF16Units& units) {
    std::string text;
    for (std::size_t index = 0; index < units.count(); ++index) {
        const char32_t unit = units.at(index);
        if (units.isHighSurrogate(index) && units.isLowSurrogate(index + 1)) {
            ++index;
            appendUTF8(0x10000 + ((unit & 0x3FF) << 10) + (units.at(index) & 0x3FF), text);
        } else {
            appendUTF8((unit & 0xF800) == 0xD800 ? kReplacement : unit, text);
        }
    }
    return text;
}

std::string decodedLatin1(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        appendUTF8(static_cast<unsigned char>(byte), text);
    }
    return text;
}

Outline outlineOfLinesAlone(Language language, std::string_view text) {
    return OutlineBuilder(language).finish(LineCounter(text).lines());
}

} // namespace

Outline outlineOfSource(Language language, std::string_view text) {
    if (text.starts_with(kByteOrderMark)) {
        text.remove_prefix(kByteOrderMark.size());
    }
    switch (language) {
    case Language::none:
        break;
    case Language::swift:
        return outlineOfSwift(text);
    case Language::objectiveC:
    case Language::c:
    case Language::cpp:
    case Language::cppHeader:
    case Language::objectiveCpp:
    case Language::header:
        return outlineOfCFamily(language, text);
    }
    return outlineOfLinesAlone(language, text);
}

std::optional<std::string> decodedSource(std::string_view bytes) {
    if (bytes.starts_with(kLittleEndianMark) || bytes.starts_with(kBigEndianMark)) {
        return decodedUTF16({bytes.substr(2), bytes.starts_with(kBigEndianMark)});
    }
    if (!isValidUTF8({bytes.data(), static_cast<qsizetype>(bytes.size())})) {
        return decodedLatin1(bytes);
    }
    return std::nullopt;
}

} // namespace navrel
