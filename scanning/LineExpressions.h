#pragma once

#include "support/core/Error.h"
#include "support/text/RegularExpression.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>
#include <utility>

namespace navrel {

/// A pattern and its options, a combination of RegularExpression::Option.
struct ScanPattern {
    QString text;
    quint32 options;
};

/// The expression of a pattern, which must be one.
RegularExpression compiled(const ScanPattern& pattern);

/// What is looked for line by line.
struct LinePatterns {
    static constexpr quint32 kWholeText =
        RegularExpression::kCaseInsensitive | RegularExpression::kDotMatchesLineSeparators;
    static constexpr quint32 kWithinLine = RegularExpression::kCaseInsensitive;

    /// The base name of the header takes the place of "%@", as it is.
    ScanPattern superclass = {QStringLiteral("@interface %@ *: *([a-z0-9]*) *(<([a-z, ]*)>)*"),
                              kWholeText};
    ScanPattern shortcutLine = {QStringLiteral("// *navrel: *(.*)"), kWithinLine};
};

/// The superclass pattern of one header, by ICU. One thread at a time.
class SuperclassExpression {
public:
    /// The expression for a header of that base name; nil where it makes no pattern.
    static std::optional<SuperclassExpression>
    forBaseName(QByteArrayView baseName, const ScanPattern& pattern = LinePatterns().superclass);

    /// The superclass that a line names: that of its last match. Nil where it holds no match, is
    /// not UTF-8, or could not be searched, as in `atMost` steps: `error` then says why.
    std::optional<QByteArray> superclassOnLine(QByteArrayView line,
                                               std::optional<RegularExpression::Steps> atMost);

    /// What the last search cost, where it was limited.
    RegularExpression::Steps steps() const { return steps_; }

    /// Why the last search gave nothing although it may hold a match.
    const std::optional<Error>& error() const { return error_; }

private:
    explicit SuperclassExpression(RegularExpression expression)
        : expression_(std::move(expression)) {}

    RegularExpression expression_;
    RegularExpression::Steps steps_ = 0;
    std::optional<Error> error_;
};

/// The shortcut pattern, by ICU. One thread at a time.
class ShortcutExpression {
public:
    explicit ShortcutExpression(const ScanPattern& pattern = LinePatterns().shortcutLine);

    /// The text of a line's shortcut comment: that of its last match that has any. Nil where there
    /// is none, or the line is not UTF-8.
    std::optional<QByteArray> shortcutOnLine(QByteArrayView line);

private:
    RegularExpression expression_;
};

} // namespace navrel
