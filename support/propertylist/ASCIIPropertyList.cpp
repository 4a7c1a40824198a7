#include "support/propertylist/ASCIIPropertyList.h"

#include "support/propertylist/ASCIIScanner.h"
#include "support/propertylist/PropertyListLimits.h"

#include <QByteArrayView>
#include <unicode/utf8.h>

#include <algorithm>

namespace navrel::propertylist {

namespace {

constexpr std::string_view kLineSeparator = "\xE2\x80\xA8";      // U+2028
constexpr std::string_view kParagraphSeparator = "\xE2\x80\xA9"; // U+2029
constexpr std::uint32_t kNoContainer = UINT32_MAX;

/// Goes over the text once, without recursion: the containers that are open are their own stack,
/// each keeping the one around it where its end will be written. Functions take the position where
/// they begin and return the one where they stopped, or null after a failure.
template <typename Scanner>
class Parser {
public:
    Parser(std::string_view text, NodeArray& nodes)
        : begin_(text.data()), end_(text.data() + text.size()), nodes_(nodes) {}

    std::optional<TextFailure> parse() {
        if (readList()) {
            return std::nullopt;
        }
        return failure_;
    }

private:
    bool readList() {
        const char* at = begin_;
        if (std::string_view(at, size()).starts_with(kByteOrderMark)) {
            at += kByteOrderMark.size();
        }
        at = readValue(skipBlank(at));
        while (at != nullptr && open_ != kNoContainer) {
            at = isArray(open_) ? readElements(at) : readEntries(at);
        }
        if (at == nullptr) {
            return false;
        }
        at = skipBlank(at);
        return at == end_ || fail(at, "expected nothing more after the list") != nullptr;
    }

    // From before a key or the closing brace to before the next container's inside, or past the
    // end of this one.
    const char* readEntries(const char* at) {
        for (;;) {
            at = skipBlank(at);
            if (byteAt(at) == '}') {
                return close(at + 1);
            }
            const std::uint32_t key = nodes_.size();
            at = readString(at, "expected a key or \"}\"");
            if (at == nullptr) {
                return nullptr;
            }
            at = skipBlank(at);
            if (byteAt(at) == '=') {
                at = skipBlank(at + 1);
                if (opensContainer(at)) {
                    return open(at);
                }
                at = readScalar(at);
            } else if (byteAt(at) == ';') {
                if (!nodes_.append(nodes_.at(key))) {
                    return failFull(at);
                }
            } else {
                return fail(at, "expected \"=\" or \";\" after a key");
            }
            if (at == nullptr || (at = endEntry(at)) == nullptr) {
                return nullptr;
            }
        }
    }

    // The same for an array.
    const char* readElements(const char* at) {
        for (;;) {
            at = skipBlank(at);
            if (byteAt(at) == ')') {
                return close(at + 1);
            }
            if (opensContainer(at)) {
                return open(at);
            }
            at = readScalar(at);
            if (at == nullptr || (at = endElement(at)) == nullptr) {
                return nullptr;
            }
        }
    }

    const char* endEntry(const char* at) {
        at = skipBlank(at);
        if (byteAt(at) != ';') {
            return fail(at, "expected \";\" after a value");
        }
        countOne();
        return at + 1;
    }

    const char* endElement(const char* at) {
        at = skipBlank(at);
        countOne();
        if (byteAt(at) == ',') {
            return at + 1;
        }
        return byteAt(at) == ')' ? at : fail(at, "expected \",\" or \")\" after an element");
    }

    const char* readValue(const char* at) { return opensContainer(at) ? open(at) : readScalar(at); }

    bool opensContainer(const char* at) const { return byteAt(at) == '{' || byteAt(at) == '('; }

    const char* open(const char* at) {
        if (++depth_ > kMaxPropertyListDepth) {
            return fail(at, "arrays and dictionaries are nested too deeply",
                        PropertyListErrorCode::tooLarge);
        }
        const std::uint32_t around = open_;
        open_ = nodes_.size();
        const NodeKind kind = *at == '(' ? NodeKind::array : NodeKind::dictionary;
        return nodes_.append({kind, around, 0}) ? at + 1 : failFull(at);
    }

