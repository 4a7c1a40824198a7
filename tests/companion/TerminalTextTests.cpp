#include "companion/TerminalText.h"

#include <QVariantList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

QVariantMap element(const QString& type, const QString& name, int line) {
    return {{QStringLiteral("type"), type},
            {QStringLiteral("name"), name},
            {QStringLiteral("line"), line}};
}

TEST(TerminalText, textThatCouldDriveTheTerminalIsShownAsSymbols) {
    EXPECT_EQ(TerminalText::harmless(QStringLiteral("a\x1B[2Jb\nc\x7F\u009Bd é漢😀")),
              QStringLiteral("a␛[2Jb␊c␡\uFFFDd é漢😀"));
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
