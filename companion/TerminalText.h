#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace navrel {

/// How the companion writes to a terminal: with colour and weight, or plainly.
class TerminalText {
public:
    enum class Style { plain, coloured };

    explicit TerminalText(Style style) : style_(style) {}

    /// Text from elsewhere, made harmless: what could drive the terminal or is not what it looks
    /// like is shown for what it is. ASCII control characters as their symbols ("␛"), and as their
    /// numbers
    /// ("‹U+202E›") other control characters, those that turn the writing direction, zero-width
    /// ones, invisible letters, tags, line and paragraph separators, and halves of surrogate pairs.
    static QString harmless(const QString& text);

    /// An element's line number, at most kWidestLineNumber characters, whatever was sent for it.
    static QString lineNumber(const QVariant& line);
    /// As wide as the largest number that is one.
    static constexpr int kWidestLineNumber = 19;

    QString heading(const QString& text) const { return wrapped("1", text); }
    QString group(const QString& text) const { return wrapped("1;34", text); }
    QString faint(const QString& text) const { return wrapped("2", text); }
    QString warning(const QString& text) const { return wrapped("33", text); }
    QString accent(const QString& text) const { return wrapped("36", text); }

    /// One line of a group's listing: identifier and name.
    QString navigatorLine(const QVariantMap& item) const;

    /// A file's outline, one element a line: line numbers aligned, marks as headings, each kind
    /// with its sign.
    QString outline(const QVariantMap& elements) const;

private:
    QString wrapped(const char* code, const QString& text) const;
    QString outlineLine(const QVariantMap& item, int numberWidth) const;

    Style style_;
};

} // namespace navrel
