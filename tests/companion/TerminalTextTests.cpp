#include "companion/TerminalText.h"

#include <QVariantList>
#include <gtest/gtest.h>

#include <utility>

namespace navrel {
namespace {

QVariantMap element(const QString& type, const QString& name, int line) {
    return {{QStringLiteral("type"), type},
            {QStringLiteral("name"), name},
            {QStringLiteral("line"), line}};
}

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

TEST(TerminalText, aLineThatIsNoNumberIsNotShown) {
    EXPECT_EQ(TerminalText::lineNumber(42), QStringLiteral("42"));
    EXPECT_EQ(TerminalText::lineNumber(QStringLiteral("7")), QStringLiteral("7"));
    EXPECT_EQ(TerminalText::lineNumber(QStringLiteral("1\x1B[2J")), QStringLiteral("?"));
    EXPECT_EQ(TerminalText::lineNumber(QString(1'000'000, u'9')), QStringLiteral("?"));
    EXPECT_EQ(TerminalText::lineNumber(QVariant()), QStringLiteral("?"));
}

TEST(TerminalText, anOutlineAlignsItsNumbersAndSetsMarksAsHeadings) {
    const QVariantMap elements = {
        {QStringLiteral("items"),
         QVariantList{element(QStringLiteral("class"), QStringLiteral("Tide"), 3),
                      element(QStringLiteral("mark"), QStringLiteral("Table view"), 9),
                      element(QStringLiteral("method"), QStringLiteral("-reload"), 12),
                      element(QStringLiteral("property"), QStringLiteral("title"), 100),
                      element(QStringLiteral("warning"), QStringLiteral("fix"), 101),
                      element(QStringLiteral("shortcut"), QStringLiteral("Start"), 102)}}};

    EXPECT_EQ(TerminalText(TerminalText::Style::plain).outline(elements),
              QStringLiteral("  3    C Tide\n"
                             "  9  ── Table view\n"
                             " 12    ƒ -reload\n"
                             "100    • title\n"
                             "101    ! fix\n"
                             "102    → Start"));
}

TEST(TerminalText, groupsEndInASlashAndIdentifiersStandFirst) {
    const TerminalText text(TerminalText::Style::plain);
    const QVariantMap file = {{QStringLiteral("identifier"), QStringLiteral("F1")},
                              {QStringLiteral("name"), QStringLiteral("a.h")},
                              {QStringLiteral("isGroup"), 0}};
    const QVariantMap group = {{QStringLiteral("identifier"), QStringLiteral("G1")},
                               {QStringLiteral("name"), QStringLiteral("Views")},
                               {QStringLiteral("isGroup"), 1}};

    EXPECT_EQ(text.navigatorLine(file), QStringLiteral("F1  a.h"));
    EXPECT_EQ(text.navigatorLine(group), QStringLiteral("G1  Views/"));
}

TEST(TerminalText, onlyTheColouredStyleWritesEscapes) {
    EXPECT_EQ(TerminalText(TerminalText::Style::plain).heading(QStringLiteral("x")),
              QStringLiteral("x"));
    EXPECT_EQ(TerminalText(TerminalText::Style::coloured).heading(QStringLiteral("x")),
              QStringLiteral("\x1B[1mx\x1B[0m"));
}

} // namespace
} // namespace navrel
