#pragma once

#include "scanning/Keyword.h"

#include <QByteArrayView>

#include <optional>
#include <span>
#include <string_view>

/// Matches the patterns of the scan (tests/scanning/plain/ScanPatterns.h) by hand, at one place of
/// a valid UTF-8 text. Each function finds what ICU finds for a match that begins there. It reads
/// no further than the place where the next match may begin, so searching a whole text takes time
/// in proportion to its length. Pure; results refer to the text.
namespace navrel {

/// "class *([a-z0-9]*)" and the like.
struct DeclarationMatch {
    QByteArrayView keyword; ///< as it is written
    QByteArrayView name;    ///< the group; it ends the match
    bool isInLowerCase;     ///< the keyword
};
std::optional<DeclarationMatch> matchDeclaration(const char* at, const char* end,
                                                 const Keyword& keyword);

/// "(-|\+) *\([a-z0-9 *]*\)[a-z :()_0-9*\n]*\{", or with another terminator: the end of the match,
/// or null. There must be a sign at `at`.
const char* matchMethod(const char* at, const char* end, char terminator);

/// The rest of a line.
struct MarkMatch {
    bool isMark; ///< else a warning
    QByteArrayView text;
};
/// "(#pragma mark|#warning|// *MARK:|// *WARNING:)[ -]+(.*)"; `text` is group 2, which ends the
/// match.
std::optional<MarkMatch> matchMark(const char* at, const char* end);

/// "(// *navrel:)": the end of the match, or null.
const char* matchShortcutKeyword(const char* at, const char* end);

/// "[ -]+(.*)", which ends a shortcut element: group 1.
std::optional<QByteArrayView> matchShortcutElementText(const char* at, const char* end);

/// " *(.*)", which ends a shortcut comment: group 1.
QByteArrayView matchShortcutCommentText(const char* at, const char* end);

/// The superclass pattern for a base name without special characters.
struct SuperclassMatch {
    QByteArrayView superclass; ///< group 1
    const char* end;
};
std::optional<SuperclassMatch> matchSuperclass(const char* at, const char* end,
                                               std::string_view foldedBaseName);

/// Writes the name of a method to `name`, and returns its length: at most `match.size()` bytes. The
/// name is the match without types, arguments (only their colons stay), blanks and terminator.
qsizetype writeMethodName(QByteArrayView match, char* name);

/// The keywords that are removed from a declaration's match, one after another. None begins as
/// another one ends, so it makes no difference whether blanks are removed before or after them.
using Keywords = std::span<const Keyword>;

/// Whether the name of a declaration is simply its group, as it nearly always is.
bool isOrdinaryDeclaration(const DeclarationMatch& match, Keywords keywords);

/// Writes the match without keywords and blanks to `name`, and returns its length: at most that of
/// the match.
qsizetype writeDeclarationName(const DeclarationMatch& match, Keywords keywords, char* name);

} // namespace navrel
