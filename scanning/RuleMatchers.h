#pragma once

#include "scanning/Keyword.h"

#include <QByteArrayView>

#include <optional>
#include <span>
#include <string_view>

/// The patterns of the scan (tests/scanning/plain/ScanPatterns.h) matched by hand at one place of a
/// valid UTF-8 text. Each gives what ICU gives for a match that begins there, and reads on no
/// further than a search for the next match may skip, so that a search over a text is linear in its
/// length.
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
/// or null. The sign has been seen.
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

/// The name of a method: its match without types and arguments, of each argument only the colon
/// kept, and without blanks and terminator. Writes at most `match.size()` bytes to `name` and
/// returns how many.
qsizetype writeMethodName(QByteArrayView match, char* name);

/// The keywords that are taken out of a declaration's match, one after the other, as they are
/// written here; as none begins as another one ends, what is left does not depend on the blanks.
using Keywords = std::span<const Keyword>;

/// Whether the name of a declaration is its group, as it nearly always is.
bool isOrdinaryDeclaration(const DeclarationMatch& match, Keywords keywords);

/// The match without keywords and blanks. Writes at most as many bytes as the match has to `name`
/// and returns how many.
qsizetype writeDeclarationName(const DeclarationMatch& match, Keywords keywords, char* name);

} // namespace navrel
