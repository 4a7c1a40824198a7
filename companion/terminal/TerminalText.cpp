#include "companion/terminal/TerminalText.h"

#include <QChar>
#include <QList>

namespace navrel {

namespace {

constexpr char16_t kFirstControlPicture = 0x2400; // the symbol for NUL; those for 1 to 31 follow
constexpr char16_t kDeletePicture = 0x2421;

/// Whether a character beyond ASCII shows as nothing, or changes how others show.
bool isDeceptive(char32_t character) {
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format: // direction, zero width, joiners, tags, soft hyphen
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        break;
    }
    const auto isWithin = [character](char32_t first, char32_t last) {
        return character >= first && character <= last;
    };
    return isWithin(0xE0000, 0xE0FFF)                            // tags, and what is reserved there
           || character == 0x034F                                // combining grapheme joiner
           || isWithin(0x115F, 0x1160) || character == 0x3164 || // fillers of Hangul,
           character == 0xFFA0 || isWithin(0x17B4, 0x17B5)       // and of Khmer
           || isWithin(0x2060, 0x206F) || isWithin(0xFFF0, 0xFFFB); // invisible or reserved
}

} // namespace

QString TerminalText::harmless(const QString& text) {
    QString result;
    result.reserve(text.size());
    for (const char32_t character : text.toUcs4()) {
        if (character < 0x20) {
            result += QChar(static_cast<char16_t>(kFirstControlPicture + character));
        } else if (character == 0x7F) {
            result += QChar(kDeletePicture);
        } else if (isDeceptive(character)) {
            result += QStringLiteral("‹U+%1›").arg(
                QString::number(character, 16).toUpper().rightJustified(4, QLatin1Char('0')));
        } else {
            result += QString::fromUcs4(&character, 1);
        }
    }
    return result;
}

QString TerminalText::wrapped(const char* code, const QString& text) const {
    if (style_ != Style::coloured) {
        return text;
    }
    return QStringLiteral("\x1B[%1m%2\x1B[0m").arg(QString::fromLatin1(code), text);
}

// Of the sixteen colours, each palette has its own idea. Blue is hard to read on black, yellow and
// cyan on white, in all that are in use; red and magenta can be read on both.

const char* TerminalText::groupCode() const {
    switch (background_) {
    case Background::dark:
        return "1;94";
    case Background::light:
        return "1;34";
    case Background::unknown:
        break;
    }
    return "1";
}

const char* TerminalText::warningCode() const {
    return background_ == Background::dark ? "93" : "31";
}

const char* TerminalText::accentCode() const {
    return background_ == Background::dark ? "96" : "35";
}

} // namespace navrel