    // Ends the innermost container, and with it a value of the one around it.
    const char* close(const char* at) {
        Node& closed = nodes_.at(open_);
        open_ = closed.position();
        closed.setPosition(nodes_.size());
        --depth_;
        if (open_ == kNoContainer) {
            return at;
        }
        return isArray(open_) ? endElement(at) : endEntry(at);
    }

    const char* readScalar(const char* at) {
        if (byteAt(at) == '<') {
            return readData(at);
        }
        return readString(at, "expected a value");
    }

    const char* readString(const char* at, const char* expected) {
        const char* const end = Scanner::endOfUnquoted(at, end_);
        if (end != at) {
            return append(NodeKind::string, at, end) ? end : failFull(at);
        }
        if (byteAt(at) == '"' || byteAt(at) == '\'') {
            return readQuoted(at);
        }
        return fail(at, expected);
    }

    const char* readQuoted(const char* quote) {
        NodeKind kind = NodeKind::string;
        const char* at = quote + 1;
        for (;;) {
            at = Scanner::quoteOrBackslash(at, end_, *quote);
            if (at == end_) {
                return fail(quote, "expected the string to be closed");
            }
            if (*at == *quote) {
                return append(kind, quote + 1, at) ? at + 1 : failFull(quote);
            }
            kind = NodeKind::escapedString;
            at += end_ - at >= 2 ? 2 : 1; // an escaped quote does not end the string
        }
    }

    const char* readData(const char* bracket) {
        std::size_t digits = 0;
        const char* at = skipWhite(bracket + 1);
        for (; isOfClass(byteAt(at), kHexadecimal); at = skipWhite(at + 1)) {
            ++digits;
        }
        if (byteAt(at) != '>') {
            return fail(at, "expected hexadecimal digits or \">\"");
        }
        if (digits % 2 != 0) {
            return fail(at, "expected an even number of hexadecimal digits");
        }
        return append(NodeKind::data, bracket + 1, at) ? at + 1 : failFull(bracket);
    }

    // White space without comments.
    const char* skipWhite(const char* at) const {
        for (;;) {
            at = Scanner::endOfWhite(at, end_);
            if (!startsWithSeparator({at, static_cast<std::size_t>(end_ - at)})) {
                return at;
            }
            at += kLineSeparator.size();
        }
    }

    // Between most tokens there is nothing or a single blank: that much is done in place, and the
    // branch said to be likely, so that the next token does not wait for this byte.
    const char* skipBlank(const char* at) const {
        if (byteAt(at) == ' ') [[likely]] {
            ++at;
        }
        return isOfClass(byteAt(at), kMaybeBlank) ? skipLongBlank(at) : at;
    }

    // Kept out of line: within the loops above it would crowd out what they keep in registers.
    [[gnu::noinline]] const char* skipLongBlank(const char* at) const {
        while (isOfClass(byteAt(at), kMaybeBlank)) {
            const char* const next =
                isOfClass(*at, kWhite) ? Scanner::endOfWhite(at, end_) : endOfRareBlank(at);
            if (next == at) {
                break;
            }
            at = next;
        }
        return at;
    }

    // From a slash or a byte 0xE2: unmoved where that begins a token.
    const char* endOfRareBlank(const char* at) const {
        const std::string_view rest(at, static_cast<std::size_t>(end_ - at));
        if (rest.starts_with("/*")) {
            return Scanner::pastCommentEnd(at + 2, end_);
        }
        if (rest.starts_with("//")) {
            return endOfLine(at);
        }
        return startsWithSeparator(rest) ? at + kLineSeparator.size() : at;
    }

    const char* endOfLine(const char* at) const {
        while (at != end_ && *at != '\n' && *at != '\r' &&
               !startsWithSeparator({at, static_cast<std::size_t>(end_ - at)})) {
            ++at;
        }
        return at;
    }

    static bool startsWithSeparator(std::string_view text) {
        return text.starts_with(kLineSeparator) || text.starts_with(kParagraphSeparator);
    }

