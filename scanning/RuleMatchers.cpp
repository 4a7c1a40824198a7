#include "scanning/RuleMatchers.h"

#include "scanning/TextCursor.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace navrel {

namespace {

/// A character outside ASCII that folds to ASCII letters when letter case does not count.
struct OtherForm {
    std::string_view bytes;
    std::string_view letters;
};

constexpr std::array kOtherForms = {
    OtherForm{"\xC5\xBF", "s"},       // U+017F long s
    OtherForm{"\xE2\x84\xAA", "k"},   // U+212A Kelvin sign
    OtherForm{"\xC3\x9F", "ss"},      // U+00DF sharp s
    OtherForm{"\xE1\xBA\x9E", "ss"},  // U+1E9E capital sharp s
    OtherForm{"\xEF\xAC\x80", "ff"},  // U+FB00
    OtherForm{"\xEF\xAC\x81", "fi"},  // U+FB01
    OtherForm{"\xEF\xAC\x82", "fl"},  // U+FB02
    OtherForm{"\xEF\xAC\x83", "ffi"}, // U+FB03
    OtherForm{"\xEF\xAC\x84", "ffl"}, // U+FB04
    OtherForm{"\xEF\xAC\x85", "st"},  // U+FB05
    OtherForm{"\xEF\xAC\x86", "st"},  // U+FB06
};

} // namespace

/// The letters of the other form that stands here, having moved over it; none where there is none.
std::string_view TextCursor::takeOtherForm() {
    for (const OtherForm& form : kOtherForms) {
        if (takeBytes(form.bytes)) {
            return form.letters;
        }
    }
    return {};
}

bool TextCursor::takeFoldedFromOtherForm(const char* place, std::string_view folded) {
    TextCursor ahead{place, end};
    const std::string_view letters = ahead.takeOtherForm();
    const auto differing =
        std::mismatch(letters.begin(), letters.end(), folded.begin(), folded.end());
    if (letters.empty() || differing.first != letters.end() ||
        !ahead.takeFolded(folded.substr(letters.size()))) {
        return false;
    }
    at = ahead.at;
    return true;
}

const char* TextCursor::endOfLine() const {
    TextCursor ahead = *this;
    for (; ahead.at < end; ++ahead.at) {
        const char byte = *ahead.at;
        const bool isBreak = byte >= '\n' && byte <= '\r';
        const bool mayBeBreak = byte == '\xC2' || byte == '\xE2';
        if (isBreak || (mayBeBreak && (TextCursor(ahead).takeBytes("\xC2\x85") ||
                                       TextCursor(ahead).takeBytes("\xE2\x80\xA8") ||
                                       TextCursor(ahead).takeBytes("\xE2\x80\xA9")))) {
            break;
        }
    }
    return ahead.at;
}

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

/// The place behind the last blank of a stretch, or null.
const char* behindLastBlank(const char* begin, const char* end) {
    while (end > begin && end[-1] != ' ') {
        --end;
    }
    return end > begin ? end : nullptr;
}

/// The end of "@property *\(*[a-z0-9, ]*\)*[IBOutlet ]*[a-z0-9_]*[ \*]+", or null.
///
/// Each part takes all it can. If no blank or star follows then, the last part gets the last blank
/// that an earlier one can give back: giving back anything else helps nobody, since the letters
/// behind it lead to the same place again, and no part takes a bracket that another one gave back.
/// The latest part is asked first.
const char* matchPropertyHead(TextCursor cursor) {
    if (!cursor.takeFolded("@property")) {
        return nullptr;
    }
    const char* const blanks = cursor.at;
    cursor.skipAll(' ');
    const char* const blanksEnd = cursor.at;
    cursor.skipAll('(');
    const char* const attributes = cursor.at;
    cursor.skipAll(CharacterClass::Attribute);
    const char* const attributesEnd = cursor.at;
    cursor.skipAll(')');
    const char* const outlet = cursor.at;
    cursor.skipAll(CharacterClass::Outlet);
    const char* const outletEnd = cursor.at;
    cursor.skipAll(CharacterClass::Word);
    const char* const type = cursor.at;
    cursor.skipAll(CharacterClass::BlankOrStar);
    if (cursor.at > type) {
        return cursor.at;
    }
    if (const char* end = behindLastBlank(outlet, outletEnd)) {
        return end;
    }
    if (const char* end = behindLastBlank(attributes, attributesEnd)) {
        return end;
    }
    return behindLastBlank(blanks, blanksEnd);
}

const char* matchPropertyPrefix(TextCursor cursor) {
    const bool mayBeProperty = cursor.at + 1 < cursor.end && (cursor.at[1] | 0x20) == 'p';
    if (mayBeProperty) {
        return matchPropertyHead(cursor);
    }
    if (!cursor.takeFolded("@dynamic")) {
        return nullptr;
    }
    cursor.skipAll(' ');
    return cursor.at;
}

} // namespace

/// Places on one line share the answer, or a line of properties without semicolon would be read
/// again for each of them.
const char* PropertyMatcher::lastSemicolonOfLine(const char* at, const char* end) {
    if (lineEnd_ == nullptr || at > lineEnd_) {
        lineEnd_ = TextCursor{at, end}.endOfLine();
        const auto found =
            std::find(std::reverse_iterator(lineEnd_), std::reverse_iterator(at), ';');
        lastSemicolon_ = found.base() == at ? nullptr : found.base() - 1;
    }
    return lastSemicolon_ != nullptr && lastSemicolon_ >= at ? lastSemicolon_ : nullptr;
}

std::optional<QByteArrayView> PropertyMatcher::match(const char* at, const char* end) {
    const char* const name = matchPropertyPrefix({at, end});
    const char* const nameEnd = name != nullptr ? lastSemicolonOfLine(name, end) : nullptr;
    if (nameEnd == nullptr) {
        return std::nullopt;
    }
    return QByteArrayView(name, nameEnd - name);
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
