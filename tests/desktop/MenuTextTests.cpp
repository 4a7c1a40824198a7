#include "desktop/MenuText.h"

#include <QTextDocument>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(MenuText, aTitleStaysAsItIsWrittenUpToTheLongest) {
    for (const QString& title :
         {QStringLiteral("_a_ & \"b\" 'c' <d> %1"), QStringLiteral("שלום עולם"),
          QStringLiteral("👩‍👩‍👧 emoji"), QString(),
          QString(kMaximumTitleLength, u'x')}) {
        EXPECT_EQ(titleOnOneLine(title), title);
    }
}

TEST(MenuText, aLongTitleLosesItsMiddle) {
    const QString title = QString(40, u'a') + QString(40, u'b');
    const QString shown = titleOnOneLine(title);
    EXPECT_EQ(shown.size(), kMaximumTitleLength);
    EXPECT_EQ(shown, QString(30, u'a') + QChar(u'…') + QString(29, u'b'));
}

TEST(MenuText, charactersAreCountedAsAPersonCountsThem) {
    const QString family = QStringLiteral("👩‍👩‍👧");
    EXPECT_EQ(titleOnOneLine(family.repeated(kMaximumTitleLength)),
              family.repeated(kMaximumTitleLength));
    EXPECT_EQ(titleOnOneLine(family.repeated(kMaximumTitleLength + 1)),
              family.repeated(30) + QChar(u'…') + family.repeated(29));
}

TEST(MenuText, breaksAndControlCharactersBecomeBlanks) {
    EXPECT_EQ(titleOnOneLine(QStringLiteral("a\nb\tc\rd\u2028e\u0007f")),
              QStringLiteral("a b c d e f"));
}

TEST(MenuText, aToolTipShowsTheTitleAsWritten) {
    for (const QString& title :
         {QStringLiteral("a & \"b\" &amp; c"), QStringLiteral("<b>bold</b> <img src=x>"),
          QStringLiteral("if (a  <  b)\n  c"), QStringLiteral("%1 שלום 🎉")}) {
        const QString toolTip = toolTipForTitle(title);
        ASSERT_TRUE(Qt::mightBeRichText(toolTip)) << qPrintable(title);
        QTextDocument document;
        document.setHtml(toolTip);
        EXPECT_EQ(document.toPlainText(), title);
    }
}

TEST(MenuText, mnemonicAnnouncersAreDoubled) {
    EXPECT_EQ(withoutMnemonics(QStringLiteral("_a__b&c"), QChar(u'_')),
              QStringLiteral("__a____b&c"));
    EXPECT_EQ(withoutMnemonics(QStringLiteral("a && b_"), QChar(u'&')),
              QStringLiteral("a &&&& b_"));
}

} // namespace
} // namespace navrel
