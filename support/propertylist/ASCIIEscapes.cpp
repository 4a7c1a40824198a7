#include "support/propertylist/ASCIIPropertyList.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <array>

namespace navrel::propertylist {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The characters of the NeXTSTEP encoding's bytes from 0x80 on; below it is ASCII.
constexpr std::array<char16_t, 128> kNeXTSTEP = {
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7, // 80
    0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF, // 88
    0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9, // 90
    0x00DA, 0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7, // 98
    0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192, 0x00A7, // A0
    0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, // A8
    0x00AE, 0x2013, 0x2020, 0x2021, 0x00B7, 0x00A6, 0x00B6, 0x2022, // B0
    0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF, // B8
    0x00B9, 0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, // C0
    0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD, 0x02DB, 0x02C7, // C8
    0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2, // D0
    0x00E3, 0x00E4, 0x00E5, 0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, // D8
    0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1, // E0
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5, // E8
    0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB, 0x0131, 0x00FC, 0x00FD, // F0
    0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD, // F8
};

char32_t characterOfNeXTSTEP(unsigned byte) {
    return byte < 0x80 ? byte : kNeXTSTEP[byte - 0x80];
}

int digitValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

/// Takes the escapes of one string apart; `rest_` is what is still to be read.
class Unescaper {
public:
    explicit Unescaper(std::string_view text) : rest_(text) {}

    std::string run() {
        while (!rest_.empty()) {
            const std::size_t backslash = rest_.find('\\');
            appendPlain(rest_.substr(0, backslash));
            if (backslash == std::string_view::npos || backslash + 1 == rest_.size()) {
                break;
            }
            rest_.remove_prefix(backslash + 1);
            readEscape();
        }
        endPair();
        return std::move(result_);
    }

private:
    void readEscape() {
        const char character = rest_.front();
        if (character >= '0' && character <= '7') {
            // A byte: the platform's reader drops what is above 0377, too.
            appendCharacter(characterOfNeXTSTEP(takeNumber(8, 3) & 0xFF));
        } else if (character == 'U') {
            rest_.remove_prefix(1);
            appendUnit(static_cast<char16_t>(takeNumber(16, 4)));
        } else {
            rest_.remove_prefix(1);
            appendPlain({&controlFor(character), 1});
        }
    }

    unsigned takeNumber(int base, int mostDigits) {
        unsigned number = 0;
        for (int i = 0; i < mostDigits && !rest_.empty() && digitValue(rest_.front()) < base; ++i) {
            number = number * static_cast<unsigned>(base) +
                     static_cast<unsigned>(digitValue(rest_.front()));
            rest_.remove_prefix(1);
        }
        return number;
    }

    static const char& controlFor(const char& character) {
        static constexpr std::string_view letters = "abfnrtv";
        static constexpr std::string_view controls = "\a\b\f\n\r\t\v";
        const std::size_t place = letters.find(character);
        return place == std::string_view::npos ? character : controls[place];
    }

    void appendUnit(char16_t unit) {
        if (U16_IS_TRAIL(unit) && lead_ != 0) {
            const char32_t pair = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(lead_, unit));
            lead_ = 0;
            appendCharacter(pair);
            return;
        }
        endPair();
        if (U16_IS_LEAD(unit)) {
            lead_ = unit;
        } else {
            appendCharacter(U16_IS_TRAIL(unit) ? kReplacement : char32_t{unit});
        }
    }

    void appendPlain(std::string_view bytes) {
        if (!bytes.empty()) {
            endPair();
            result_ += bytes;
        }
    }

    void appendCharacter(char32_t character) {
        endPair();
        std::array<std::uint8_t, U8_MAX_LENGTH> bytes{};
        std::size_t length = 0;
        U8_APPEND_UNSAFE(bytes.data(), length, character);
        for (std::size_t i = 0; i < length; ++i) {
            result_ += static_cast<char>(bytes[i]);
        }
    }

    // A first half of a pair whose second half did not come.
    void endPair() {
        if (lead_ != 0) {
            lead_ = 0;
            appendCharacter(kReplacement);
        }
    }

    std::string_view rest_;
    std::string result_;
    char16_t lead_ = 0;
};

} // namespace

std::string unescaped(std::string_view text) {
    return Unescaper(text).run();
}

} // namespace navrel::propertylist
