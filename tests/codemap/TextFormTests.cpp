#include "codemap/TextForm.h"

#include <gtest/gtest.h>

#include <string>

namespace navrel {
namespace {

/// The same, byte by byte.
TextForm plainFormOf(std::string_view text) {
    TextForm form;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const auto byte = static_cast<unsigned char>(text[place]);
        const bool isSeparator = byte == ' ' && place > 0 && place + 1 < text.size() &&
                                 text[place - 1] != ' ' && text[place + 1] != ' ';
        form.isASCII = form.isASCII && byte < 0x80;
        form.isOneLine = form.isOneLine && (byte > ' ' || isSeparator);
    }
    return form;
}

void expectForm(const std::string& text) {
    const TextForm expected = plainFormOf(text);
    const TextForm found = formOf(text);
    EXPECT_EQ(found.isASCII, expected.isASCII) << testing::PrintToString(text);
    EXPECT_EQ(found.isOneLine, expected.isOneLine) << testing::PrintToString(text);
}

TEST(TextForm, wordsWithABlankBetweenTwoAreOneLine) {
    EXPECT_TRUE(formOf("").isOneLine);
    EXPECT_TRUE(formOf("int").isOneLine);
    EXPECT_TRUE(formOf("static int tide(struct moon *moon, int day)").isOneLine);
    EXPECT_FALSE(formOf("int  tide").isOneLine);
    EXPECT_FALSE(formOf("int tide ").isOneLine);
    EXPECT_FALSE(formOf("int\ttide").isOneLine);
    EXPECT_FALSE(formOf("static int tide(struct moon *moon,\nint day)").isOneLine);
}

TEST(TextForm, anyByteInAnyPlaceOfAnyLengthCounts) {
    for (std::size_t length = 1; length <= 70; ++length) {
        const std::string plain(length, 'x');
        for (std::size_t place = 0; place < length; ++place) {
            for (const char byte : {' ', '\n', '\0', '\x7F', '\xC3'}) {
                std::string text = plain;
                text[place] = byte;
                expectForm(text);
            }
            if (place + 1 < length) {
                std::string text = plain;
                text.replace(place, 2, "  ");
                expectForm(text);
            }
        }
    }
}

} // namespace
} // namespace navrel
