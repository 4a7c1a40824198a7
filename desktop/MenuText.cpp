#include "desktop/MenuText.h"

#include <QList>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace navrel {

namespace {

QString withBlanks(QString text) {
    std::replace_if(
        text.begin(), text.end(),
        [](QChar character) {
            return character.isSpace() || character.category() == QChar::Other_Control;
        },
        QChar(u' '));
    return text;
}

/// Where each character as a person counts them begins, and the end.
QList<qsizetype> characterBoundaries(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    QList<qsizetype> boundaries = {0};
    while (finder.toNextBoundary() > 0) {
        boundaries.append(finder.position());
    }
    return boundaries;
}

} // namespace

QString titleOnOneLine(const QString& title) {
    const QString text = withBlanks(title);
    if (text.size() <= kMaximumTitleLength) {
        return text;
    }
    const QList<qsizetype> boundaries = characterBoundaries(text);
    const qsizetype length = boundaries.size() - 1;
    if (length <= kMaximumTitleLength) {
        return text;
    }
    constexpr int kept = kMaximumTitleLength - 1;
    constexpr int keptAtEnd = kept / 2;
    return text.left(boundaries.at(kept - keptAtEnd)) + QChar(u'…') +
           text.mid(boundaries.at(length - keptAtEnd));
}

QString toolTipForTitle(const QString& title) {
    return QStringLiteral("<p style=\"white-space: pre-wrap\">%1</p>").arg(title.toHtmlEscaped());
}

QString withoutMnemonics(const QString& text, QChar announcer) {
    QString result = text;
    return result.replace(announcer, QString(2, announcer));
}

} // namespace navrel
