#include "codemap/swift/SwiftLexer.h"

#include "codemap/CommentReader.h"
#include "codemap/OutlineBuilder.h"
#include "codemap/swift/SwiftOperators.h"
#include "support/core/Assertion.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace navrel {

namespace {

using namespace swift_bytes;

/// Strings within strings, and conditions within conditions: as deep as declarations.
constexpr std::size_t kMaximumNesting = kMaximumOutlineDepth;
/// No declaration that anyone reads has more comments in its head.
constexpr std::size_t kMaximumComments = 64;
/// Conditions around a block that may be read twice: texts have fewer.
constexpr std::size_t kMostConditionsKept = 16;
/// Columns of a tab, where texts mix them with blanks.
constexpr std::ptrdiff_t kTabWidth = 4;

/// Names between backticks, and messages, end within so many bytes: a long line may hold many.
constexpr std::ptrdiff_t kLongestName = 1000;

constexpr std::string_view kTripleQuote = "\"\"\"";

/// Behind these, and behind a word that needs something, "/" begins a regular expression.
constexpr std::string_view kBeforeExpression = "([{,;:=\n";
constexpr std::string_view kOperatorsBeforeExpression = "!&|?~^<>+-*%";
constexpr std::string_view kOpenEnded = "([{},";

bool isIn(std::string_view characters, char character) {
    for (const char one : characters) {
        if (one == character) {
            return true;
        }
    }
    return false;
}

const char* find(const char* begin, const char* end, char character) {
    const void* found = std::memchr(begin, character, static_cast<std::size_t>(end - begin));
    return found == nullptr ? end : static_cast<const char*>(found);
}

#if defined(__SSE2__)
constexpr std::ptrdiff_t kLanes = 16;

/// A bit for each of sixteen bytes: whether it is one of kBlock's, or a line feed.
unsigned stopsAmong(const char* bytes, bool atLineFeeds) {
    const __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto equal = [](__m128i one, char character) {
        return _mm_cmpeq_epi8(one, _mm_set1_epi8(character));
    };
    // A quote and "#" differ in the lowest bit alone.
    __m128i found = equal(_mm_or_si128(lanes, _mm_set1_epi8(1)), '#');
    found = _mm_or_si128(found, _mm_or_si128(equal(lanes, '{'), equal(lanes, '}')));
    found = _mm_or_si128(found, _mm_or_si128(equal(lanes, '/'), equal(lanes, '`')));
    if (atLineFeeds) {
        found = _mm_or_si128(found, equal(lanes, '\n'));
    }
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}
#endif

/// The first place of a byte that a block is to be looked at for.
const char* findInBlock(const char* place, const char* end, std::uint8_t stops) {
#if defined(__SSE2__)
    while (end - place >= kLanes) {
        const unsigned found = stopsAmong(place, (stops & kLineFeed) != 0);
        if (found != 0) {
            return place + std::countr_zero(found);
        }
        place += kLanes;
    }
#endif
    while (place < end && !isSwift(*place, stops)) {
        ++place;
    }
    return place;
}

/// Words behind which an expression begins, of all those that stand in blocks.
bool expectsExpression(std::string_view word) {
    static constexpr std::array kWords = {
        std::string_view("return"), std::string_view("in"),    std::string_view("case"),
        std::string_view("where"),  std::string_view("if"),    std::string_view("while"),
        std::string_view("guard"),  std::string_view("try"),   std::string_view("await"),
        std::string_view("else"),   std::string_view("switch")};
    return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

/// Words at the beginning of a line which is no part of the block that the line would else be in.
bool beginsOtherDeclaration(std::string_view word) {
    const SwiftWord meaning = swiftRuleOf(word).word;
    return isModifier(meaning) ||
           (introducesDeclaration(meaning) && meaning != SwiftWord::caseWord);
}

/// Whether the last word is "try", and not one like "Country".
bool endsWithTry(std::string_view text) {
    constexpr std::string_view kTry = "try";
    const std::size_t before = text.size() - std::min(text.size(), kTry.size());
    return text.ends_with(kTry) &&
           (before == 0 || !isSwift(text[before - 1], swift_bytes::kName | swift_bytes::kDigit));
}

} // namespace

SwiftLexer::SwiftLexer(std::string_view text, OutlineBuilder& builder)
    : begin_(text.data()), end_(text.data() + text.size()), place_(begin_), lines_(text),
      builder_(builder), indented_{begin_, begin_}, said_(begin_), noExpressionUpTo_(begin_) {
    if (text.starts_with("#!")) {
        place_ = find(begin_, end_, '\n');
    }
}

SwiftToken SwiftLexer::next() {
    if (peeked_) {
        const SwiftToken token = *peeked_;
        peeked_.reset();
        return token;
    }
    return read();
}

const SwiftToken& SwiftLexer::peek() {
    if (!peeked_) {
        const std::uint32_t depth = depth_;
        peeked_ = read();
        depthBeforePeek_ = depth;
    }
    return *peeked_;
}

std::ptrdiff_t SwiftLexer::indentAt(const char* place) {
    // A long line that is asked about often is looked at once.
    const char* const known = place >= indented_.place ? indented_.place : begin_;
    const char* line = place;
    while (line > known && line[-1] != '\n') {
        --line;
    }
    line = line == indented_.place ? indented_.begin : line;
    indented_ = {line, place};
    std::ptrdiff_t indent = 0;
    for (; line < end_ && isSwift(*line, kBlank); ++line) {
        indent += *line == '\t' ? kTabWidth : 1;
    }
    return indent;
}

std::uint32_t SwiftLexer::countSigns(const char* place) const {
    std::uint32_t count = 0;
    while (at(place + count) == '#') {
        ++count;
    }
    return count;
}

// Tokens.

SwiftToken SwiftLexer::read() {
    startsLine_ = place_ == begin_;
    isDetached_ = startsLine_;
    skipBlanks();
    if (place_ == end_) {
        return token(SwiftTokenKind::end, place_);
    }
    const char first = *place_;
    if (isSwift(first, kName)) {
        const bool isASCII = static_cast<unsigned char>(first) < 0x80;
        return isASCII || !isSwiftOperatorAt(place_, end_) ? readWord() : readSign();
    }
    if (isSwift(first, kDigit)) {
        return readNumber();
    }
    switch (first) {
    case '"': {
        const char* const begin = place_;
        skipString(0);
        return token(SwiftTokenKind::literal, begin);
    }
    case '`':
        return readQuotedName();
    case '/':
        return readSlash();
    case '#':
        return readHash();
    default:
        return isSwift(first, kOperator) ? readSign() : readPunctuation();
    }
}

void SwiftLexer::skipBlanks() {
    do {
        const char* place = place_;
        for (; place < end_ && isSwift(*place, kBlank | kLineFeed); ++place) {
            startsLine_ = startsLine_ || *place == '\n';
        }
        isDetached_ = isDetached_ || place > place_;
        place_ = place;
    } while (place_ < end_ && (*place_ == '/' || *place_ == '}') && skipAside());
}

/// Skips a comment, or a "}" that an earlier branch had already.
bool SwiftLexer::skipAside() {
    if (*place_ == '}') {
        if (conditions_.empty() || conditions_.back().surplus == 0) {
            return false;
        }
        --conditions_.back().surplus;
        ++place_;
    } else {
        const char* const begin = place_;
        if (!skipComment()) {
            return false;
        }
        startsLine_ = startsLine_ || find(begin, place_, '\n') < place_;
        if (comments_.size() < kMaximumComments) {
            comments_.push_back(textBetween(begin, place_));
        }
    }
    isDetached_ = true;
    return true;
}

bool SwiftLexer::skipComment() {
    const char* const begin = place_;
    if (at(place_ + 1) == '/') {
        place_ = find(place_, end_, '\n');
    } else if (at(place_ + 1) == '*') {
        skipBlockComment();
    } else {
        return false;
    }
    if (begin >= said_) {
        readComment(textBetween(begin, place_), static_cast<std::size_t>(begin - begin_), lines_,
                    builder_);
        said_ = place_;
    }
    return true;
}

void SwiftLexer::skipBlockComment() {
    std::size_t depth = 1;
    const char* inside = place_ + 2; // what lies before is part of no further sign
    place_ = inside;
    while (depth > 0) {
        place_ = find(place_, end_, '/');
        if (place_ == end_) {
            return;
        }
        if (place_ > inside && place_[-1] == '*') {
            --depth;
            ++place_;
            inside = place_;
        } else if (at(place_ + 1) == '*') {
            ++depth;
            place_ += 2;
            inside = place_;
        } else {
            ++place_;
        }
    }
}

SwiftToken SwiftLexer::readWord() {
    const char* const begin = place_;
    const std::string_view word = wordAt(begin);
    place_ += word.size();
    SwiftToken found = token(SwiftTokenKind::word, begin);
    const bool isMember = begin > begin_ && begin[-1] == '.'; // ".any" is a name
    found.word = isMember ? SwiftWord::none : swiftRuleOf(word).word;
    return found;
}

SwiftToken SwiftLexer::readQuotedName() {
    const char* const begin = place_;
    skipQuotedName();
    SwiftToken found = token(SwiftTokenKind::quotedName, begin);
    if (found.text.size() < 3) {
        found.kind = SwiftTokenKind::punctuation;
    }
    return found;
}

void SwiftLexer::skipQuotedName() {
    const char* const limit = place_ + std::min(end_ - place_, kLongestName);
    const char* const close = find(place_ + 1, limit, '`');
    const bool isName = close < limit && find(place_, close, '\n') == close;
    place_ = isName ? close + 1 : place_ + 1;
}

SwiftToken SwiftLexer::readNumber() {
    const char* const begin = place_;
    while (place_ < end_ && isSwift(*place_, kName | kDigit)) {
        ++place_;
    }
    return token(SwiftTokenKind::literal, begin);
}

const char* SwiftLexer::endOfOperator(const char* place) const {
    while (place < end_) {
        const bool isComment = *place == '/' && (at(place + 1) == '/' || at(place + 1) == '*');
        if (isSwift(*place, kOperator) && !isComment) {
            ++place;
        } else if (isSwiftOperatorAt(place, end_)) {
            place += lengthOfSwiftCharacter(place, end_);
        } else {
            break;
        }
    }
    return place;
}

SwiftToken SwiftLexer::readSign() {
    const char* const begin = place_;
    const bool isPostfix = (*begin == '?' || *begin == '!') && !isDetached_ && begin > begin_ &&
                           !isIn("([{,;:", begin[-1]);
    place_ = isPostfix ? begin + 1 : std::max(endOfOperator(begin), begin + 1);
    SwiftToken found = token(SwiftTokenKind::sign, begin);
    if (isPostfix && endsWithTry(textBetween(begin_, begin))) {
        found.word = SwiftWord::prefixWord;
    }
    return found;
}

SwiftToken SwiftLexer::readSlash() {
    const char* const begin = place_;
    if (skipRegularExpression()) {
        return token(SwiftTokenKind::literal, begin);
    }
    return readSign();
}

SwiftToken SwiftLexer::readPunctuation() {
    const char* const begin = place_++;
    if (*begin == '{') {
        ++depth_;
    } else if (*begin == '}') {
        depth_ -= depth_ > 0 ? 1 : 0;
    } else if (*begin == '.' && at(place_) == '.') {
        while (at(place_) == '.' || isSwift(at(place_), kOperator)) {
            ++place_;
        }
        return token(SwiftTokenKind::sign, begin);
    }
    return token(SwiftTokenKind::punctuation, begin);
}

SwiftToken SwiftLexer::readHash() {
    const char* const begin = place_;
    const std::uint32_t signs = countSigns(place_);
    if (at(place_ + signs) == '"') {
        place_ += signs;
        skipString(signs);
        return token(SwiftTokenKind::literal, begin);
    }
    if (at(place_ + signs) == '/') {
        skipExtendedRegularExpression(signs);
        return token(SwiftTokenKind::literal, begin);
    }
    return readMacro();
}

SwiftToken SwiftLexer::readMacro() {
    const char* const begin = place_;
    const std::uint32_t signs = countSigns(place_);
    const std::string_view word = wordAt(place_ + 1);
    place_ += signs;
    if (signs > 1 || word.empty()) {
        return token(SwiftTokenKind::punctuation, begin);
    }
    place_ += word.size();
    if (followCondition(word)) {
        return token(word == "if"      ? SwiftTokenKind::condition
                     : word == "endif" ? SwiftTokenKind::endCondition
                                       : SwiftTokenKind::branch,
                     begin);
    }
    addMessage(word, place_);
    return token(SwiftTokenKind::macro, begin);
}

// Strings.

void SwiftLexer::skipString(std::uint32_t signs) {
    beginString(signs);
    while (!strings_.empty() && place_ < end_) {
        if (strings_.back().parentheses == 0) {
            skipStringText();
        } else {
            skipInterpolation();
        }
    }
    strings_.clear();
}

void SwiftLexer::beginString(std::uint32_t signs) {
    if (strings_.size() == kMaximumNesting) {
        ++place_;
        return;
    }
    bool isMultiline = textBetween(place_, end_).starts_with(kTripleQuote);
    if (isMultiline && signs > 0) {
        // In a raw string the second quote may be text and the third one its end.
        const char* behind = place_ + kTripleQuote.size();
        while (behind < end_ && isSwift(*behind, kBlank)) {
            ++behind;
        }
        isMultiline = at(behind) == '\n';
    }
    place_ += isMultiline ? kTripleQuote.size() : 1;
    strings_.push_back({signs, isMultiline});
}

void SwiftLexer::skipStringText() {
    OpenString& string = strings_.back();
    while (place_ < end_ && !isSwift(*place_, kString)) {
        ++place_;
    }
    switch (at(place_)) {
    case '"':
        skipStringQuote(string);
        break;
    case '\\':
        skipEscape(string);
        break;
    case '\n':
        if (string.isMultiline) {
            ++place_;
        } else {
            strings_.pop_back(); // left open
        }
        break;
    default:
        break;
    }
}

void SwiftLexer::skipStringQuote(const OpenString& string) {
    const std::size_t quotes = string.isMultiline ? kTripleQuote.size() : 1;
    const bool areEnough =
        !string.isMultiline || textBetween(place_, end_).starts_with(kTripleQuote);
    if (areEnough && countSigns(place_ + quotes) >= string.signs) {
        place_ += quotes + string.signs;
        strings_.pop_back();
    } else {
        ++place_;
    }
}

void SwiftLexer::skipEscape(OpenString& string) {
    ++place_;
    if (countSigns(place_) < string.signs) {
        return;
    }
    place_ += string.signs;
    if (at(place_) == '(') {
        string.parentheses = 1;
        string.braces = 0;
        ++place_;
    } else if (place_ < end_ && *place_ != '\n') {
        ++place_;
    }
}

void SwiftLexer::skipInterpolation() {
    OpenString& string = strings_.back();
    for (; place_ < end_; ++place_) {
        switch (*place_) {
        case '(':
            ++string.parentheses;
            break;
        case ')':
            if (--string.parentheses == 0) {
                ++place_;
                return;
            }
            break;
        case '{':
            ++string.braces;
            break;
        case '}':
            string.braces -= string.braces > 0 ? 1 : 0;
            break;
        case '"':
            beginString(0);
            return;
        case '#': {
            const std::uint32_t signs = countSigns(place_);
            place_ += signs;
            if (at(place_) == '"') {
                beginString(signs);
                return;
            }
            --place_;
            break;
        }
        case '/':
            place_ -= skipComment() ? 1 : 0;
            break;
        case '\n':
            if (endsInterpolation()) {
                strings_.pop_back();
                return;
            }
            break;
        default:
            break;
        }
    }
}

/// Whether a line feed in an interpolation means that the string was left open: in one between
/// single quotes, where no further bracket is open.
bool SwiftLexer::endsInterpolation() const {
    const OpenString& string = strings_.back();
    if (string.isMultiline || string.parentheses > 1 || string.braces > 0) {
        return false;
    }
    const char* last = place_ - 1;
    while (last > begin_ && isSwift(*last, kBlank)) {
        --last;
    }
    return !isIn(kOpenEnded, *last);
}

// Regular expressions.

bool SwiftLexer::skipRegularExpression() {
    const char next = at(place_ + 1);
    if (next == ' ' || next == '\t' || next == '\n' || next == '\0' || !mayBeginExpression()) {
        return false;
    }
    const char* const end = endOfRegularExpression();
    if (end == nullptr) {
        return false;
    }
    place_ = end;
    return true;
}

bool SwiftLexer::mayBeginExpression() const {
    const char* before = place_;
    while (before > begin_ && isSwift(before[-1], kBlank)) {
        --before;
    }
    if (before == begin_ || isIn(kBeforeExpression, before[-1])) {
        return true;
    }
    if (before == place_) {
        return false;
    }
    if (isIn(kOperatorsBeforeExpression, before[-1])) {
        return true;
    }
    constexpr std::ptrdiff_t kLongestWord = 8;
    const char* word = before;
    while (word > begin_ && before - word < kLongestWord && isSwift(word[-1], kName | kDigit)) {
        --word;
    }
    return expectsExpression(textBetween(word, before));
}

/// Behind the "/" that closes what begins at the place; null where nothing does on the line.
const char* SwiftLexer::endOfRegularExpression() {
    if (place_ < noExpressionUpTo_) {
        return nullptr;
    }
    std::size_t groups = 0;
    bool isSet = false;
    const char* place = place_ + 1;
    for (; place < end_ && *place != '\n'; ++place) {
        if (*place == '\\') {
            ++place;
        } else if (isSet) {
            isSet = *place != ']';
        } else if (*place == '[') {
            isSet = true;
        } else if (*place == '(') {
            ++groups;
        } else if (*place == ')' && groups-- == 0) {
            break;
        } else if (*place == '/') {
            return place[-1] == ' ' ? nullptr : place + 1;
        }
        if (place < end_ && *place == '\n') {
            break;
        }
    }
    noExpressionUpTo_ = std::min(place, end_);
    return nullptr;
}

/// "#/…/#", over several lines where its first one is empty.
void SwiftLexer::skipExtendedRegularExpression(std::uint32_t signs) {
    place_ += signs + 1;
    const bool isMultiline = at(place_) == '\n' || at(place_) == '\r';
    for (; place_ < end_; ++place_) {
        if (*place_ == '\n' && !isMultiline) {
            return;
        }
        if (*place_ == '\\') {
            ++place_;
        } else if (*place_ == '/' && countSigns(place_ + 1) >= signs) {
            place_ += 1 + signs;
            return;
        }
    }
    place_ = end_;
}

// Conditions and messages.

bool SwiftLexer::followCondition(std::string_view word) {
    if (word == "if") {
        if (conditions_.size() < kMaximumNesting) {
            conditions_.push_back({depth_, 0});
        } else {
            ++conditionsLeftOut_;
        }
    } else if (word == "elseif" || word == "else") {
        beginBranch();
    } else if (word == "endif") {
        if (conditionsLeftOut_ > 0) {
            --conditionsLeftOut_;
        } else if (!conditions_.empty()) {
            conditions_.pop_back();
        }
    } else {
        return false;
    }
    skipConditionLine();
    return true;
}

void SwiftLexer::skipConditionLine() {
    while (place_ < end_ && *place_ != '\n' &&
           !(*place_ == '/' && (at(place_ + 1) == '/' || at(place_ + 1) == '*'))) {
        ++place_;
    }
}

void SwiftLexer::beginBranch() {
    if (conditions_.empty() || conditionsLeftOut_ > 0) {
        return;
    }
    Condition& condition = conditions_.back();
    condition.surplus = condition.depth - std::min(condition.depth, depth_);
    depth_ = std::min(condition.depth, depth_);
}

/// Adds what #warning or #error says: a string between parentheses.
void SwiftLexer::addMessage(std::string_view word, const char* behind) {
    if ((word != "warning" && word != "error") || behind < said_) {
        return;
    }
    const char* const limit = behind + std::min(end_ - behind, kLongestName);
    const std::string_view line = textBetween(behind, find(behind, limit, '\n'));
    const std::size_t open = line.find('"');
    const std::size_t close = line.rfind('"');
    if (line.starts_with('(') && open < close) {
        builder_.addNote(word == "error" ? NoteKind::error : NoteKind::warning, lineAt(behind),
                         line.substr(open + 1, close - open - 1));
    }
}

// Blocks.

SwiftLexer::BlockEnd SwiftLexer::skipBlock(BlockKind kind, std::ptrdiff_t indent,
                                           std::ptrdiff_t outer) {
    NAVREL_ASSERT(!peeked_ && depth_ > 0);
    if (!trustsIndentation_) {
        return skipToBlockEnd(std::nullopt);
    }
    const std::ptrdiff_t opening = indentAt(place_ - 1);
    if (skipSoundBlock({outer, indent, opening})) {
        return BlockEnd::brace;
    }
    return skipToBlockEnd(Indents{outer, indent, kind == BlockKind::closure ? opening : indent});
}

/// Skips a block whose closing brace is on the line of its opening one, or is indented as it may
/// be. Leaves others as they were.
bool SwiftLexer::skipSoundBlock(const Indents& indents) {
    if (conditions_.size() > kMostConditionsKept || unsound_ > std::size_t(end_ - begin_)) {
        return false;
    }
    const char* const begin = place_;
    const std::uint32_t depth = depth_;
    const std::vector<Condition> conditions = conditions_;
    const std::uint32_t conditionsLeftOut = conditionsLeftOut_;
    if (skipToBlockEnd(std::nullopt) == BlockEnd::brace) {
        const std::ptrdiff_t closing = indentAt(place_ - 1);
        const bool isOneLine = indented_.begin < begin;
        const bool beginsLine =
            textBetween(indented_.begin, place_ - 1).find_first_not_of(" \t\r\f\v") ==
            std::string_view::npos;
        const bool isIndented =
            closing > indents.outer &&
            (closing <= indents.declaration || closing == indents.end || otherDeclarationFollows());
        if (isOneLine || (beginsLine && isIndented)) {
            return true;
        }
    }
    unsound_ += static_cast<std::size_t>(place_ - begin);
    place_ = begin;
    depth_ = depth;
    conditions_ = conditions;
    conditionsLeftOut_ = conditionsLeftOut;
    return false;
}

/// Whether the next line that says something begins a declaration, or a comment.
bool SwiftLexer::otherDeclarationFollows() const {
    const char* next = place_;
    while (next < end_ && isSwift(*next, kBlank | kLineFeed)) {
        ++next;
    }
    return at(next) == '/' || at(next) == '@' || beginsOtherDeclaration(wordAt(next));
}

SwiftLexer::BlockEnd SwiftLexer::skipToBlockEnd(std::optional<Indents> indents) {
    const std::uint32_t outside = depth_ - 1;
    const std::uint8_t stops = kBlock | (indents ? kLineFeed : 0);
    for (;;) {
        place_ = findInBlock(place_, end_, stops);
        if (place_ == end_) {
            depth_ = outside;
            return BlockEnd::text;
        }
        const BlockStep step = stepInBlock(outside, indents);
        if (step != BlockStep::on) {
            return step == BlockStep::brace ? BlockEnd::brace : BlockEnd::early;
        }
    }
}

SwiftLexer::BlockStep SwiftLexer::stepInBlock(std::uint32_t outside,
                                              const std::optional<Indents>& indents) {
    switch (*place_) {
    case '{':
        ++depth_;
        ++place_;
        return BlockStep::on;
    case '}':
        ++place_;
        return closeBrace() && depth_ <= outside ? BlockStep::brace : BlockStep::on;
    case '"':
        skipString(0);
        return BlockStep::on;
    case '`':
        skipQuotedName();
        return BlockStep::on;
    case '/':
        if (!skipComment() && !skipRegularExpression()) {
            ++place_;
        }
        return BlockStep::on;
    case '#':
        return hashInBlock(outside);
    default:
        return lineInBlock(outside, *indents);
    }
}

bool SwiftLexer::closeBrace() {
    if (!conditions_.empty() && conditions_.back().surplus > 0) {
        --conditions_.back().surplus;
        return false;
    }
    --depth_;
    return true;
}

SwiftLexer::BlockStep SwiftLexer::hashInBlock(std::uint32_t outside) {
    const std::uint32_t signs = countSigns(place_);
    if (at(place_ + signs) == '"') {
        place_ += signs;
        skipString(signs);
        return BlockStep::on;
    }
    if (at(place_ + signs) == '/') {
        skipExtendedRegularExpression(signs);
        return BlockStep::on;
    }
    const std::string_view word = wordAt(place_ + 1);
    if ((word == "else" || word == "elseif") && isOuterBranch(outside)) {
        depth_ = outside;
        return BlockStep::early;
    }
    place_ += signs + (signs == 1 ? word.size() : 0);
    if (signs == 1 && !followCondition(word)) {
        addMessage(word, place_);
    }
    return BlockStep::on;
}

/// Whether the condition whose branches are being read began before the block.
bool SwiftLexer::isOuterBranch(std::uint32_t outside) const {
    return !conditions_.empty() && conditionsLeftOut_ == 0 && conditions_.back().depth <= outside;
}

/// A line feed, where the indentation is trusted.
SwiftLexer::BlockStep SwiftLexer::lineInBlock(std::uint32_t outside, const Indents& indents) {
    const char* const line = ++place_;
    while (place_ < end_ && isSwift(*place_, kBlank)) {
        ++place_;
    }
    const std::ptrdiff_t column = indentAt(line);
    if (at(place_) == '}') {
        if (column <= indents.outer) {
            depth_ = outside;
            return BlockStep::early;
        }
        if (column <= indents.declaration || column == indents.end) {
            depth_ = outside + 1; // inner braces were left open
        } else if (depth_ == outside + 1 && column > indents.end) {
            ++place_; // one too many
        }
        return BlockStep::on;
    }
    if (column <= indents.declaration &&
        (at(place_) == '@' || beginsOtherDeclaration(wordAt(place_)))) {
        depth_ = outside;
        return BlockStep::early;
    }
    return BlockStep::on;
}

} // namespace navrel
