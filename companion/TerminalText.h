#pragma once

#include <QString>
#include <QVariantMap>

namespace navrel {

/// How the companion writes to a terminal: with colour and weight, or plainly.
class TerminalText {
public:
    enum class Style { plain, coloured };

    explicit TerminalText(Style style) : style_(style) {}

    /// Text from a project, made harmless: control characters, which could drive the terminal, are
    /// shown as their symbols.
    static QString harmless(const QString& text);

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
