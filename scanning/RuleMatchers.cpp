#include "scanning/RuleMatchers.h"

#include "scanning/TextCursor.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace navrel {

std::optional<DeclarationMatch> matchDeclaration(const char* at, const char* end,
                                                 const Keyword& keyword) {
    TextCursor cursor{at, end};
    const bool isInLowerCase = keyword.standsAt(at, end);
    if (isInLowerCase) {
        cursor.at += keyword.letters().size();
    } else if (!cursor.takeFolded(keyword.letters())) {
        return std::nullopt;
    }
    const QByteArrayView written = cursor.textFrom(at);
    cursor.skipAll(' ');
    const char* const name = cursor.at;
    cursor.skipAll(CharacterClass::LetterOrDigit);
    return DeclarationMatch{written, cursor.textFrom(name), isInLowerCase};
}

// No class of the pattern holds a sign, or the character that follows it in the pattern: what one
// class has taken, no other way of matching gives back.
const char* matchMethod(const char* at, const char* end, char terminator) {
    TextCursor cursor{at + 1, end};
    cursor.skipAll(' ');
    if (!cursor.take('(')) {
        return nullptr;
    }
    cursor.skipAll(CharacterClass::Cast);
    if (!cursor.take(')')) {
        return nullptr;
    }
    cursor.skipAll(CharacterClass::Head);
    return cursor.take(terminator) ? cursor.at : nullptr;
}

namespace {

enum class MarkKeyword { None, Mark, Warning };

MarkKeyword takeMarkKeyword(TextCursor& cursor) {
    if (cursor.takeFolded("#pragma mark")) {
        return MarkKeyword::Mark;
    }
    if (cursor.takeFolded("#warning")) {
        return MarkKeyword::Warning;
    }
    if (!cursor.takeFolded("//")) {
        return MarkKeyword::None;
    }
    cursor.skipAll(' ');
    if (cursor.takeFolded("mark:")) {
        return MarkKeyword::Mark;
    }
    return cursor.takeFolded("warning:") ? MarkKeyword::Warning : MarkKeyword::None;
}

QByteArrayView restOfLine(const TextCursor& cursor) {
    return {cursor.at, cursor.endOfLine() - cursor.at};
}

} // namespace

std::optional<MarkMatch> matchMark(const char* at, const char* end) {
    TextCursor cursor{at, end};
    const MarkKeyword keyword = takeMarkKeyword(cursor);
    const char* const textBegin = cursor.at;
    cursor.skipAll(CharacterClass::BlankOrDash);
    if (keyword == MarkKeyword::None || cursor.at == textBegin) {
        return std::nullopt;
    }
    return MarkMatch{keyword == MarkKeyword::Mark, restOfLine(cursor)};
}

const char* matchShortcutKeyword(const char* at, const char* end) {
    TextCursor cursor{at, end};
    if (!cursor.takeFolded("//")) {
        return nullptr;
    }
    cursor.skipAll(' ');
    return cursor.takeFolded("navrel:") ? cursor.at : nullptr;
}

std::optional<QByteArrayView> matchShortcutElementText(const char* at, const char* end) {
    TextCursor cursor{at, end};
    cursor.skipAll(CharacterClass::BlankOrDash);
    return cursor.at > at ? std::optional(restOfLine(cursor)) : std::nullopt;
}

QByteArrayView matchShortcutCommentText(const char* at, const char* end) {
    TextCursor cursor{at, end};
    cursor.skipAll(' ');
    return restOfLine(cursor);
}

// "@interface %@ *: *([a-z0-9]*) *(<([a-z, ]*)>)*"
std::optional<SuperclassMatch> matchSuperclass(const char* at, const char* end,
                                               std::string_view foldedBaseName) {
    TextCursor cursor{at, end};
    if (!cursor.takeFolded("@interface ") || !cursor.takeFolded(foldedBaseName)) {
        return std::nullopt;
    }
    cursor.skipAll(' ');
    if (!cursor.take(':')) {
        return std::nullopt;
    }
    cursor.skipAll(' ');
    const char* const begin = cursor.at;
    cursor.skipAll(CharacterClass::LetterOrDigit);
    SuperclassMatch match{cursor.textFrom(begin), nullptr};
    cursor.skipAll(' ');
    TextCursor list = cursor;
    while (list.take('<')) {
        list.skipAll(CharacterClass::Protocol);
        if (!list.take('>')) {
            break;
        }
        cursor = list;
    }
    match.end = cursor.at;
    return match;
}