    // The byte, or 0, which is no token's, at the end.
    char byteAt(const char* at) const { return at != end_ ? *at : '\0'; }

    bool isArray(std::uint32_t node) const { return nodes_.at(node).kind() == NodeKind::array; }

    void countOne() { nodes_.at(open_).countOne(); }

    bool append(NodeKind kind, const char* from, const char* to) {
        return nodes_.append({kind, static_cast<std::uint32_t>(from - begin_),
                              static_cast<std::uint32_t>(to - from)});
    }

    std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }

    const char* fail(const char* at, const char* reason,
                     PropertyListErrorCode code = PropertyListErrorCode::malformed) {
        failure_ = {static_cast<std::size_t>(at - begin_), code, reason};
        return nullptr;
    }

    const char* failFull(const char* at) {
        return fail(at, "the list has too many values", PropertyListErrorCode::tooLarge);
    }

    const char* const begin_;
    const char* const end_;
    NodeArray& nodes_;
    std::uint32_t open_ = kNoContainer; // the innermost container that is open
    int depth_ = 0;
    TextFailure failure_{0, PropertyListErrorCode::malformed, ""};
};

// Where strict UTF-8 ends: the first byte of what is none, or the end. Most text is ASCII, so only
// the stretches between are looked at closely; no character begins in one and ends outside.
template <typename Scanner>
const char* endOfUTF8(const char* at, const char* end) {
    for (;;) {
        at = Scanner::firstNonASCII(at, end);
        while (at != end && static_cast<std::uint8_t>(*at) >= 0x80) {
            std::int32_t length = 0;
            UChar32 character = 0;
            const auto left = static_cast<std::int32_t>(std::min<std::ptrdiff_t>(end - at, 4));
            U8_NEXT(at, length, left, character);
            if (character < 0) {
                return at;
            }
            at += length;
        }
        if (at == end) {
            return end;
        }
    }
}

template <typename Scanner>
std::optional<TextFailure> checkUTF8With(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* const stop = endOfUTF8<Scanner>(text.data(), end);
    if (stop == end) {
        return std::nullopt;
    }
    return TextFailure{static_cast<std::size_t>(stop - text.data()),
                       PropertyListErrorCode::malformed, "expected UTF-8"};
}

template <typename Scanner>
std::optional<TextFailure> parseWith(std::string_view text, NodeArray& nodes) {
    if (text.size() > kMaxPropertyListBytes) {
        return TextFailure{0, PropertyListErrorCode::tooLarge, "the list has too many bytes"};
    }
    if (const std::optional<TextFailure> failure = checkUTF8With<Scanner>(text)) {
        return failure;
    }
    return Parser<Scanner>(text, nodes).parse();
}

} // namespace

std::optional<TextFailure> parseASCII(std::string_view text, NodeArray& nodes) {
    return parseWith<BestScanner>(text, nodes);
}

std::optional<TextFailure> parseASCIIPortably(std::string_view text, NodeArray& nodes) {
    return parseWith<PortableScanner>(text, nodes);
}

std::optional<TextFailure> checkUTF8(std::string_view text) {
    return checkUTF8With<BestScanner>(text);
}

QByteArray dataOfDigits(std::string_view digits) {
    // Qt's reading of hexadecimal text passes over everything else.
    return QByteArray::fromHex(QByteArray(digits.data(), static_cast<qsizetype>(digits.size())));
}

Error errorOfFailure(const TextFailure& failure, std::string_view text) {
    int line = 1;
    int column = 1;
    for (std::size_t i = 0; i < failure.position; ++i) {
        const bool endsLine =
            text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'));
        const bool continuesCharacter = (static_cast<std::uint8_t>(text[i]) & 0xC0) == 0x80;
        line += endsLine ? 1 : 0;
        column = endsLine ? 1 : column + (continuesCharacter ? 0 : 1);
    }
    return {kPropertyListErrorDomain, static_cast<qint64>(failure.code),
            QStringLiteral("line %1, column %2: %3")
                .arg(line)
                .arg(column)
                .arg(QString::fromUtf8(failure.reason))};
}

} // namespace navrel::propertylist
