#pragma once

#include "scanning/LinePatterns.h"

namespace navrel {

/// What is looked for in source files. These patterns define the results, quirks included; the
/// program's scan gives the same without them.
struct ScanPatterns : LinePatterns {
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
