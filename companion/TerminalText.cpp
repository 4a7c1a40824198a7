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
    QString result = text;
    for (QChar& character : result) {
        const char16_t unit = character.unicode();
        if (unit < 0x20) {
            character = QChar(static_cast<char16_t>(kFirstControlPicture + unit));
        } else if (unit == 0x7F) {
            character = QChar(kDeletePicture);
        } else if (unit >= 0x80 && unit <= 0x9F) {
            character = QChar::ReplacementCharacter;
        }
    }
    return result;
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
        const QString line = item.toMap().value(QStringLiteral("line")).toString();
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
        faint(item.value(QStringLiteral("line")).toString().rightJustified(numberWidth));
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
