#pragma once

#include "support/text/RegularExpression.h"

#include <QString>

namespace navrel {

/// A pattern and its options, a combination of RegularExpression::Option.
struct ScanPattern {
    QString text;
    quint32 options;
};

/// The expression of a pattern, which must be one.
RegularExpression compiled(const ScanPattern& pattern);

/// What is looked for in source files. These patterns define the results, quirks included; the fast
/// scan gives the same without them.
struct ScanPatterns {
    static constexpr quint32 kWholeText =
        RegularExpression::kCaseInsensitive | RegularExpression::kDotMatchesLineSeparators;
    static constexpr quint32 kWithinLine = RegularExpression::kCaseInsensitive;

    // Line by line. The base name of the header stands in place of "%@", as it is.
    ScanPattern superclass = {QStringLiteral("@interface %@ *: *([a-z0-9]*) *(<([a-z, ]*)>)*"),
                              kWholeText};
    ScanPattern shortcutLine = {QStringLiteral("// *navrel: *(.*)"), kWithinLine};

    // Swift.
    ScanPattern swiftClass = {QStringLiteral("class *([a-z0-9]*)"), kWholeText};
    ScanPattern swiftFunction = {QStringLiteral("func *([a-z0-9]*)"), kWholeText};
    ScanPattern swiftVariable = {QStringLiteral("(var *([a-z0-9]*)|let *([a-z0-9]*))"), kWholeText};

    // Implementation files, then headers. The line feed within the class is one: a method's head
    // may run over several lines.
    ScanPattern method = {QStringLiteral("(-|\\+) *\\([a-z0-9 *]*\\)[a-z :()_0-9*\n]*\\{"),
                          kWholeText};
    ScanPattern methodDeclaration = {
        QStringLiteral("(-|\\+) *\\([a-z0-9 *]*\\)[a-z :()_0-9*\n]*\\;"), kWholeText};
    /// Within a method: an argument, of which the colon stays, and a type in parentheses.
    ScanPattern argument = {QStringLiteral(":[^\\)]+\\) *[^ ]+"), kWithinLine};
    ScanPattern typeCast = {QStringLiteral("\\( *([^\\) *]*)[ *]*\\)"), kWithinLine};
    ScanPattern property = {
        QStringLiteral("(@property *\\(*[a-z0-9, ]*\\)*[IBOutlet ]*[a-z0-9_]*[ \\*]+|@dynamic[ ]*)"
                       "(.*);"),
        kWithinLine};

    // Every file.
    ScanPattern mark = {QStringLiteral("(#pragma mark|#warning|// *MARK:|// *WARNING:)[ -]+(.*)"),
                        kWithinLine};
    ScanPattern shortcut = {QStringLiteral("(// *navrel:)[ -]+(.*)"), kWithinLine};
};

} // namespace navrel
