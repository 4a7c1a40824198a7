#pragma once

#include <QString>

namespace navrel {

/// How the companion writes to a terminal: with colour and weight, or plainly.
class TerminalText {
public:
    enum class Style {
        plain,
        coloured,
        spoken, ///< for screen readers: nothing that is only drawn
    };
    /// Behind the letters. Where it is not known, only colours are used that both can carry.
    enum class Background { unknown, dark, light };

    explicit TerminalText(Style style, Background background = Background::unknown)
        : style_(style), background_(background) {}

    Style style() const { return style_; }
    bool isSpoken() const { return style_ == Style::spoken; }

    /// Text from elsewhere, made harmless: what could drive the terminal or is not what it looks
    /// like is shown for what it is. ASCII control characters as their symbols ("␛"), and as their
    /// numbers ("‹U+202E›") other control characters, those that turn the writing direction,
    /// zero-width ones, invisible letters, tags, line and paragraph separators, and halves of
    /// surrogate pairs.
    static QString harmless(const QString& text);

    QString heading(const QString& text) const { return wrapped("1", text); }
    QString group(const QString& text) const { return wrapped(groupCode(), text); }
    QString faint(const QString& text) const { return wrapped("2", text); }
    QString warning(const QString& text) const { return wrapped(warningCode(), text); }
    QString accent(const QString& text) const { return wrapped(accentCode(), text); }
    /// What the cursor is in.
    QString lit(const QString& text) const { return wrapped("7", text); }

private:
    QString wrapped(const char* code, const QString& text) const;
    const char* groupCode() const;
    const char* warningCode() const;
    const char* accentCode() const;

    Style style_;
    Background background_;
};

} // namespace navrel
