#include "codemap/cfamily/Recogniser.h"

#include "codemap/CommentReader.h"
#include "codemap/SourceOutline.h"
#include "codemap/cfamily/Directive.h"
#include "codemap/cfamily/TypeHead.h"
#include "codemap/cfamily/Words.h"

#include <algorithm>
#include <utility>

namespace navrel::cfamily {

namespace {

/// So many tokens after a body are looked at for the name of what has none before it.
constexpr int kMaximumLook = 64;

/// Lines that are longer were not written to be read.
constexpr std::size_t kMaximumIndentedLine = 1000;

/// A head is looked through at so many braces and "=", so that time stays linear. Declarations have
/// few, but for lists of variables, which need no such look.
constexpr std::uint32_t kMaximumHeadLooks = 256;

Dialect dialectOf(Language language) {
    switch (language) {
    case Language::cpp:
    case Language::cppHeader:
    case Language::objectiveCpp:
        return Dialect::cpp;
    case Language::header:
        return Dialect::unknown;
    default:
        return Dialect::c;
    }
}

bool isHeader(Language language) {
    return language == Language::header || language == Language::cppHeader;
}

Access accessOf(AtWord word) {
    switch (word) {
    case AtWord::accessPublic:
        return Access::publicAccess;
    case AtWord::accessProtected:
        return Access::protectedAccess;
    case AtWord::accessPrivate:
        return Access::privateAccess;
    case AtWord::accessPackage:
        return Access::package;
    default:
        return Access::unstated;
    }
}

bool isContainerKind(ScopeKind kind) {
    return kind == ScopeKind::declaration || kind == ScopeKind::implementation;
}

bool holdsContainers(ScopeKind kind) {
    return kind == ScopeKind::file || kind == ScopeKind::linkage ||
           kind == ScopeKind::namespaceScope;
}

/// Whether braces enclose a scope of a kind.
bool isBraced(ScopeKind kind) {
    return kind != ScopeKind::file && !isContainerKind(kind);
}

std::string_view withoutQuotes(std::string_view text) {
    const bool isQuoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

} // namespace

Recogniser::Recogniser(std::string_view text, Language language)
    : text_(text), isCpp_(language != Language::c && language != Language::objectiveC),
      builder_(language, text.size()), lines_(text), lexer_(text, dialectOf(language), *this),
      head_(text), scopes_(builder_), declarations_(head_, scopes_, lines_, isHeader(language)) {}

void Recogniser::trustIndentation() {
    trustsIndentation_ = true;
    endsBodiesByIndent_ = true;
}

Outline Recogniser::outline() {
    while (true) {
        if (bodyDepth_ > 0) {
            passBody(); // a branch of #if goes on inside of a body
            clearHead();
            continue;
        }
        const Token token = lexer_.next();
        if (token.kind == TokenKind::end) {
            break;
        }
        if (trustsIndentation_) {
            beginMember(token);
        }
        read(token);
    }
    clearHead();
    isBalanced_ = !isBraced(scopes_.current().kind);
    return builder_.finish(lines_.lines());
}

void Recogniser::onComment(std::string_view comment, std::size_t position) {
    readComment(comment, position, lines_, builder_);
}

void Recogniser::read(const Token& token) {
    switch (token.kind) {
    case TokenKind::directive:
        readDirective(token.begin, token.end);
        return;
    case TokenKind::atWord:
        readAtWord(token);
        return;
    case TokenKind::word:
        readWord(token);
        return;
    case TokenKind::sign:
        readSign(token);
        return;
    default:
        head_.push(token);
    }
}

void Recogniser::readWord(const Token& token) {
    if (token.word == Word::operatorName) {
        head_.push(lexer_.operatorName(token));
        return;
    }
    head_.push(token);
    if (token.word == Word::templateHead && lexer_.peek() == '<') {
        readTemplateParameters();
    }
}

void Recogniser::readSign(const Token& token) {
    switch (token.sign) {
    case '{':
        head_.isNested() ? passBraces(token) : openBrace(token);
        return;
    case '}':
        closeBrace(token);
        return;
    case ';':
        endStatement(token);
        return;
    case ',':
        readComma(token);
        return;
    case '=':
        readEquals(token);
        return;
    case ':':
        readColon(token);
        return;
    case '-':
    case '+':
        readDash(token);
        return;
    default:
        head_.push(token);
    }
}

void Recogniser::readColon(const Token& token) {
    if (head_.isNested() || isInContainer()) {
        head_.push(token);
        return;
    }
    if (isAccessLabel()) {
        readAccessLabel();
        clearHead();
        return;
    }
    if (isCpp_ && !hasReadColon_ && !head_.empty()) {
        hasReadColon_ = true;
        const Declarator declarator = readDeclarator(head_, 0, false, scopes_.current().name);
        if (declarator.isFunction && !readTypeHead(head_)) {
            passConstructorInitializers(token);
            return;
        }
    }
    head_.push(token);
}

/// In a class of Objective-C, "-" or "+" at the beginning of a line begins a method.
void Recogniser::readDash(const Token& token) {
    const bool isMethod =
        isInContainer() && !head_.isNested() && (head_.empty() || isFirstOnLine(token.begin));
    if (isMethod) {
        clearHead();
    }
    head_.push(token);
}

void Recogniser::readEquals(const Token& token) {
    if (mayLookThroughHead() && holdsMacroCallsAlone()) {
        clearHead(); // "MACRO(a) = {…} MACRO_END(a)": there may be no semicolon
        return;
    }
    head_.push(token);
    if (!head_.isNested()) {
        passInitializer();
    }
}

bool Recogniser::mayLookThroughHead() {
    return headLooks_++ < kMaximumHeadLooks;
}

bool Recogniser::holdsMacroCallsAlone() const {
    std::size_t i = 0;
    while (head_.is(i, Word::specifier)) {
        ++i;
    }
    const std::size_t first = i;
    while (i < head_.size() && head_[i].isName() && head_.is(i + 1, '(') &&
           looksLikeMacro(head_.textOf(i)) && head_.textOf(i) != scopes_.current().name) {
        i = head_.after(i + 1);
    }
    return i > first && i == head_.size() && !head_.isNested() &&
           scopes_.current().kind != ScopeKind::enumeration;
}

void Recogniser::readComma(const Token& token) {
    if (!head_.isNested() && scopes_.current().kind == ScopeKind::enumeration) {
        endHead(token.begin);
        return;
    }
    head_.push(token);
}

void Recogniser::readTemplateParameters() {
    std::size_t depth = 0;
    const std::size_t opening = head_.size();
    const std::uint64_t number = headNumber_;
    while (number == headNumber_) {
        const std::size_t position = lexer_.position();
        const Token token = lexer_.next();
        const bool isEnd = token.kind == TokenKind::end || token.is(';') || token.is('}') ||
                           (token.is('{') && !head_.isNested()) || token.kind == TokenKind::atWord;
        if (isEnd) {
            lexer_.setPosition(position);
            return;
        }
        if (token.kind == TokenKind::directive) {
            readDirective(token.begin, token.end);
            continue;
        }
        if (token.is('{')) {
            passBraces(token);
            continue;
        }
        head_.push(token);
        if (head_.isNested()) {
            continue;
        }
        depth += token.is('<') ? 1 : 0;
        if (token.is('>') && --depth == 0) {
            if (head_.is(opening, '<')) {
                head_.join(opening, head_.size() - 1);
            }
            return;
        }
    }
}

// The preprocessor.

void Recogniser::readDirective(std::size_t begin, std::size_t end) {
    const Directive directive = navrel::cfamily::readDirective(text_.substr(begin, end - begin));
    const bool isNew = begin >= directivesRead_;
    directivesRead_ = std::max(directivesRead_, end);
    switch (directive.kind) {
    case Directive::Kind::condition:
        conditions_.begin(place(), directive.isNever);
        return;
    case Directive::Kind::alternative:
        readAlternative(begin);
        return;
    case Directive::Kind::endOfCondition:
        endCondition(begin);
        return;
    case Directive::Kind::definition:
        readDefinition(directive, begin, end);
        return;
    case Directive::Kind::mark:
        if (isNew) {
            builder_.addHeading(lineAt(begin), directive.text, directive.isSeparator);
        }
        return;
    case Directive::Kind::warning:
    case Directive::Kind::error:
        if (isNew) {
            builder_.addNote(directive.kind == Directive::Kind::warning ? NoteKind::warning
                                                                        : NoteKind::error,
                             lineAt(begin), withoutQuotes(directive.text));
        }
        return;
    case Directive::Kind::other:
        return;
    }
}

void Recogniser::readAlternative(std::size_t at) {
    if (bodyDepth_ == 0 && scopes_.current().kind == ScopeKind::enumeration) {
        endHead(at); // the last case of a branch needs no comma
    }
    if (const auto begin = conditions_.next(place())) {
        goTo(*begin, at);
    }
}

void Recogniser::endCondition(std::size_t at) {
    const auto end = conditions_.end();
    if (!end) {
        return;
    }
    if (end->bodyDepth > 0 || bodyDepth_ > 0) {
        bodyDepth_ = end->bodyDepth;
    } else if (scopes_.at(end->scope).depth != scopes_.depth()) {
        scopes_.restore(end->scope, lineAt(at));
    }
}

/// Macros inside of bodies belong to these.
void Recogniser::readDefinition(const Directive& directive, std::size_t begin, std::size_t end) {
    if (bodyDepth_ > 0) {
        return;
    }
    if (head_.empty()) {
        declarations_.addMacro(directive, begin, end);
    } else {
        declarations_.addMacroLater(directive, begin, end);
    }
}

Place Recogniser::place() const {
    return {scopes_.number(), bodyDepth_, head_.size(), headNumber_};
}

void Recogniser::goTo(const Place& place, std::size_t at) {
    if (bodyDepth_ == 0 || place.bodyDepth == 0) {
        scopes_.restore(place.scope, lineAt(at));
        head_.truncate(place.headNumber == headNumber_ ? place.headSize : 0);
    }
    bodyDepth_ = place.bodyDepth;
}

// Braces.

void Recogniser::openBrace(const Token& brace) {
    const bool isOfProperty = !head_.empty() && head_[0].atWord == AtWord::property;
    if (isOfProperty || !mayLookThroughHead()) {
        passBraces(brace); // "@property struct { int a; } name;"
        return;
    }
    if (isTemplateArgument(brace)) {
        passBraces(brace);
        return;
    }
    if (head_.empty() || head_.is(0, Word::statement) || isExpression() ||
        scopes_.current().kind == ScopeKind::enumeration) {
        const bool isBlock = !isExpression();
        passBraces(brace);
        if (isBlock && !head_.isNested() && scopes_.current().kind != ScopeKind::enumeration) {
            clearHead();
        }
        return;
    }
    if (isInContainer() && (head_.is(0, '-') || head_.is(0, '+'))) {
        openMethod(brace);
    } else if (!openScope(brace) && !openFunction(brace)) {
        const Declarator declarator = readDeclarator(head_, 0, false, scopes_.current().name);
        const bool isInitializer = isCpp_ && declarator.name.isValid() && declarator.hasType;
        passBraces(brace); // int a{1}; or nothing that is known
        if (!isInitializer) {
            clearHead();
        }
    }
}

/// "requires { … }" and "requires (T a) { … }" as parts of constraints.
bool Recogniser::isExpression() const {
    if (head_.empty()) {
        return false;
    }
    std::size_t last = head_.size() - 1;
    if (head_.back().is(')') && head_.back().partner != kNoPartner && head_.back().partner > 0) {
        last = head_.back().partner - 1;
    } else if (head_.is(last, Word::requiresClause)) {
        return true;
    }
    return last > 0 && head_.is(last, Word::requiresClause) &&
           (head_.is(last - 1, Word::requiresClause) || head_.is(last - 1, kLogicalSign) ||
            head_.is(last - 1, '!') || head_.is(last - 1, '='));
}

/// "A<B{1, 2}> c", "A<[] { return 1; }()> c": the braces of a value between "<" and ">".
bool Recogniser::isTemplateArgument(const Token& brace) {
    std::size_t open = 0;
    for (std::size_t i = 0; i < head_.size(); i = head_.after(i)) {
        open += head_.is(i, '<') ? 1 : 0;
        open -= head_.is(i, '>') && open > 0 ? 1 : 0;
    }
    if (!isCpp_ || open == 0) {
        return false;
    }
    const std::size_t closing = matcher_.closingOf(brace.begin, lexer_);
    lexer_.setPosition(std::min(closing + 1, text_.size()));
    const char next = closing < text_.size() ? lexer_.peek() : '\0';
    lexer_.setPosition(brace.end);
    return next == ',' || next == '>' || next == '(';
}

bool Recogniser::openScope(const Token& brace) {
    if (scopes_.depth() >= kMaximumOutlineDepth) {
        passBraces(brace);
        clearHead();
        return true;
    }
    const bool isLinkage = head_.size() > 1 && head_.back().kind == TokenKind::string &&
                           head_.is(head_.size() - 2, Word::externName);
    if (isLinkage) {
        Scope scope;
        scope.kind = ScopeKind::linkage;
        scopes_.open(scope);
        clearHead();
        return true;
    }
    return openNamespace(brace.begin) || openType(brace);
}

bool Recogniser::openNamespace(std::size_t end) {
    // C has no such word, but sources for both languages have it between "#ifdef" and "#endif".
    const bool isAlone = head_.size() == 2 && head_[0].isName() && head_[1].isName() &&
                         head_.textOf(0) == "namespace";
    std::size_t word = 0;
    while (word < head_.size() && !isAlone && !head_.is(word, Word::namespaceScope)) {
        word = head_.after(word);
    }
    if (word >= head_.size()) {
        return false;
    }
    NameRange name;
    for (std::size_t i = word + 1; i < head_.size(); i = head_.after(i)) {
        const std::size_t before = head_.is(i - 1, Word::specifier) ? i - 2 : i - 1;
        const bool isJoined = name.isValid() && head_[before].is(kScopeSign);
        if (head_[i].isName() && (!name.isValid() || isJoined)) {
            name = {name.isValid() ? name.first : i, i};
        }
    }
    Scope scope;
    scope.kind = name.isValid() ? ScopeKind::namespaceScope : ScopeKind::linkage;
    if (name.isValid()) {
        Found found;
        found.kind = SymbolKind::namespaceScope;
        found.name = textOfName(head_, name);
        found.nameAt = head_[name.first].begin;
        found.begin = head_[0].begin;
        found.end = end;
        declarations_.with(found,
                           [&](const auto& declaration) { scopes_.open(scope, declaration); });
    } else {
        scopes_.open(scope);
    }
    clearHead();
    return true;
}

/// Ends types that were left open before a line that is indented no more than they are. A case
/// that such a line would go on with is the last one.
void Recogniser::beginMember(const Token& token) {
    const bool isInEnumeration = scopes_.current().kind == ScopeKind::enumeration;
    const bool mayBegin = (head_.empty() || isInEnumeration) && token.kind == TokenKind::word &&
                          isBraced(scopes_.current().kind) && isFirstOnLine(token.begin);
    if (!mayBegin || isLabelAt(token)) {
        return;
    }
    const std::size_t indent = indentAt(token.begin);
    Scope& scope = scopes_.current();
    if (!scope.hasMembers) {
        scope.hasMembers = true;
        scope.isFlat = indent <= scope.indent;
    }
    while (endsScopeBefore(indent)) {
        endHead(token.begin);
        scopes_.close(std::max<std::uint32_t>(lineAt(token.begin), 2) - 1);
    }
}

bool Recogniser::endsScopeBefore(std::size_t indent) const {
    const Scope& scope = scopes_.current();
    return isBraced(scope.kind) && scope.hasMembers && !scope.isFlat && indent <= scope.indent;
}

/// "public:" and its kin, which are indented like their class.
bool Recogniser::isLabelAt(const Token& word) const {
    std::size_t place = word.end;
    while (place < text_.size() && (isNameByte(text_[place]) || text_[place] == ' ')) {
        ++place;
    }
    return place < text_.size() && text_[place] == ':' && !text_.substr(place).starts_with("::");
}

bool Recogniser::openType(const Token& brace) {
    const auto type = readTypeHead(head_);
    if (!type) {
        return false;
    }
    Scope scope;
    scope.indent = trustsIndentation_ ? indentAt(head_[0].begin) : 0;
    scope.kind = type->kind == SymbolKind::enumType ? ScopeKind::enumeration : ScopeKind::type;
    for (std::size_t i = 0; i < type->keyword; i = head_.after(i)) {
        scope.isTypeDefinition = scope.isTypeDefinition || head_.is(i, Word::typeDefinition);
        scope.isExternal = scope.isExternal || head_.is(i, Word::externName);
    }
    scope.endsWithBrace = head_[type->keyword].isName(); // NS_ENUM and its kin
    std::string name;
    if (!scope.endsWithBrace && (!type->name.isValid() || scope.isTypeDefinition)) {
        name = nameAfterBody(brace.begin);
        lexer_.setPosition(brace.end);
    }
    const bool isPointer = name.starts_with('*');
    name.erase(0, isPointer ? 1 : 0);
    Found found = declarations_.typeOf(*type, name, brace.begin);
    scope.isNameTaken = !name.empty() && found.name == name && !isPointer;
    if (!type->name.isValid() && !name.empty()) {
        scope.isNameTaken = true;
        if (!scope.isTypeDefinition) {
            found.kind =
                isMemberScope(scopes_.current().kind) ? SymbolKind::field : SymbolKind::variable;
        } else if (isPointer) {
            found.kind = SymbolKind::typeDefinition;
        }
    }
    scope.name = type->name.isValid() ? std::string(head_.textOf(type->name.last)) : name;
    if (found.name.empty()) {
        scopes_.open(scope);
    } else {
        declarations_.with(found,
                           [&](const auto& declaration) { scopes_.open(scope, declaration); });
    }
    clearHead();
    return true;
}

bool Recogniser::openFunction(const Token& brace) {
    const Found function =
        declarations_.functionOf(signatureEnd_ != 0 ? signatureEnd_ : brace.begin);
    if (function.name.empty()) {
        return false;
    }
    passFunction(function);
    return true;
}

void Recogniser::openMethod(const Token& brace) {
    passFunction(declarations_.methodOf(brace.begin));
}

void Recogniser::passFunction(const Found& function) {
    headIndent_ = indentAt(head_[0].begin);
    clearHead();
    bodyDepth_ = 1;
    passBody();
    passHandlers();
    if (!function.name.empty()) {
        declarations_.add(function, lexer_.position());
    }
}

/// "catch (…) { … }" behind the body of a function that is tried as a whole.
void Recogniser::passHandlers() {
    while (isCpp_ && lexer_.peek() == 'c') {
        const std::size_t position = lexer_.position();
        Token token = lexer_.next();
        if (token.in(text_) != "catch") {
            lexer_.setPosition(position);
            return;
        }
        do {
            token = lexer_.next();
        } while (!token.is('{') && !token.is('}') && !token.is(';') &&
                 token.kind != TokenKind::end);
        if (!token.is('{')) {
            lexer_.setPosition(token.begin);
            return;
        }
        bodyDepth_ = 1;
        passBody();
    }
}

/// Passes over a pair of braces, which become one token of the head.
void Recogniser::passBraces(const Token& brace) {
    Token braces = brace;
    headIndent_ = indentAt(head_.empty() ? brace.begin : head_[0].begin);
    const std::uint64_t number = headNumber_;
    bodyDepth_ = 1;
    passBody();
    braces.kind = TokenKind::braces;
    braces.end = static_cast<std::uint32_t>(lexer_.position());
    if (number == headNumber_) {
        head_.push(braces);
    }
}

/// Goes to the end of the body that is open, or to where a branch of #if leaves it.
void Recogniser::passBody() {
    const std::size_t begin = lexer_.position();
    const std::uint32_t depth = bodyDepth_;
    const std::size_t conditions = conditions_.depth();
    hasBodyLine_ = false;
    if (passBodyOnce() || endsBodiesByIndent_) {
        return;
    }
    endsBodiesByIndent_ = true;
    lexer_.setPosition(begin);
    bodyDepth_ = depth;
    conditions_.cutBack(conditions);
    hasBodyLine_ = false;
    passBodyOnce();
}

/// Whether the body ends, and what follows may be read on.
bool Recogniser::passBodyOnce() {
    while (bodyDepth_ > 0) {
        const BodyEvent event = lexer_.nextInBody(endsBodiesByIndent_);
        switch (event.kind) {
        case BodyEvent::Kind::open:
            ++bodyDepth_;
            break;
        case BodyEvent::Kind::close:
            --bodyDepth_;
            break;
        case BodyEvent::Kind::directive:
            readDirective(event.begin, event.end);
            break;
        case BodyEvent::Kind::container:
            bodyDepth_ = 0;
            return endsBodiesByIndent_;
        case BodyEvent::Kind::lineStart:
            if (endsBodyAt(event.end)) {
                bodyDepth_ = 0;
            }
            break;
        case BodyEvent::Kind::end:
            bodyDepth_ = 0;
            return false;
        }
    }
    return true;
}

/// In a body that is indented, whether a line that is not shows that the body's end is missing. A
/// brace there is this end.
bool Recogniser::endsBodyAt(std::size_t lineStart) {
    std::size_t first = lineStart;
    while (first < text_.size() && (text_[first] == ' ' || text_[first] == '\t')) {
        ++first;
    }
    if (first == text_.size() || text_[first] == '\n' || text_[first] == '\r' ||
        text_[first] == '#' || text_[first] == '/') {
        return false;
    }
    const std::size_t indent = first - lineStart;
    if (!hasBodyLine_) {
        hasBodyLine_ = true;
        isBodyIndented_ = indent > headIndent_;
        return false;
    }
    if (!isBodyIndented_ || indent > headIndent_) {
        return false;
    }
    if (text_[first] == '}') {
        bodyDepth_ = 1;
        return false;
    }
    std::size_t end = first;
    while (end < text_.size() && isNameByte(text_[end])) {
        ++end;
    }
    const bool isLabel = end < text_.size() && text_[end] == ':';
    const bool isMethod = isInContainer() && (text_[first] == '-' || text_[first] == '+');
    return isMethod || (end > first && !isLabel);
}

/// The name that stands behind the body at a brace, "*" before it where it is a pointer's.
std::string Recogniser::nameAfterBody(std::size_t brace) {
    const std::size_t closing = matcher_.closingOf(brace, lexer_);
    if (closing >= text_.size()) {
        return {};
    }
    lexer_.setQuiet(true);
    lexer_.setPosition(closing + (text_[closing] == '%' ? 2 : 1));
    std::string name;
    std::string before;
    bool isPointer = false;
    bool isAfterName = false;
    std::size_t depth = 0;
    for (int look = 0; look < kMaximumLook; ++look) {
        const Token token = lexer_.next();
        if (token.is('(')) {
            name = isAfterName && depth == 0 ? before : name; // a macro
            ++depth;
        } else if (token.is(')')) {
            depth -= depth > 0 ? 1 : 0;
        } else if (depth > 0) {
            continue;
        } else if (token.isName()) {
            isAfterName = name.empty() || isAllCapitals(name);
            if (isAfterName) {
                before = std::exchange(name, token.in(text_));
            }
            continue;
        } else if (token.is('*')) {
            isPointer = isPointer || name.empty();
        } else if (token.kind != TokenKind::word) {
            name = token.is(kScopeSign) ? "" : name; // "enum { a } A::f() {}"
            break;
        }
        isAfterName = false;
    }
    lexer_.setQuiet(false);
    return isPointer && !name.empty() ? "*" + name : name;
}

void Recogniser::closeBrace(const Token& brace) {
    head_.abandonGroups();
    if (holdsMacrosAlone() || holdsMacroCallsAlone()) {
        clearHead();
    }
    endHead(brace.begin);
    const Scope scope = scopes_.current();
    if (scope.kind == ScopeKind::file || isContainerKind(scope.kind)) {
        return; // one too many
    }
    scopes_.close(lineAt(brace.begin));
    const bool isType = scope.kind == ScopeKind::type || scope.kind == ScopeKind::enumeration;
    if (!isType || scope.endsWithBrace) {
        return;
    }
    // What follows are declarators, as after the name of a type.
    Token body = brace;
    if (scope.isTypeDefinition) {
        body.kind = TokenKind::word;
        body.word = Word::typeDefinition;
        head_.push(body);
    } else if (scope.isExternal) {
        body.kind = TokenKind::word;
        body.word = Word::externName;
        head_.push(body);
    }
    body.kind = TokenKind::braces;
    head_.push(body);
    isFirstNameTaken_ = scope.isNameTaken;
}

/// "A_MACRO ANOTHER_MACRO", which have no semicolon.
bool Recogniser::holdsMacrosAlone() const {
    for (std::size_t i = 0; i < head_.size(); ++i) {
        if (!head_[i].isName() || !isAllCapitals(head_.textOf(i))) {
            return false;
        }
    }
    return scopes_.current().kind != ScopeKind::enumeration;
}

// Parts of heads.

/// Adds what the head declares. Its initializer ends at a place.
void Recogniser::endHead(std::size_t place) {
    if (!head_.empty()) {
        const bool hasInitializer = head_.back().is('=');
        const std::size_t end = hasInitializer ? place : head_.back().end;
        if (scopes_.current().kind == ScopeKind::enumeration) {
            declarations_.addCase(end);
        } else if (head_[0].atWord == AtWord::property) {
            declarations_.addProperties(end);
        } else if (!isInContainer() || !(head_.is(0, '-') || head_.is(0, '+'))) {
            declarations_.addAll(end, isFirstNameTaken_);
        } else if (const Found method = declarations_.methodOf(head_.back().end);
                   !method.name.empty()) {
            declarations_.add(method, end);
        }
    }
    clearHead();
}

void Recogniser::clearHead() {
    head_.clear();
    ++headNumber_;
    headLooks_ = 0;
    signatureEnd_ = 0;
    hasReadColon_ = false;
    isFirstNameTaken_ = false;
    declarations_.addLaterMacros();
}

void Recogniser::endStatement(const Token& sign) {
    head_.abandonGroups();
    if (head_.empty()) {
        return;
    }
    const bool isMethod = head_.is(0, '-') || head_.is(0, '+');
    if (isMethod && scopes_.current().kind == ScopeKind::implementation) {
        if (lexer_.peek() != '{') {
            clearHead(); // a method that is declared again
        }
        return;
    }
    const bool mayBeOldStyle = !isCpp_ && scopes_.current().kind != ScopeKind::enumeration;
    if (mayBeOldStyle && isOldStyleParameter(head_)) {
        head_.push(sign);
        return;
    }
    endHead(sign.begin);
}

/// After "=": goes to the sign that ends the initializer.
void Recogniser::passInitializer() {
    std::size_t depth = 0;
    bool mayHaveArguments = false; // a name, or the capture of a lambda, was the last
    const std::uint64_t number = headNumber_;
    while (number == headNumber_) {
        const std::size_t position = lexer_.position();
        const Token token = lexer_.next();
        const bool endsOne =
            depth == 0 && (token.is(')') || token.is(']') || (token.is(',') && beginsNext()));
        const bool isEnd = token.kind == TokenKind::end || token.is(';') || token.is('}') ||
                           endsOne ||
                           (token.kind == TokenKind::atWord && token.atWord != AtWord::other &&
                            isFirstOnLine(token.begin));
        if (isEnd) {
            lexer_.setPosition(position);
            return;
        }
        if (token.is('(') || token.is('[')) {
            ++depth;
        } else if (token.is(')') || token.is(']')) {
            --depth;
        } else if (token.is('{')) {
            bodyDepth_ = 1;
            passBody();
        } else if (token.kind == TokenKind::directive) {
            readDirective(token.begin, token.end);
        } else if (token.is('<') && isCpp_ && mayHaveArguments && depth == 0) {
            passTemplateArguments();
        }
        mayHaveArguments = token.isName() || token.is(']');
    }
}

/// After "<" in an expression: goes behind its ">" if what is between can be template arguments.
void Recogniser::passTemplateArguments() {
    const std::size_t begin = lexer_.position();
    if (begin <= angleSearchEnd_) {
        return; // what an earlier one looked through without finding an end
    }
    lexer_.setQuiet(true);
    std::size_t angles = 1;
    std::size_t groups = 0;
    for (int look = 0; look < kMaximumLook && angles > 0; ++look) {
        const Token token = lexer_.next();
        const bool isNever = token.is(';') || token.is('{') || token.is('}') || token.is('=') ||
                             token.kind == TokenKind::end || token.kind == TokenKind::directive ||
                             (token.is(')') && groups == 0);
        if (isNever) {
            break;
        }
        groups += token.is('(') ? 1 : 0;
        groups -= token.is(')') ? 1 : 0;
        angles += token.is('<') && groups == 0 ? 1 : 0;
        angles -= token.is('>') && groups == 0 ? 1 : 0;
    }
    lexer_.setQuiet(false);
    if (angles > 0) {
        angleSearchEnd_ = lexer_.position();
        lexer_.setPosition(begin);
    }
}

/// After a comma: whether another case may follow. "f<1, 2>::value" has commas of its own.
bool Recogniser::beginsNext() {
    if (scopes_.current().kind != ScopeKind::enumeration) {
        return true;
    }
    const std::size_t position = lexer_.position();
    const Token token = lexer_.next();
    const char behind = lexer_.peek();
    lexer_.setPosition(position);
    return token.kind == TokenKind::word ? behind != '>' && behind != ':'
                                         : token.kind != TokenKind::number;
}

/// After the colon of a constructor: goes to the brace of its body.
void Recogniser::passConstructorInitializers(const Token& colon) {
    signatureEnd_ = colon.begin;
    const std::uint64_t number = headNumber_;
    std::size_t depth = 0;
    bool isAfterName = false;
    while (number == headNumber_) {
        const std::size_t position = lexer_.position();
        const Token token = lexer_.next();
        const bool isBody = token.is('{') && depth == 0 && !isAfterName;
        if (isBody || token.kind == TokenKind::end || token.is(';') || token.is('}')) {
            lexer_.setPosition(position);
            return;
        }
        isAfterName = token.kind == TokenKind::word || token.is('>');
        if (token.is('(')) {
            ++depth;
        } else if (token.is(')')) {
            depth -= depth > 0 ? 1 : 0;
        } else if (token.is('{')) {
            bodyDepth_ = 1;
            passBody();
        } else if (token.kind == TokenKind::directive) {
            readDirective(token.begin, token.end);
        }
    }
}

/// "public:", "signals:", "public slots:", with macros before; and any other word alone, which is
/// no declaration.
bool Recogniser::isAccessLabel() const {
    if (scopes_.current().kind != ScopeKind::type || head_.empty()) {
        return false;
    }
    return (head_.size() == 1 && head_[0].isName()) || accessWord() != Word::name;
}

/// The access that the end of the head names.
Word Recogniser::accessWord() const {
    for (std::size_t i = head_.size(); i > 0 && head_.size() - i < 2; --i) {
        const Word word = head_[i - 1].kind == TokenKind::word ? head_[i - 1].word : Word::name;
        if (word == Word::accessPublic || word == Word::accessProtected ||
            word == Word::accessPrivate) {
            return word;
        }
    }
    return Word::name;
}

void Recogniser::readAccessLabel() {
    Access& access = scopes_.current().access;
    switch (accessWord()) {
    case Word::accessPublic:
        access = Access::publicAccess;
        return;
    case Word::accessProtected:
        access = Access::protectedAccess;
        return;
    case Word::accessPrivate:
        access = Access::privateAccess;
        return;
    default:
        // Signals are public.
        if (head_.textOf(0) == "signals" || head_.textOf(0) == "Q_SIGNALS") {
            access = Access::publicAccess;
        }
    }
}

// Objective-C.

void Recogniser::readAtWord(const Token& token) {
    const bool isExpression = token.atWord == AtWord::protocol && lexer_.peek() == '(';
    if (token.atWord == AtWord::other || isExpression) {
        head_.push(token);
        return;
    }
    clearHead();
    switch (token.atWord) {
    case AtWord::interfaceType:
    case AtWord::implementation:
        openContainer(token);
        return;
    case AtWord::protocol:
        openProtocol(token);
        return;
    case AtWord::end:
        endContainer(token.begin);
        return;
    case AtWord::accessPublic:
    case AtWord::accessProtected:
    case AtWord::accessPrivate:
    case AtWord::accessPackage:
        if (scopes_.current().kind == ScopeKind::variables) {
            scopes_.current().access = accessOf(token.atWord);
        }
        return;
    case AtWord::property:
    case AtWord::statement:
        head_.push(token);
        return;
    default:
        return;
    }
}

/// @interface and @implementation, which end with nothing: what belongs to them is read as far as
/// it goes.
void Recogniser::openContainer(const Token& word) {
    leaveContainers(word.begin);
    const Token name = lexer_.next();
    if (!name.isName()) {
        lexer_.setPosition(name.begin);
        return;
    }
    const bool isInterface = word.atWord == AtWord::interfaceType;
    Found found;
    found.kind = isInterface ? SymbolKind::classType : SymbolKind::implementation;
    found.name = name.in(text_);
    found.nameAt = name.begin;
    found.begin = word.begin;
    found.end = name.end;
    readContainerRest(found, isInterface);
    beginContainer(found, isInterface ? ScopeKind::declaration : ScopeKind::implementation);
    if (lexer_.peek() == '{') {
        while (lexer_.next().kind == TokenKind::directive) {
        }
        Scope variables;
        variables.kind = ScopeKind::variables;
        scopes_.open(variables);
    }
}

/// "<T>", "(Category)", ": Super<T>", "<Protocol, …>", each of which may be missing.
void Recogniser::readContainerRest(Found& found, bool isInterface) {
    std::string protocols = takeNames('<', '>');
    if (lexer_.peek() == '(') {
        const std::string category = takeNames('(', ')');
        const std::size_t end = category.find('\n');
        if (end != std::string::npos) {
            found.name = category.substr(0, end); // a macro for the name and its parameters
        } else {
            found.name += " (" + category + ")";
            found.kind = isInterface ? SymbolKind::category : found.kind;
        }
        protocols.clear();
    }
    if (takeIf(':')) {
        const Token super = lexer_.next();
        found.inherits = super.in(text_);
        const bool hasArguments = lexer_.peek() == '<';
        protocols = hasArguments ? takeNames('<', '>') : std::string();
    }
    if (lexer_.peek() == '<') {
        protocols = takeNames('<', '>');
    }
    found.end = lexer_.position();
    if (!protocols.empty()) {
        found.inherits += (found.inherits.empty() ? "" : "\n") + protocols;
    }
}

void Recogniser::openProtocol(const Token& word) {
    const Token name = lexer_.next();
    if (!name.isName()) {
        lexer_.setPosition(name.begin);
        return;
    }
    const char next = lexer_.peek();
    if (next == ';' || next == ',') {
        head_.push(word); // a forward declaration
        return;
    }
    leaveContainers(word.begin);
    Found found;
    found.kind = SymbolKind::protocol;
    found.name = name.in(text_);
    found.nameAt = name.begin;
    found.begin = word.begin;
    found.inherits = takeNames('<', '>');
    found.end = lexer_.position();
    beginContainer(found, ScopeKind::declaration);
}

void Recogniser::beginContainer(const Found& found, ScopeKind kind) {
    Scope scope;
    scope.kind = kind;
    if (scopes_.depth() >= kMaximumOutlineDepth) {
        return;
    }
    declarations_.with(found, [&](const auto& declaration) { scopes_.open(scope, declaration); });
}

void Recogniser::endContainer(std::size_t at) {
    Scopes::Number number = scopes_.number();
    while (number != 0 && !isContainerKind(scopes_.at(number).kind)) {
        number = scopes_.at(number).parent;
    }
    if (number != 0) {
        scopes_.restore(scopes_.at(number).parent, lineAt(at));
    }
}

/// No class is declared in another, nor in a type: what is open there lacks its end.
void Recogniser::leaveContainers(std::size_t at) {
    Scopes::Number number = scopes_.number();
    for (Scopes::Number outer = number; outer != 0; outer = scopes_.at(outer).parent) {
        if (!holdsContainers(scopes_.at(outer).kind)) {
            number = scopes_.at(outer).parent;
        }
    }
    if (number != scopes_.number()) {
        const std::uint32_t line = lineAt(at);
        scopes_.restore(number, std::max<std::uint32_t>(line, 2) - 1);
    }
}

bool Recogniser::isInContainer() const {
    return isContainerKind(scopes_.current().kind);
}

bool Recogniser::takeIf(Sign sign) {
    if (lexer_.peek() != sign) {
        return false;
    }
    const std::size_t position = lexer_.position();
    if (lexer_.next().is(sign)) {
        return true;
    }
    lexer_.setPosition(position);
    return false;
}

/// The names between two signs, a line feed between two; empty where the first sign does not
/// follow. What names are qualified with is left out.
std::string Recogniser::takeNames(Sign opening, Sign closing) {
    if (!takeIf(opening)) {
        return {};
    }
    std::string names;
    std::size_t depth = 0;
    bool isFirst = true;
    while (true) {
        const Token token = lexer_.next();
        const bool isBroken = token.kind == TokenKind::end || token.kind == TokenKind::atWord ||
                              token.is(';') || token.is('{') || token.is('}');
        if (isBroken) {
            lexer_.setPosition(token.begin);
            return names;
        }
        if (token.is(closing) && depth == 0) {
            return names;
        }
        depth += token.is(opening) ? 1 : 0;
        depth -= token.is(closing) ? 1 : 0;
        if (token.is(',')) {
            isFirst = true;
        } else if (token.kind == TokenKind::word && isFirst && depth == 0) {
            names.append(names.empty() ? "" : "\n").append(token.in(text_));
            isFirst = false;
        }
    }
}

/// How far the line of a place is indented. Far behind the line's beginning it is as good as not at
/// all: going back there from each place would take the square of the line's length.
std::size_t Recogniser::indentAt(std::size_t position) const {
    const std::size_t last = position - std::min(position, kMaximumIndentedLine);
    std::size_t begin = position;
    while (begin > last && text_[begin - 1] != '\n') {
        --begin;
    }
    if (begin > 0 && text_[begin - 1] != '\n') {
        return 0;
    }
    std::size_t first = begin;
    while (first < position && (text_[first] == ' ' || text_[first] == '\t')) {
        ++first;
    }
    return first - begin;
}

bool Recogniser::isFirstOnLine(std::size_t position) const {
    while (position > 0 && (text_[position - 1] == ' ' || text_[position - 1] == '\t')) {
        --position;
    }
    return position == 0 || text_[position - 1] == '\n';
}

} // namespace navrel::cfamily

namespace navrel {

Outline outlineOfCFamily(Language language, std::string_view text) {
    cfamily::Recogniser recogniser(text, language);
    Outline outline = recogniser.outline();
    if (recogniser.isBalanced()) {
        return outline;
    }
    cfamily::Recogniser second(text, language);
    second.trustIndentation();
    Outline other = second.outline();
    // What is cut off in the middle of a scope stays as it was read.
    return second.isBalanced() ? other : outline;
}

} // namespace navrel
