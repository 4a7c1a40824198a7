#include "companion/TerminalText.h"

#include <QStringList>
#include <QVariantList>

#include <algorithm>

namespace navrel {

namespace {

constexpr char16_t kFirstControlPicture = 0x2400; // the symbol for NUL; those for 1 to 31 follow
constexpr char16_t kDeletePicture = 0x2421;

QString textOf(const QVariantMap& item, const char* key) {
    return TerminalText::harmless(item.value(QString::fromLatin1(key)).toString());
}

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

/// The sign of an element's kind.
QString signOf(const QString& type) {
    if (type == QStringLiteral("class")) {
        return QStringLiteral("C");
    }
    if (type == QStringLiteral("method")) {
        return QStringLiteral("ƒ");
    }
    if (type == QStringLiteral("property")) {
        return QStringLiteral("•");
    }
    if (type == QStringLiteral("warning")) {
        return QStringLiteral("!");
    }
    if (type == QStringLiteral("shortcut")) {
        return QStringLiteral("→");
    }
    return QStringLiteral("?");
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

QString TerminalText::lineNumber(const QVariant& line) {
    bool isNumber = false;
    const qlonglong number = line.toLongLong(&isNumber);
    return isNumber ? QString::number(number).right(kWidestLineNumber) : QStringLiteral("?");
}

QString TerminalText::wrapped(const char* code, const QString& text) const {
    if (style_ == Style::plain) {
        return text;
    }
    return QStringLiteral("\x1B[%1m%2\x1B[0m").arg(QString::fromLatin1(code), text);
}

QString TerminalText::navigatorLine(const QVariantMap& item) const {
    const QString name = textOf(item, "name");
    const bool isGroup = item.value(QStringLiteral("isGroup")).toBool();
    return QStringLiteral("%1  %2").arg(faint(textOf(item, "identifier")),
                                        isGroup ? group(name + QLatin1Char('/')) : name);
}

QString TerminalText::outline(const QVariantMap& elements) const {
    const QVariantList items = elements.value(QStringLiteral("items")).toList();
    int numberWidth = 1;
    for (const QVariant& item : items) {
        const QString line = lineNumber(item.toMap().value(QStringLiteral("line")));
        numberWidth = std::max(numberWidth, static_cast<int>(line.size()));
    }
    QStringList lines;
    for (const QVariant& item : items) {
        lines += outlineLine(item.toMap(), numberWidth);
    }
    return lines.join(QLatin1Char('\n'));
}

QString TerminalText::outlineLine(const QVariantMap& item, int numberWidth) const {
    const QString type = item.value(QStringLiteral("type")).toString();
    const QString name = textOf(item, "name");
    const QString number =
        faint(lineNumber(item.value(QStringLiteral("line"))).rightJustified(numberWidth));
    if (type == QStringLiteral("mark")) {
        return QStringLiteral("%1  %2").arg(number, heading(QStringLiteral("── ") + name));
    }
    const QString text = QStringLiteral("%1 %2").arg(signOf(type), name);
    if (type == QStringLiteral("warning")) {
        return QStringLiteral("%1    %2").arg(number, warning(text));
    }
    if (type == QStringLiteral("shortcut")) {
        return QStringLiteral("%1    %2").arg(number, accent(text));
    }
    return QStringLiteral("%1    %2").arg(number, text);
}

} // namespace navrel
