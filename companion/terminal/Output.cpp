#include "companion/terminal/Output.h"

#include <QChar>
#include <QStringList>

#include <algorithm>
#include <cwchar>
#include <utility>

namespace navrel {

namespace {

constexpr char16_t kEscape = 0x1B;

/// The end of an escape that begins at `at`: ours set colour and weight, and end in "m".
qsizetype endOfEscape(const QString& text, qsizetype at) {
    const qsizetype end = text.indexOf(u'm', at);
    return end < 0 ? text.size() : end + 1;
}

int columnsOf(char32_t character) {
    const int width = ::wcwidth(static_cast<wchar_t>(character));
    return width < 0 ? 1 : width;
}

char32_t characterAt(const QString& text, qsizetype at) {
    const QChar first = text.at(at);
    return first.isHighSurrogate() && at + 1 < text.size()
               ? QChar::surrogateToUcs4(first, text.at(at + 1))
               : char32_t{first.unicode()};
}

/// One character or one escape.
struct Piece {
    qsizetype end = 0;
    int columns = 0;
    bool isBlank = false;
};

Piece pieceAt(const QString& text, qsizetype at) {
    if (text.at(at).unicode() == kEscape) {
        return {endOfEscape(text, at), 0, false};
    }
    const char32_t character = characterAt(text, at);
    return {at + (character > 0xFFFF ? 2 : 1), columnsOf(character), character == U' '};
}

/// Where further lines begin: below what follows the first gap of two blanks in the text.
int hangingIndentation(const QString& line, int width) {
    int column = 0;
    int blanks = 0;
    int leading = 0;
    bool hasText = false;
    for (qsizetype at = 0; at < line.size();) {
        const Piece piece = pieceAt(line, at);
        if (hasText && !piece.isBlank && piece.columns > 0 && blanks > 1) {
            return column <= width / 2 ? column : std::min(leading + 2, width / 2);
        }
        if (piece.isBlank) {
            ++blanks;
        } else if (piece.columns > 0) {
            leading = hasText ? leading : column;
            hasText = true;
            blanks = 0;
        }
        column += piece.columns;
        at = piece.end;
    }
    return std::min(leading + 2, width / 2);
}

/// How much of the rest of a line fits.
qsizetype endOfRow(const QString& line, qsizetype begin, int width) {
    int columns = 0;
    qsizetype lastBlank = -1;
    for (qsizetype at = begin; at < line.size();) {
        const Piece piece = pieceAt(line, at);
        if (piece.isBlank) {
            lastBlank = at;
        }
        if (columns + piece.columns > width) {
            return lastBlank > begin ? lastBlank : std::max(at, begin + 1);
        }
        columns += piece.columns;
        at = piece.end;
    }
    return line.size();
}

struct Sign {
    char16_t character;
    const char* ascii;
};
constexpr Sign kSigns[] = {{u'├', "|"},  {u'└', "`"},   {u'│', "|"},  {u'─', "-"},  {u'•', "*"},
                           {u'→', "->"}, {u'…', "..."}, {u'“', "\""}, {u'”', "\""}, {u'‹', "<"},
                           {u'›', ">"},  {u'’', "'"},   {u'–', "-"},  {u'✓', "+"},  {u'█', "#"},
                           {u'▀', "^"},  {u'▄', "_"}};

QString asciiOf(char32_t character) {
    for (const Sign& sign : kSigns) {
        if (sign.character == character) {
            return QLatin1String(sign.ascii);
        }
    }
    return QStringLiteral("<U+%1>").arg(
        QString::number(character, 16).toUpper().rightJustified(4, u'0'));
}

} // namespace

int columnsOf(const QString& line) {
    int columns = 0;
    for (qsizetype at = 0; at < line.size();) {
        const Piece piece = pieceAt(line, at);
        columns += piece.columns;
        at = piece.end;
    }
    return columns;
}

QString wrappedLine(const QString& line, int width) {
    if (width <= 0 || columnsOf(line) <= width) {
        return line;
    }
    const int indentation = hangingIndentation(line, width);
    QString result;
    for (qsizetype begin = 0; begin < line.size();) {
        const bool isFirst = begin == 0;
        const qsizetype end = endOfRow(line, begin, isFirst ? width : width - indentation);
        result += (isFirst ? QString() : u'\n' + QString(indentation, u' ')) +
                  line.mid(begin, end - begin);
        begin = end;
        while (begin < line.size() && line.at(begin) == u' ') {
            ++begin;
        }
    }
    return result;
}

QString asASCII(const QString& text) {
    QString result;
    for (const char32_t character : text.toUcs4()) {
        result += character < 0x80 ? QString(QChar(static_cast<char16_t>(character)))
                                   : asciiOf(character);
    }
    return result;
}

QString fitted(const QString& text, const TerminalTraits& traits) {
    const QString shown = traits.isUnicode ? text : asASCII(text);
    if (!traits.isTerminal || traits.width <= 0) {
        return shown;
    }
    QStringList lines = shown.split(u'\n');
    for (QString& line : lines) {
        line = wrappedLine(line, traits.width);
    }
    return lines.join(u'\n');
}

} // namespace navrel
