#include "scanning/PropertyMatcher.h"

#include "scanning/TextCursor.h"

#include <algorithm>
#include <iterator>

namespace navrel {

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

} // namespace navrel
