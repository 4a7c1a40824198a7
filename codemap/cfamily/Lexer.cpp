#include "codemap/cfamily/Lexer.h"

#include "codemap/cfamily/ByteSearch.h"

#include <algorithm>
#include <array>
#include <string>

namespace navrel::cfamily {

namespace {

/// So far back the comment before a directive may begin, so that time stays linear.
constexpr std::size_t kMaximumCommentBeforeDirective = 256;

/// The longest delimiter of a raw string that the language allows.
constexpr std::size_t kMaximumRawDelimiter = 16;

/// A digit separator's number is looked back at so far: no number is longer.
constexpr std::size_t kMaximumNumber = 128;

/// "decltype(…)" as the name of an operator: what is in the group is that short, so that time stays
/// linear.
constexpr std::string_view kTypeOf = "decltype";
constexpr std::size_t kMaximumTypeGroup = 256;

/// The place behind the group that a place opens; the place itself where it does not end soon.
std::size_t afterShortGroup(std::string_view text, std::size_t opening) {
    const std::size_t last = std::min(text.size(), opening + kMaximumTypeGroup);
    std::size_t depth = 0;
    for (std::size_t place = opening; place < last; ++place) {
        depth += text[place] == '(' ? 1 : 0;
        if (text[place] == ')' && --depth == 0) {
            return place + 1;
        }
    }
    return opening;
}

bool isOperatorByte(char byte) {
    return byte != 0 && std::string_view("+-*/%^&|~!=<>,").find(byte) != std::string_view::npos;
}

bool isRawPrefix(std::string_view word) {
    constexpr std::array<std::string_view, 5> kPrefixes = {"R", "LR", "uR", "UR", "u8R"};
    return std::find(kPrefixes.begin(), kPrefixes.end(), word) != kPrefixes.end();
}

struct LongSign {
    std::string_view text;
    Sign sign;
};

/// Longer ones first. "<:" and its kin are digraphs.
constexpr std::array kLongSigns = {
    LongSign{"...", kEllipsisSign},
    LongSign{"<=>", kOtherSign},
    LongSign{"::", kScopeSign},
    LongSign{"->", kArrowSign},
    LongSign{"&&", kLogicalSign},
    LongSign{"||", kLogicalSign},
    LongSign{"<<", kOtherSign},
    LongSign{"<=", kOtherSign},
    LongSign{">=", kOtherSign},
    LongSign{"==", kOtherSign},
    LongSign{"!=", kOtherSign},
    LongSign{"+=", kOtherSign},
    LongSign{"-=", kOtherSign},
    LongSign{"++", kOtherSign},
    LongSign{"--", kOtherSign},
    LongSign{"<%", '{'},
    LongSign{"%>", '}'},
    LongSign{"<:", '['},
    LongSign{":>", ']'},
};

} // namespace

Token Lexer::next() {
    skipBlanksAndComments();
    if (position_ >= text_.size()) {
        return token(TokenKind::end, text_.size());
    }
    const char byte = text_[position_];
    if (isNameStart(byte)) {
        return lexWord();
    }
    if (isDigit(byte)) {
        return lexNumber();
    }
    const std::size_t begin = position_;
    switch (byte) {
    case '"':
        skipQuoted('"');
        return token(TokenKind::string, begin);
    case '\'':
        skipQuoted('\'');
        return token(TokenKind::character, begin);
    case '@':
        return lexAt();
    case '#':
    case '%':
        return lexDirective();
    default:
        return lexSign();
    }
}

char Lexer::peek() const {
    std::size_t position = position_;
    while (position < text_.size()) {
        if (isBlank(text_[position])) {
            ++position;
        } else if (text_.substr(position).starts_with("/*")) {
            position = findPair(text_, position + 2, '*', '/') + 2;
        } else if (text_.substr(position).starts_with("//")) {
            position = findLineFeed(text_, position);
        } else {
            return text_[position];
        }
    }
    return 0;
}

void Lexer::skipBlanksAndComments() {
    const char* const end = text_.data() + text_.size();
    for (;;) {
        const char* place = text_.data() + position_;
        while (place < end && isBlank(*place)) {
            ++place;
        }
        position_ = static_cast<std::size_t>(place - text_.data());
        if (place == end) {
            return;
        }
        if (*place == '\\' && skipContinuation()) {
            ++position_;
        } else if (*place != '/' || !skipComment()) {
            return;
        }
    }
}

/// At a backslash: goes to the last byte of the line end after it, if there is one.
bool Lexer::skipContinuation() {
    if (startsWith("\\\n")) {
        position_ += 1;
        return true;
    }
    if (startsWith("\\\r\n")) {
        position_ += 2;
        return true;
    }
    return false;
}

bool Lexer::skipComment() {
    if (startsWith("//")) {
        skipLineComment();
        return true;
    }
    if (startsWith("/*")) {
        skipBlockComment();
        return true;
    }
    return false;
}

void Lexer::skipLineComment() {
    const std::size_t begin = position_;
    position_ = findLineFeed(text_, position_);
    while (position_ < text_.size() &&
           (text_[position_ - 1] == '\\' ||
            (text_[position_ - 1] == '\r' && text_[position_ - 2] == '\\'))) {
        position_ = findLineFeed(text_, position_ + 1);
    }
    report(begin);
}

void Lexer::skipBlockComment() {
    const std::size_t begin = position_;
    position_ = std::min(findPair(text_, position_ + 2, '*', '/') + 2, text_.size());
    report(begin);
}

void Lexer::report(std::size_t begin) {
    if (!isQuiet_ && begin >= reported_) {
        reported_ = position_;
        listener_.onComment(text_.substr(begin, position_ - begin), begin);
    }
}

bool Lexer::isAtLineStart(std::size_t position) const {
    const std::size_t place = beforeBlanks(position);
    if (place > 1 && text_.substr(place - 2, 2) == "*/") {
        const std::size_t first = place - std::min(place, kMaximumCommentBeforeDirective);
        const std::size_t comment = text_.substr(first, place - first).rfind("/*");
        return comment != std::string_view::npos && isFirstOnLine(beforeBlanks(first + comment));
    }
    return isFirstOnLine(place);
}

/// The place behind what is not a blank before a place.
std::size_t Lexer::beforeBlanks(std::size_t position) const {
    while (position > 0 && (text_[position - 1] == ' ' || text_[position - 1] == '\t')) {
        --position;
    }
    return position;
}

std::size_t Lexer::afterBlanks(std::size_t position) const {
    while (position < text_.size() && isBlank(text_[position])) {
        ++position;
    }
    return position;
}

std::size_t Lexer::afterName(std::size_t position) const {
    while (position < text_.size() && isNameByte(text_[position])) {
        ++position;
    }
    return position;
}

bool Lexer::isFirstOnLine(std::size_t position) const {
    return position == 0 || text_[position - 1] == '\n';
}

bool Lexer::startsWith(std::string_view prefix) const {
    return text_.substr(position_).starts_with(prefix);
}

Token Lexer::lexWord() {
    const std::size_t begin = position_;
    const char* place = text_.data() + begin + 1;
    const char* const end = text_.data() + text_.size();
    while (place < end && isNameByte(*place)) {
        ++place;
    }
    position_ = static_cast<std::size_t>(place - text_.data());
    const std::string_view word = text_.substr(begin, position_ - begin);
    if (position_ < text_.size() && text_[position_] == '"' && isRawStringAt(position_)) {
        skipRawString();
        return token(TokenKind::string, begin);
    }
    Token result = token(TokenKind::word, begin);
    if (const WordEntry* entry = findWord(word)) {
        result.word = wordOf(*entry, dialect_, dialect_ == Dialect::unknown ? peek() : '\0');
    }
    return result;
}

Token Lexer::lexNumber() {
    const std::size_t begin = position_;
    const auto isPart = [this](std::size_t at) {
        const char byte = text_[at];
        const char before = static_cast<char>(text_[at - 1] | 0x20);
        return isNameByte(byte) || byte == '.' ||
               ((byte == '+' || byte == '-') && (before == 'e' || before == 'p')) ||
               (byte == '\'' && at + 1 < text_.size() && isNameByte(text_[at + 1]));
    };
    do {
        ++position_;
    } while (position_ < text_.size() && isPart(position_));
    return token(TokenKind::number, begin);
}

Token Lexer::lexAt() {
    const std::size_t begin = position_++;
    if (position_ < text_.size() && text_[position_] == '"') {
        skipQuoted('"');
        return token(TokenKind::string, begin);
    }
    // "@ class" is rare, but one word: "@" alone has a meaning only before other signs.
    const std::size_t word = afterBlanks(position_);
    position_ = afterName(word);
    const AtWord meaning = atWordOf(text_.substr(word, position_ - word));
    if (position_ == word || (word > begin + 1 && meaning == AtWord::other)) {
        position_ = begin;
        return signToken('@', 1);
    }
    Token result = token(TokenKind::atWord, begin);
    result.atWord = meaning;
    return result;
}

Token Lexer::lexSign() {
    // A sign of several bytes goes on with one of their first bytes.
    if (position_ + 1 < text_.size() && mayBeginLongSign(text_[position_]) &&
        mayBeginLongSign(text_[position_ + 1])) {
        const std::string_view rest = text_.substr(position_);
        for (const LongSign& sign : kLongSigns) {
            if (rest[0] == sign.text[0] && rest.starts_with(sign.text)) {
                // "<::" is "<" and "::", as in vector<::Type>.
                const bool isScope = sign.text == "<:" && rest.starts_with("<::") &&
                                     !rest.starts_with("<:::") && !rest.starts_with("<::>");
                return isScope ? signToken('<', 1) : signToken(sign.sign, sign.text.size());
            }
        }
    }
    return signToken(text_[position_], 1);
}

Token Lexer::lexDirective() {
    const bool isSign = text_[position_] == '%' && !startsWith("%:");
    if (isSign || !isAtLineStart(position_)) {
        return lexSign();
    }
    const std::size_t begin = position_;
    skipDirective();
    return token(TokenKind::directive, begin);
}

/// To the line feed that ends the directive. Its comments may go over lines; #error and its kin
/// are prose, in which quotes and comments mean nothing.
void Lexer::skipDirective() {
    std::size_t name = position_ + 1;
    while (name < text_.size() && (text_[name] == ' ' || text_[name] == '\t')) {
        ++name;
    }
    const std::string_view rest = text_.substr(name);
    const bool isProse =
        rest.starts_with("error") || rest.starts_with("warning") || rest.starts_with("pragma");
    while (position_ < text_.size() && text_[position_] != '\n') {
        const char byte = text_[position_];
        if (byte == '\\' && skipContinuation()) {
            ++position_;
        } else if (!isProse && (byte == '"' || byte == '\'')) {
            skipQuoted(byte);
        } else if (isProse || byte != '/' || !skipComment()) {
            ++position_;
        }
    }
}

void Lexer::skipQuoted(char quote) {
    ++position_;
    while (position_ < text_.size()) {
        const char byte = text_[position_];
        if (byte == '\n') {
            return;
        }
        ++position_;
        if (byte == quote) {
            return;
        }
        if (byte == '\\' && position_ < text_.size()) {
            position_ += text_.substr(position_).starts_with("\r\n") ? 2 : 1;
        }
    }
}

/// At the quote of a raw string.
void Lexer::skipRawString() {
    const std::size_t parenthesis = text_.find('(', position_);
    const std::string_view delimiter = text_.substr(position_ + 1, parenthesis - position_ - 1);
    std::string closing(1, ')');
    closing.append(delimiter).append(1, '"');
    const std::size_t end = text_.find(closing, parenthesis);
    if (end == std::string_view::npos) {
        hasBrokenRawString_ = true;
        skipQuoted('"');
        return;
    }
    position_ = end + closing.size();
}

bool Lexer::isRawStringAt(std::size_t quote) const {
    std::size_t begin = quote;
    while (begin > 0 && quote - begin < 4 && isNameByte(text_[begin - 1])) {
        --begin;
    }
    if (hasBrokenRawString_ || !isRawPrefix(text_.substr(begin, quote - begin))) {
        return false;
    }
    const std::string_view delimiter = text_.substr(quote + 1, kMaximumRawDelimiter + 1);
    const std::size_t end = delimiter.find_first_of("( )\\\t\v\f\n\"");
    return end != std::string_view::npos && delimiter[end] == '(';
}

bool Lexer::isDigitSeparator(std::size_t quote) const {
    if (quote == 0 || quote + 1 >= text_.size() || !isNameByte(text_[quote - 1]) ||
        !isNameByte(text_[quote + 1])) {
        return false;
    }
    std::size_t begin = quote;
    while (begin > 0 && quote - begin < kMaximumNumber &&
           (isNameByte(text_[begin - 1]) || text_[begin - 1] == '\'')) {
        --begin;
    }
    return isDigit(text_[begin]);
}

Token Lexer::operatorName(const Token& word) {
    skipBlanksAndComments();
    Token result = word;
    result.kind = TokenKind::operatorName;
    if (startsWith("(")) {
        const std::size_t begin = position_++;
        skipBlanksAndComments();
        position_ = startsWith(")") ? position_ + 1 : begin;
    } else if (startsWith("[")) {
        position_ = std::min(text_.find(']', position_), text_.size() - 1) + 1;
    } else if (startsWith("\"")) {
        skipQuoted('"');
        skipBlanksAndComments();
        while (position_ < text_.size() && isNameByte(text_[position_])) {
            ++position_;
        }
    } else if (position_ < text_.size() && isOperatorByte(text_[position_])) {
        while (position_ < text_.size() && isOperatorByte(text_[position_])) {
            ++position_;
        }
    } else {
        skipConversionType();
    }
    result.end = static_cast<std::uint32_t>(position_);
    return result;
}

/// The type that an operator converts to, up to the parameters.
void Lexer::skipConversionType() {
    const std::size_t begin = position_;
    position_ = std::min(text_.find_first_of("(;{}", position_), text_.size());
    if (beforeBlanks(position_) >= begin + kTypeOf.size() &&
        text_.substr(0, beforeBlanks(position_)).ends_with(kTypeOf) && startsWith("(")) {
        const std::size_t after = afterShortGroup(text_, position_);
        position_ =
            after == position_ ? after : std::min(text_.find_first_of("(;{}", after), text_.size());
    }
}

BodyEvent Lexer::nextInBody(bool withLineStarts) {
    BodyEvent event;
    while (true) {
        if (withLineStarts && (position_ > lineEnd_ || lineEnd_ == 0)) {
            lineEnd_ = findLineFeed(text_, position_);
        }
        const std::size_t lineEnd = withLineStarts ? lineEnd_ : text_.size();
        position_ = findBodySign(text_.substr(0, lineEnd), position_);
        if (position_ < lineEnd) {
            if (readBodySign(event)) {
                return event;
            }
            continue;
        }
        event.begin = lineEnd;
        position_ = std::min(lineEnd + 1, text_.size());
        event.end = position_;
        event.kind = lineEnd < text_.size() ? BodyEvent::Kind::lineStart : BodyEvent::Kind::end;
        return event;
    }
}

/// Whether the byte here is an event; if not, it and what belongs to it is passed over.
bool Lexer::readBodySign(BodyEvent& event) {
    event.begin = position_;
    switch (text_[position_]) {
    case '{':
    case '}':
        event.kind = text_[position_] == '{' ? BodyEvent::Kind::open : BodyEvent::Kind::close;
        event.end = ++position_;
        return true;
    case '"':
        isRawStringAt(position_) ? skipRawString() : skipQuoted('"');
        return false;
    case '\'':
        isDigitSeparator(position_) ? static_cast<void>(++position_) : skipQuoted('\'');
        return false;
    case '/':
        position_ += skipComment() ? 0 : 1;
        return false;
    case '@':
        event.kind = BodyEvent::Kind::container;
        position_ += isContainerWord() ? 0 : 1;
        event.end = position_;
        return event.begin == event.end;
    default:
        return readDigraph(event);
    }
}

/// At "#" or "%".
bool Lexer::readDigraph(BodyEvent& event) {
    const bool isDirective = text_[position_] == '#' || startsWith("%:");
    if (isDirective && isAtLineStart(position_)) {
        event.kind = BodyEvent::Kind::directive;
        skipDirective();
        event.end = position_;
        return true;
    }
    const bool opens = position_ > 0 && text_[position_ - 1] == '<';
    const bool closes = startsWith("%>");
    const bool isBrace = text_[position_] == '%' && (opens || closes);
    position_ += isBrace && closes ? 2 : 1;
    event.kind = opens ? BodyEvent::Kind::open : BodyEvent::Kind::close;
    event.end = position_;
    return isBrace;
}

/// At "@": no body holds these at the beginning of a line.
bool Lexer::isContainerWord() const {
    if (position_ > 0 && text_[position_ - 1] != '\n') {
        return false;
    }
    const std::size_t word = afterBlanks(position_ + 1);
    const std::size_t end = afterName(word);
    switch (atWordOf(text_.substr(word, end - word))) {
    case AtWord::interfaceType:
    case AtWord::implementation:
    case AtWord::end:
        return true;
    case AtWord::protocol:
        return end < text_.size() && text_[end] == ' '; // @protocol(Name) is an expression
    default:
        return false;
    }
}

} // namespace navrel::cfamily
