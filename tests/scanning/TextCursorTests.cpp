#include "scanning/TextCursor.h"
#include "support/text/RegularExpression.h"

#include <QString>
#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <string>

namespace navrel {
namespace {

constexpr char32_t kLastCharacter = 0x10FFFF;

struct ClassPattern {
    CharacterClass characterClass;
    const char16_t* pattern;
};

constexpr ClassPattern kClassPatterns[] = {
    {CharacterClass::Blank, u" "},
    {CharacterClass::BlankOrDash, u"[ -]"},
    {CharacterClass::BlankOrStar, u"[ *]"},
    {CharacterClass::LetterOrDigit, u"[a-z0-9]"},
    {CharacterClass::Word, u"[a-z0-9_]"},
    {CharacterClass::Cast, u"[a-z0-9 *]"},
    {CharacterClass::Head, u"[a-z :()_0-9*\n]"},
    {CharacterClass::Attribute, u"[a-z0-9, ]"},
    {CharacterClass::Outlet, u"[IBOutlet ]"},
    {CharacterClass::Protocol, u"[a-z, ]"},
};

QString everyCharacter() {
    QString text;
    for (char32_t character = 0; character <= kLastCharacter; ++character) {
        if (!QChar::isSurrogate(character)) {
            text += QString::fromUcs4(&character, 1);
        }
    }
    return text;
}

QString membersByICU(const char16_t* pattern, const QString& text) {
    auto compiled = RegularExpression::compile(pattern, RegularExpression::kCaseInsensitive);
    QString members;
    for (const auto& match : std::get<RegularExpression>(compiled).matchesIn(text).matches) {
        members += text.mid(match.ranges[0].location, match.ranges[0].length);
    }
    return members;
}

QString membersByCursor(CharacterClass characterClass, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    TextCursor cursor{bytes.begin(), bytes.end()};
    QByteArray members;
    for (; cursor.at < cursor.end; ++cursor.at) {
        const char* const begin = cursor.at;
        cursor.skipAll(characterClass);
        members += cursor.textFrom(begin);
    }
    return QString::fromUtf8(members);
}

TEST(TextCursor, everyClassHoldsTheCharactersThatICUSays) {
    const QString text = everyCharacter();
    for (const ClassPattern& entry : kClassPatterns) {
        EXPECT_EQ(membersByCursor(entry.characterClass, text), membersByICU(entry.pattern, text))
            << QString::fromUtf16(entry.pattern).toStdString();
    }
}

/// The text that a character counts as when letter case does not, where that is ASCII; else empty.
std::string asciiFolded(char32_t character) {
    const QString text = QString::fromUcs4(&character, 1);
    UChar result[8];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        u_strFoldCase(result, 8, reinterpret_cast<const UChar*>(text.utf16()),
                      static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
    std::string folded;
    for (int32_t index = 0; index < length; ++index) {
        if (result[index] > 0x7F) {
            return {};
        }
        folded += static_cast<char>(result[index]);
    }
    return folded;
}

TEST(TextCursor, everyCharacterThatFoldsToASCIICountsAsThat) {
    int foldingOutsideASCII = 0;
    for (char32_t character = 1; character <= kLastCharacter; ++character) {
        if (QChar::isSurrogate(character)) {
            continue;
        }
        const std::string folded = asciiFolded(character);
        const QByteArray bytes = QString::fromUcs4(&character, 1).toUtf8();
        TextCursor cursor{bytes.begin(), bytes.end()};
        if (!folded.empty()) {
            foldingOutsideASCII += character > 0x7F ? 1 : 0;
            EXPECT_TRUE(cursor.takeFolded(folded)) << "U+" << std::hex << unsigned(character);
            EXPECT_EQ(cursor.at, bytes.end());
        } else {
            EXPECT_FALSE(cursor.takeFolded("s"));
            EXPECT_FALSE(cursor.takeFolded("ss"));
        }
    }
    EXPECT_EQ(foldingOutsideASCII, 11);
}

TEST(TextCursor, aCharacterForSeveralLettersCountsOnlyWhole) {
    const QByteArray sharpS = "\xC3\x9F";
    TextCursor cursor{sharpS.begin(), sharpS.end()};
    EXPECT_FALSE(cursor.takeFolded("s"));
    EXPECT_FALSE(cursor.takeFolded("sss"));
    EXPECT_EQ(cursor.at, sharpS.begin());
    EXPECT_TRUE(cursor.takeFolded("ss"));
}

TEST(TextCursor, aLineEndsWhereICUSaysThatADotDoesNotMatch) {
    QString notMatched;
    auto dot = RegularExpression::compile(u".", 0);
    const QString text = everyCharacter();
    qsizetype end = 0;
    for (const auto& match : std::get<RegularExpression>(dot).matchesIn(text).matches) {
        notMatched += text.mid(end, match.ranges[0].location - end);
        end = match.ranges[0].location + match.ranges[0].length;
    }
    QString lineBreaks;
    const QByteArray bytes = text.toUtf8();
    TextCursor cursor{bytes.begin(), bytes.end()};
    while ((cursor.at = cursor.endOfLine()) < cursor.end) {
        // A line break has as many bytes as its first one says.
        const qsizetype length = *cursor.at == '\xE2' ? 3 : *cursor.at == '\xC2' ? 2 : 1;
        lineBreaks += QString::fromUtf8(cursor.at, length);
        cursor.at += length;
    }
    EXPECT_EQ(lineBreaks, notMatched);
    EXPECT_EQ(lineBreaks.size(), 7);
}

} // namespace
} // namespace navrel
