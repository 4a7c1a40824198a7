#pragma once

#include "support/text/RegularExpression.h"

#include <QByteArray>
#include <QString>

#include <cstddef>

namespace navrel {

/// A pattern and its options, a combination of RegularExpression::Option.
struct ScanPattern {
    QString text;
    quint32 options;
};

/// The expression of a pattern, which must be one.
RegularExpression compiled(const ScanPattern& pattern);

/// What a group of a match in a text took, as UTF-8.
QByteArray textOfGroup(const QString& text, const RegularExpression::Match& match,
                       std::size_t group);

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

} // namespace navrel
