#include "companion/terminal/TerminalText.h"

#include <gtest/gtest.h>

#include <utility>

namespace navrel {
namespace {

TEST(TerminalText, textThatCouldDriveTheTerminalIsShownAsSymbols) {
    EXPECT_EQ(TerminalText::harmless(QStringLiteral("a\x1B[2Jb\nc\x7F\u009Bd é漢😀")),
              QStringLiteral("a␛[2Jb␊c␡‹U+009B›d é漢😀"));
}

TEST(TerminalText, whatTurnsTheDirectionOrCannotBeSeenIsShownByItsNumber) {
    const std::pair<char32_t, const char*> characters[] = {
        {0x85, "0085"},     {0xAD, "00AD"},     {0x034F, "034F"},   {0x061C, "061C"},
        {0x1160, "1160"},   {0x180E, "180E"},   {0x200B, "200B"},   {0x200D, "200D"},
        {0x200E, "200E"},   {0x200F, "200F"},   {0x2028, "2028"},   {0x2029, "2029"},
        {0x202A, "202A"},   {0x202E, "202E"},   {0x2060, "2060"},   {0x2066, "2066"},
        {0x2069, "2069"},   {0x206F, "206F"},   {0x3164, "3164"},   {0xFEFF, "FEFF"},
        {0xFFF9, "FFF9"},   {0xE0001, "E0001"}, {0xE0020, "E0020"}, {0xE0041, "E0041"},
        {0xE007F, "E007F"},
    };
    for (const auto& [character, number] : characters) {
        const QString text = character < 0x10000 ? QString(QChar(static_cast<char16_t>(character)))
                                                 : QString::fromUcs4(&character, 1);
        EXPECT_EQ(TerminalText::harmless(u'a' + text + u'b'),
                  QStringLiteral("a‹U+%1›b").arg(QLatin1String(number)));
    }
}

TEST(TerminalText, coloursSuitTheBackground) {
    using Background = TerminalText::Background;
    const auto warning = [](Background background) {
        return TerminalText(TerminalText::Style::coloured, background).warning(QStringLiteral("x"));
    };
    EXPECT_EQ(warning(Background::dark), QStringLiteral("\x1B[93mx\x1B[0m"));
    EXPECT_EQ(warning(Background::light), QStringLiteral("\x1B[31mx\x1B[0m"));
    EXPECT_EQ(warning(Background::unknown), QStringLiteral("\x1B[31mx\x1B[0m"));
    for (const Background background : {Background::light, Background::unknown}) {
        const TerminalText text(TerminalText::Style::coloured, background);
        for (const QString& coloured : {text.warning({}), text.accent({}), text.group({})}) {
            for (const char* unreadable : {"33", "36", "93", "96", "92", "32"}) {
                EXPECT_FALSE(coloured.contains(QLatin1String(unreadable)));
            }
        }
    }
}

TEST(TerminalText, onlyTheColouredStyleWritesEscapes) {
    EXPECT_EQ(TerminalText(TerminalText::Style::plain).heading(QStringLiteral("x")),
              QStringLiteral("x"));
    EXPECT_EQ(TerminalText(TerminalText::Style::spoken).heading(QStringLiteral("x")),
              QStringLiteral("x"));
    EXPECT_EQ(TerminalText(TerminalText::Style::coloured).heading(QStringLiteral("x")),
              QStringLiteral("\x1B[1mx\x1B[0m"));
}

} // namespace
} // namespace navrel