namespace {

/// The next place of a byte, or `end`.
const char* findByte(const char* at, const char* end, char byte) {
    const void* found = std::memchr(at, byte, static_cast<std::size_t>(end - at));
    return found != nullptr ? static_cast<const char*>(found) : end;
}

/// Writes a method's text with each ":[^\)]+\) *[^ ]+" (a colon, a type, a name) made a colon.
char* writeWithoutArguments(QByteArrayView match, char* name) {
    const char* at = match.begin();
    const char* const end = match.end();
    const char* bracket = at; // the next closing one
    for (;;) {
        const char* const colon = findByte(at, end, ':');
        name = std::copy(at, colon, name);
        bracket = findByte(std::max(bracket, colon), end, ')');
        TextCursor cursor{bracket, end};
        cursor.take(')');
        cursor.skipAll(' ');
        if (cursor.at == end) { // nothing behind the last type: no further argument either
            return std::copy(colon, end, name);
        }
        *name++ = ':';
        at = bracket == colon + 1 ? bracket : findByte(cursor.at, end, ' ');
    }
}

/// The end of "\( *([^\) *]*)[ *]*\)" at a bracket, or null; `retryAt` is then the first place
/// where another bracket may fare better.
const char* matchTypeCast(const char* at, const char* end, const char*& retryAt) {
    TextCursor cursor{at + 1, end};
    cursor.skipAll(' ');
    while (cursor.at < end && *cursor.at != ')' && *cursor.at != ' ' && *cursor.at != '*') {
        ++cursor.at;
    }
    retryAt = cursor.at - 1; // any bracket before comes to the same end
    cursor.skipAll(CharacterClass::BlankOrStar);
    return cursor.take(')') ? cursor.at : nullptr;
}

bool isBracketBlankOrTerminator(char byte) {
    return byte == '(' || byte == ' ' || byte == '{' || byte == ';';
}

/// Takes type casts, blanks and terminators out of a text, in place.
char* removeTypeCasts(char* text, char* end) {
    const char* at = text;
    const char* retryAt = text;
    char* kept = text;
    while (at < end) {
        if (!isBracketBlankOrTerminator(*at)) {
            *kept++ = *at++;
            continue;
        }
        const bool isTried = *at == '(' && at >= retryAt;
        if (const char* castEnd = isTried ? matchTypeCast(at, end, retryAt) : nullptr) {
            at = castEnd;
            continue;
        }
        if (*at == '(') {
            *kept++ = '(';
        }
        ++at;
    }
    return kept;
}

/// Writes the names of ordinary methods in one go, which is most of them: no bracket stands in
/// another or before a colon that may be an argument's, and an argument ends before the text does.
/// Gives up on others.
class OrdinaryMethodName {
public:
    explicit OrdinaryMethodName(QByteArrayView match) : at_(match.begin()), end_(match.end()) {}

    /// The end of the name, or null.
    char* write(char* name) {
        while (at_ < end_) {
            const char byte = *at_;
            if (byte == ':') {
                *name++ = ':';
                if (!skipArgument()) {
                    return nullptr;
                }
            } else if (byte == '(') {
                if (!skipTypeCast()) {
                    return nullptr;
                }
            } else {
                *name = byte;
                name += isBlankOrTerminator(byte) ? 0 : 1;
                ++at_;
            }
        }
        return name;
    }

private:
    static bool isBlankOrTerminator(char byte) { return byte == ' ' || byte == '{' || byte == ';'; }

    /// "[^\)]+\) *[^ ]+" behind a colon.
    bool skipArgument() {
        const char* const type = ++at_;
        skipWhile([](char byte) { return byte != ')'; });
        if (at_ == type || at_ == end_) {
            return false;
        }
        ++at_;
        skipWhile([](char byte) { return byte == ' '; });
        const char* const name = at_;
        skipWhile([](char byte) { return byte != ' '; });
        return at_ > name;
    }

    /// "\( *([^\) *]*)[ *]*\)" where it holds neither bracket nor colon.
    bool skipTypeCast() {
        ++at_;
        skipWhile([](char byte) { return byte == ' '; });
        skipWhile([](char byte) {
            return byte != ')' && byte != ' ' && byte != '*' && byte != '(' && byte != ':';
        });
        skipWhile([](char byte) { return byte == ' ' || byte == '*'; });
        return at_ < end_ && *at_++ == ')';
    }

    template <typename Condition>
    void skipWhile(Condition holds) {
        while (at_ < end_ && holds(*at_)) {
            ++at_;
        }
    }

    const char* at_;
    const char* const end_;
};

} // namespace

qsizetype writeMethodName(QByteArrayView match, char* name) {
    if (const char* const end = OrdinaryMethodName(match).write(name)) {
        return end - name;
    }
    char* const end = writeWithoutArguments(match, name);
    return removeTypeCasts(name, end) - name;
}

namespace {

bool holds(QByteArrayView text, const Keyword& keyword) {
    const char first = keyword.letters().front();
    for (const char* at = text.begin(); at < text.end(); ++at) {
        if (*at == first && keyword.standsAt(at, text.end())) {
            return true;
        }
    }
    return false;
}

/// Takes a keyword out of a text; both texts may lie in the same place.
char* removeAll(const char* at, const char* end, const Keyword& keyword, char* to) {
    const char first = keyword.letters().front();
    while (at < end) {
        if (*at == first && keyword.standsAt(at, end)) {
            at += keyword.letters().size();
        } else {
            *to++ = *at++;
        }
    }
    return to;
}

} // namespace

bool isOrdinaryDeclaration(const DeclarationMatch& match, Keywords keywords) {
    return match.isInLowerCase &&
           std::none_of(keywords.begin(), keywords.end(),
                        [&match](const Keyword& keyword) { return holds(match.name, keyword); });
}

qsizetype writeDeclarationName(const DeclarationMatch& match, Keywords keywords, char* name) {
    const QByteArrayView kept = match.isInLowerCase ? QByteArrayView() : match.keyword;
    char* const rest = std::copy(kept.begin(), kept.end(), name);
    const char* at = match.name.begin();
    const char* end = match.name.end();
    for (const Keyword& keyword : keywords) {
        end = removeAll(at, end, keyword, rest);
        at = rest;
    }
    return end - name;
}

} // namespace navrel
