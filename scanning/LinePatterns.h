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

/// Compiles a pattern. Aborts the program if it is not valid.
RegularExpression compiled(const ScanPattern& pattern);

/// The text of one group of a match, as UTF-8.
QByteArray textOfGroup(const QString& text, const RegularExpression::Match& match,
                       std::size_t group);

/// The patterns that are searched line by line.
struct LinePatterns {
    static constexpr quint32 kWholeText =
        RegularExpression::kCaseInsensitive | RegularExpression::kDotMatchesLineSeparators;
    static constexpr quint32 kWithinLine = RegularExpression::kCaseInsensitive;

    /// The header's base name replaces "%@", without being escaped.
    ScanPattern superclass = {QStringLiteral("@interface %@ *: *([a-z0-9]*) *(<([a-z, ]*)>)*"),
                              kWholeText};
    ScanPattern shortcutLine = {QStringLiteral("// *navrel: *(.*)"), kWithinLine};
};

} // namespace navrel
