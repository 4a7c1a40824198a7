#include "codemap/swift/SwiftRecogniser.h"

#include <algorithm>

namespace navrel {

namespace {

std::string_view withoutBackticks(std::string_view name) {
    if (name.starts_with('`')) {
        name.remove_prefix(1);
    }
    if (name.ends_with('`')) {
        name.remove_suffix(1);
    }
    return name;
}

SymbolKind kindOfType(SwiftWord word) {
    switch (word) {
    case SwiftWord::actorWord:
        return SymbolKind::actor;
    case SwiftWord::enumWord:
        return SymbolKind::enumType;
    case SwiftWord::protocolWord:
        return SymbolKind::protocol;
    case SwiftWord::structWord:
        return SymbolKind::structType;
    default:
        return SymbolKind::classType;
    }
}

bool isCondition(const SwiftToken& token) {
    return token.kind == SwiftTokenKind::condition || token.kind == SwiftTokenKind::branch ||
           token.kind == SwiftTokenKind::endCondition;
}

std::string_view signatureText(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

} // namespace

SwiftRecogniser::SwiftRecogniser(std::string_view text, OutlineBuilder& builder)
    : builder_(builder), lexer_(text, builder), lastEnd_(text.data()), itemLastEnd_(text.data()) {}

void SwiftRecogniser::trustIndentation() {
    trustsIndentation_ = true;
    lexer_.trustIndentation();
}

void SwiftRecogniser::run() {
    advance();
    while (!token_.isEnd()) {
        readItem();
    }
    isBalanced_ = isBalanced_ && scopes_.empty();
}

// Tokens.

void SwiftRecogniser::advance() {
    last_ = token_;
    if (!token_.text.empty()) {
        lastEnd_ = token_.end();
    }
    isBehindBlock_ = false;
    token_ = lexer_.next();
}

bool SwiftRecogniser::opensAngles() const {
    return token_.kind == SwiftTokenKind::sign && token_.text.front() == '<';
}

/// How many angle brackets the current token opens; those that it closes count against.
int SwiftRecogniser::angles() const {
    if (token_.kind != SwiftTokenKind::sign || token_.text == "->") {
        return 0;
    }
    const std::string_view sign = token_.text;
    return static_cast<int>(std::count(sign.begin(), sign.end(), '<') -
                            std::count(sign.begin(), sign.end(), '>'));
}

/// Skips from a bracket to behind its partner. One kind of bracket stands for the other: code that
/// mixes them up is broken anyway.
void SwiftRecogniser::skipGroup() {
    std::size_t open = 0;
    do {
        if (token_.is('{')) {
            skipClosure();
            continue;
        }
        if (token_.is('}') || token_.isEnd() || startsStrongly()) {
            return;
        }
        if (opensGroup()) {
            ++open;
        } else if (token_.is(')') || token_.is(']')) {
            --open;
        }
        advance();
    } while (open > 0);
}

/// Skips generic arguments or parameters, of which some brackets may be open already.
void SwiftRecogniser::skipAngles(int open) {
    do {
        if (token_.is('{') || token_.is('}') || token_.is(';') || token_.isEnd() ||
            startsStrongly()) {
            return;
        }
        open += angles();
        skipOne();
    } while (open > 0);
}

/// Skips from "{" to behind its partner.
void SwiftRecogniser::skipBlock(SwiftLexer::BlockKind kind) {
    const SwiftLexer::BlockEnd end = lexer_.skipBlock(kind, itemIndent_, outerIndent());
    isBalanced_ = isBalanced_ && end != SwiftLexer::BlockEnd::text;
    last_ = token_;
    lastEnd_ = lexer_.place();
    token_ = lexer_.next();
    isBehindBlock_ = true;
}

/// Skips a token, or what it opens.
void SwiftRecogniser::skipOne() {
    if (token_.is('{')) {
        skipClosure();
    } else if (opensGroup()) {
        skipGroup();
    } else {
        advance();
    }
}

void SwiftRecogniser::skipRest() {
    while (!endsDeclaration()) {
        skipOne();
    }
}

/// Whether a line begins here with what can be no part of an expression.
bool SwiftRecogniser::startsStrongly() {
    if (!token_.startsLine || token_.kind != SwiftTokenKind::word) {
        return false;
    }
    switch (token_.word) {
    case SwiftWord::function:
        return lexer_.peek().isName() || lexer_.peek().kind == SwiftTokenKind::sign;
    case SwiftWord::classWord:
    case SwiftWord::enumWord:
    case SwiftWord::extensionWord:
    case SwiftWord::importWord:
    case SwiftWord::protocolWord:
    case SwiftWord::structWord:
    case SwiftWord::typeAlias:
        return lexer_.peek().isName();
    case SwiftWord::accessModifier:
    case SwiftWord::modifier: // "prefix name: T" is a parameter
        return isModifier(lexer_.peek().word) || introducesDeclaration(lexer_.peek().word);
    default:
        return false;
    }
}

bool SwiftRecogniser::endsItem() const {
    return token_.isEnd() || token_.is('}') || token_.is(';') || isCondition(token_);
}

bool SwiftRecogniser::endsDeclaration() {
    return endsItem() ||
           (token_.startsLine && (isReserved(token_.word) || (!expectsMore() && !continuesLine())));
}

/// Whether the last token cannot be a declaration's last.
bool SwiftRecogniser::expectsMore() const {
    if (isBehindBlock_) {
        return false;
    }
    switch (last_.kind) {
    case SwiftTokenKind::punctuation:
        return last_.is(',') || last_.is(':') || last_.is('.');
    case SwiftTokenKind::sign: // an operator between blanks: others belong to what is before them
        return last_.isDetached || last_.isSign("=") || last_.isSign("->") ||
               last_.is(SwiftWord::prefixWord);
    case SwiftTokenKind::word:
        return last_.is(SwiftWord::prefixWord) || last_.is(SwiftWord::whereWord);
    default:
        return false;
    }
}

/// Whether the current token, the first of its line, cannot be a declaration's first.
bool SwiftRecogniser::continuesLine() {
    switch (token_.kind) {
    case SwiftTokenKind::punctuation:
        return !opensGroup() && !token_.is('@');
    case SwiftTokenKind::sign:
        return true;
    case SwiftTokenKind::word:
        return (token_.is(SwiftWord::continuation) && !isAtAsyncLet()) ||
               token_.is(SwiftWord::whereWord);
    default:
        return false;
    }
}

// Items.

void SwiftRecogniser::readItem() {
    beginItem();
    if (token_.is('}')) {
        readClosingBrace();
        return;
    }
    if (isCondition(token_) || token_.is(';')) {
        if (token_.kind == SwiftTokenKind::branch) {
            closeScopesAbove(lexer_.depth());
        }
        advance();
        return;
    }
    const char* const begin = token_.begin();
    Head head;
    if (readHead(head)) {
        readDeclaration(head);
    } else if (isReserved(token_.word)) {
        advance(); // its name is missing
    } else if (token_.begin() == begin || !endsItem()) {
        skipStatement();
    }
}

void SwiftRecogniser::beginItem() {
    lexer_.forgetComments();
    itemLastEnd_ = lastEnd_;
    itemStartsLine_ = token_.startsLine;
    if (!trustsIndentation_ || !token_.startsLine) {
        return;
    }
    itemIndent_ = lexer_.indentAt(token_.begin());
    if (!scopes_.empty() && !scopes_.back().hasMembers) {
        scopes_.back().hasMembers = true;
        scopes_.back().isFlat = itemIndent_ <= scopes_.back().indent && !token_.is('}');
    }
}

/// Reads attributes and modifiers. Whether an introducer follows, which is the current token then.
bool SwiftRecogniser::readHead(Head& head) {
    for (;;) {
        if (token_.is('@')) {
            skipAttribute();
        } else if (isAtModifier()) {
            readModifier(head);
        } else {
            break;
        }
    }
    if (!isAtIntroducer(head)) {
        return false;
    }
    head.begin = head.begin == nullptr ? token_.begin() : head.begin;
    head.word = token_.word;
    head.introducer = token_.text;
    return true;
}

bool SwiftRecogniser::isAtModifier() {
    if (isModifier(token_.word)) {
        const SwiftToken& next = lexer_.peek();
        return next.isName() || next.is('(') || next.is('@');
    }
    if (isAtAsyncLet()) {
        return true;
    }
    if (token_.is(SwiftWord::classWord)) {
        const SwiftWord next = lexer_.peek().word;
        return isModifier(next) || next == SwiftWord::function || next == SwiftWord::var ||
               next == SwiftWord::let || next == SwiftWord::subscriptWord;
    }
    return false;
}

/// "async let", which scripts have at the level of the file.
bool SwiftRecogniser::isAtAsyncLet() {
    return token_.text == "async" && lexer_.peek().is(SwiftWord::let);
}

void SwiftRecogniser::readModifier(Head& head) {
    head.begin = head.begin == nullptr ? token_.begin() : head.begin;
    const Access access = swiftRuleOf(token_.text).access;
    advance();
    if (token_.is('(')) { // "private(set)" says nothing of the declaration itself
        skipGroup();
    } else if (access != Access::unstated) {
        head.access = access;
    }
}

bool SwiftRecogniser::isAtIntroducer(const Head& head) {
    return token_.kind == SwiftTokenKind::word && introducesDeclaration(token_.word) &&
           isIntroducerBefore(lexer_.peek(), head);
}

bool SwiftRecogniser::isIntroducerBefore(const SwiftToken& next, const Head& head) const {
    if (isReserved(next.word) && !token_.is(SwiftWord::importWord)) {
        return false;
    }
    switch (token_.word) {
    case SwiftWord::actorWord:
    case SwiftWord::macroWord:
        return next.isName() && !next.startsLine && next.word == SwiftWord::none;
    case SwiftWord::operatorWord:
        return head.begin != nullptr;
    case SwiftWord::caseWord:
        return isInEnum() && next.isName();
    case SwiftWord::initWord:
    case SwiftWord::subscriptWord:
        return next.is('(') || next.kind == SwiftTokenKind::sign;
    case SwiftWord::deinitWord:
        return true;
    case SwiftWord::function:
        return next.isName() || next.kind == SwiftTokenKind::sign || next.is('.');
    case SwiftWord::extensionWord:
    case SwiftWord::let:
    case SwiftWord::var:
        return next.isName() || next.is('(') || next.is('[');
    default:
        return next.isName();
    }
}

void SwiftRecogniser::skipAttribute() {
    do { // "@A<B>.C<D>"
        advance();
        if (token_.isName()) {
            advance();
        }
        if (opensAngles() && !token_.isDetached) {
            skipAngles();
        }
    } while (token_.is('.'));
    if (token_.is('(') && !token_.startsLine) {
        skipGroup();
    }
}

void SwiftRecogniser::skipStatement() {
    if (token_.is(SwiftWord::statement)) {
        skipControl();
        return;
    }
    skipOne();
    skipRest();
}

/// Skips "if", "while" … with its block, so that what is declared in its condition is not found.
void SwiftRecogniser::skipControl() {
    const bool isRepeat = token_.text == "repeat";
    advance();
    while (!endsItem() && !startsStrongly()) {
        const bool isBlock = token_.is('{');
        skipOne();
        if (isBlock) {
            break;
        }
    }
    if (isRepeat && token_.text == "while") {
        advance();
        skipRest();
    }
}

// Scopes.

void SwiftRecogniser::openScope(const OutlineBuilder::Declaration& declaration) {
    if (scopes_.size() == kMaximumOutlineDepth) {
        skipClosure();
        return;
    }
    builder_.open(declaration);
    scopes_.push_back({declaration.kind, lexer_.depth(), itemIndent_, false, false});
    advance();
}

void SwiftRecogniser::closeScope(const char* end) {
    builder_.close(lexer_.lineAt(end - 1));
    scopes_.pop_back();
}

void SwiftRecogniser::readClosingBrace() {
    if (scopes_.empty()) {
        isBalanced_ = false;
    } else if (closesScope()) {
        closeScope(token_.end());
    }
    advance();
}

/// Whether the "}" at hand is the innermost scope's. Ends those that were left open before.
bool SwiftRecogniser::closesScope() {
    if (!trustsIndentation_ || !token_.startsLine) {
        return true;
    }
    while (scopes_.size() > 1 && itemIndent_ < scopes_.back().indent) {
        closeScope(lastEnd_);
    }
    return itemIndent_ <= scopes_.back().indent;
}

/// The indentation of what the members at hand are in.
std::ptrdiff_t SwiftRecogniser::outerIndent() const {
    if (scopes_.empty()) {
        return -1;
    }
    return std::min(scopes_.back().indent, itemIndent_ - 1);
}

/// Ends types that were left open before one that is indented no more.
void SwiftRecogniser::closeScopesByIndent() {
    if (!trustsIndentation_ || !itemStartsLine_) {
        return;
    }
    while (!scopes_.empty() && !scopes_.back().isFlat && itemIndent_ <= scopes_.back().indent) {
        closeScope(itemLastEnd_);
    }
}

void SwiftRecogniser::closeScopesAbove(std::uint32_t depth) {
    while (!scopes_.empty() && scopes_.back().depth > depth) {
        closeScope(lastEnd_);
    }
}

// Types.

void SwiftRecogniser::readDeclaration(const Head& head) {
    switch (head.word) {
    case SwiftWord::associatedType:
        return readAssociatedType(head);
    case SwiftWord::caseWord:
        return readCases(head);
    case SwiftWord::deinitWord:
        return readDeinitializer(head);
    case SwiftWord::extensionWord:
        return readExtension(head);
    case SwiftWord::function:
        return readFunction(head);
    case SwiftWord::importWord:
        return skipImport();
    case SwiftWord::initWord:
        return readInitializer(head);
    case SwiftWord::let:
    case SwiftWord::var:
        return readVariables(head);
    case SwiftWord::macroWord:
        return readMacro(head);
    case SwiftWord::operatorWord:
        return readOperator(head);
    case SwiftWord::precedenceGroup:
        return skipPrecedenceGroup();
    case SwiftWord::subscriptWord:
        return readSubscript(head);
    case SwiftWord::typeAlias:
        return readAlias(head);
    default:
        return readType(head, kindOfType(head.word));
    }
}

void SwiftRecogniser::readType(const Head& head, SymbolKind kind) {
    closeScopesByIndent();
    advance();
    if (startsStrongly()) {
        return;
    }
    const Name name = nameOfToken();
    advance();
    if (opensAngles()) {
        skipAngles();
    }
    readTypeRest(head, kind, name);
}

/// An extension is named after the type that it extends, without generic arguments.
void SwiftRecogniser::readExtension(const Head& head) {
    closeScopesByIndent();
    advance();
    const Name first = nameOfToken();
    fullName_.clear();
    bool isFirst = token_.isName(); // it may stand on the next line
    while ((isFirst || !endsDeclaration()) && !token_.is(':') && !token_.is('{') &&
           !token_.is(SwiftWord::whereWord)) {
        const char* const begin = token_.begin();
        isFirst = false;
        if (opensAngles()) {
            skipAngles();
        } else if (opensGroup()) {
            skipGroup();
            fullName_ += signatureText(begin, lastEnd_);
        } else {
            fullName_ += withoutBackticks(token_.text);
            advance();
        }
    }
    readTypeRest(head, SymbolKind::extension, {fullName_, first.line});
}

/// Reads on behind a type's name and generic parameters.
void SwiftRecogniser::readTypeRest(const Head& head, SymbolKind kind, const Name& name) {
    inherits_.clear();
    if (token_.is(':')) {
        readInherits();
    }
    while (!endsDeclaration() && !token_.is('{') && !startsStrongly()) {
        skipOne();
    }
    const std::string_view text = signature("", head.begin, lastEnd_);
    if (token_.is('{')) {
        openScope({kind, head.access, name.line, name.text, text, inherits_});
    } else {
        builder_.add({kind, head.access, name.line, name.text, text, inherits_}, lastLine());
    }
}

/// Reads from ":" to the block or the requirements.
void SwiftRecogniser::readInherits() {
    advance();
    while (!endsDeclaration() && !token_.is('{') && !token_.is(SwiftWord::whereWord) &&
           !token_.isSign("=") && !startsStrongly()) {
        if (token_.is(',') || token_.isSign("&")) {
            advance();
        } else {
            readInherited();
        }
    }
}

/// Reads one name with what surrounds it, or something that is none.
void SwiftRecogniser::readInherited() {
    if (token_.is('@')) {
        skipAttribute();
    } else if (opensAngles()) {
        skipAngles();
    } else if (token_.isName() || token_.isSign("~")) {
        const bool isSaidOfName = token_.word != SwiftWord::none && lexer_.peek().isName();
        const bool isQualified = last_.is('.') && !inherits_.empty();
        if (!isSaidOfName && !token_.is(SwiftWord::classWord)) {
            if (!isQualified && !last_.isSign("~") && !inherits_.empty()) {
                inherits_ += '\n';
            }
            inherits_ += isQualified ? "." : "";
            inherits_ += withoutBackticks(token_.text);
        }
        advance();
    } else {
        skipOne();
    }
}

// Functions.

void SwiftRecogniser::readFunction(const Head& head) {
    advance();
    const std::uint32_t line = lexer_.lineAt(token_.begin());
    if (token_.isName()) {
        fullName_ = withoutBackticks(token_.text);
        advance();
        if (opensAngles()) {
            skipAngles();
        }
        readLabels(Labels::names);
        readFunctionRest(head, scopes_.empty() ? SymbolKind::function : SymbolKind::method, line);
        return;
    }
    if (!readSignName() && opensAngles()) {
        skipAngles();
    }
    readFunctionRest(head, SymbolKind::operatorFunction, line);
}

/// Reads an operator's sign into the full name. Whether generic parameters followed at once and
/// were skipped: "==<T>" is one token.
bool SwiftRecogniser::readSignName() {
    fullName_ = token_.text;
    advance();
    while ((token_.kind == SwiftTokenKind::sign || token_.is('.')) && !token_.isDetached) {
        fullName_ += token_.text;
        advance();
    }
    if (fullName_.size() > 1 && fullName_.ends_with('<') && token_.isName() && !token_.startsLine) {
        fullName_.pop_back();
        skipAngles(1);
        return true;
    }
    return false;
}

void SwiftRecogniser::readMacro(const Head& head) {
    advance();
    const std::uint32_t line = lexer_.lineAt(token_.begin());
    fullName_ = withoutBackticks(token_.text);
    advance();
    if (opensAngles()) {
        skipAngles();
    }
    readLabels(Labels::names);
    readFunctionRest(head, SymbolKind::macro, line);
}

void SwiftRecogniser::readInitializer(const Head& head) {
    const std::uint32_t line = lexer_.lineAt(token_.begin());
    fullName_ = "init";
    advance();
    if (token_.isSign("?") || token_.isSign("!")) {
        advance();
    }
    if (opensAngles()) {
        skipAngles();
    }
    readLabels(Labels::names);
    readFunctionRest(head, SymbolKind::initializer, line);
}

void SwiftRecogniser::readDeinitializer(const Head& head) {
    const std::uint32_t line = lexer_.lineAt(token_.begin());
    fullName_ = "deinit";
    advance();
    readFunctionRest(head, SymbolKind::deinitializer, line);
}

void SwiftRecogniser::readSubscript(const Head& head) {
    const std::uint32_t line = lexer_.lineAt(token_.begin());
    fullName_ = "subscript";
    advance();
    if (opensAngles()) {
        skipAngles();
    }
    readLabels(Labels::none);
    readFunctionRest(head, SymbolKind::subscript, line);
}

/// Reads on behind the parameters. The name is the full name.
void SwiftRecogniser::readFunctionRest(const Head& head, SymbolKind kind, std::uint32_t line) {
    while (!endsDeclaration() && !token_.is('{') && !startsStrongly()) {
        skipOne();
    }
    const std::string_view text = signature("", head.begin, lastEnd_);
    if (token_.is('{')) {
        skipBody();
    }
    add(kind, head, {fullName_, line}, text);
}

/// Adds the parameters' labels to the full name.
void SwiftRecogniser::readLabels(Labels labels) {
    fullName_ += '(';
    if (token_.is('(')) {
        advance();
        bool hasMore = !token_.is(')');
        while (hasMore) {
            readLabel(labels);
            hasMore = skipParameterRest();
        }
        if (token_.is(')')) {
            advance();
        }
    }
    fullName_ += ')';
}

void SwiftRecogniser::readLabel(Labels labels) {
    while (token_.is('@')) {
        skipAttribute();
    }
    if (!token_.isName() || startsStrongly()) {
        return;
    }
    const std::string_view label = withoutBackticks(token_.text);
    advance();
    const bool hasOtherName = token_.isName();
    fullName_ += labels == Labels::names || hasOtherName ? label : "_";
    fullName_ += ':';
}

/// Skips a parameter behind its label. Whether another one follows; its beginning is the current
/// token then.
bool SwiftRecogniser::skipParameterRest() {
    int open = 0;
    bool isDefault = false;
    while (!token_.is(')') && !token_.is('}') && !token_.isEnd() && !startsStrongly()) {
        if (token_.is('{') && !isDefault) {
            return false;
        }
        if (token_.is(',')) {
            advance();
            if ((isDefault || open > 0) ? beginsParameter(isDefault) : !token_.is(')')) {
                return true;
            }
            continue;
        }
        isDefault = isDefault || token_.isSign("=");
        open += isDefault ? 0 : angles();
        skipOne();
    }
    return false;
}

/// Behind a comma that might belong to generic arguments. In a type it does as a rule: "any A",
/// "each B" and "@Sendable () -> C" are arguments then.
bool SwiftRecogniser::beginsParameter(bool isDefault) {
    if (token_.isName() && lexer_.peek().is(':')) {
        return true;
    }
    return isDefault && !token_.is(SwiftWord::prefixWord) &&
           (token_.is('@') || (token_.isName() && lexer_.peek().isName()));
}

// Other declarations.

void SwiftRecogniser::readAlias(const Head& head) {
    advance();
    const Name name = nameOfToken();
    advance();
    skipRest();
    add(SymbolKind::typeAlias, head, name, signature("", head.begin, lastEnd_));
}

void SwiftRecogniser::readAssociatedType(const Head& head) {
    advance();
    const Name name = nameOfToken();
    advance();
    inherits_.clear();
    if (token_.is(':')) {
        readInherits();
    }
    skipRest();
    builder_.add({SymbolKind::associatedType, head.access, name.line, name.text,
                  signature("", head.begin, lastEnd_), inherits_},
                 lastLine());
}

void SwiftRecogniser::readOperator(const Head& head) {
    advance();
    const std::uint32_t line = lexer_.lineAt(token_.begin());
    if (token_.kind != SwiftTokenKind::sign && !token_.is('.')) {
        return;
    }
    readSignName();
    if (!token_.startsLine) {
        skipRest();
    }
    add(SymbolKind::operatorFunction, head, {fullName_, line}, signature("", head.begin, lastEnd_));
}

void SwiftRecogniser::skipPrecedenceGroup() {
    advance();
    advance();
    if (token_.is('{')) {
        skipClosure();
    }
}

void SwiftRecogniser::skipImport() {
    do {
        advance();
    } while (!token_.startsLine && !endsItem());
}

void SwiftRecogniser::readCases(const Head& head) {
    const char* begin = head.begin;
    advance();
    while (token_.isName() && !isReserved(token_.word) && !startsStrongly()) {
        readCase(head, begin);
        begin = nullptr;
        if (!token_.is(',')) {
            return;
        }
        advance();
    }
}

/// `begin` is null for all but a declaration's first case.
void SwiftRecogniser::readCase(const Head& head, const char* begin) {
    const Name name = nameOfToken();
    const char* const own = token_.begin();
    advance();
    while (!endsDeclaration() && !token_.is(',') && !token_.is('{')) {
        skipOne();
    }
    add(SymbolKind::enumCase, head, name,
        begin != nullptr ? signature("", begin, lastEnd_) : signature("case ", own, lastEnd_));
}

// Variables.

void SwiftRecogniser::readVariables(const Head& head) {
    advance();
    bool isFirst = true;
    while (readBinding(head, isFirst)) {
        isFirst = false;
    }
}

/// Reads a name, or a pattern of names, with its type, value and accessors. Whether another one
/// follows.
bool SwiftRecogniser::readBinding(const Head& head, bool isFirst) {
    const char* const begin = token_.begin();
    const bool isPattern = token_.is('(');
    names_.clear();
    if (isPattern) {
        readPattern();
    } else if (token_.isName() && !isReserved(token_.word) && !startsStrongly()) {
        names_.push_back(nameOfToken());
        advance();
    } else {
        return false;
    }
    if (token_.is(':')) {
        skipTypeAnnotation();
    }
    const char* const end = lastEnd_;
    bool hasMore = false;
    if (token_.isSign("=")) {
        hasMore = skipInitialValue();
    } else if (token_.is('{')) {
        skipBody();
    }
    const SymbolKind kind = scopes_.empty() ? SymbolKind::variable : SymbolKind::property;
    for (const Name& name : names_) {
        if (name.text == "_") {
            continue;
        }
        const char* const nameBegin = name.text.data();
        add(kind, head, name,
            isPattern ? signature(head.introducer, nameBegin, nameBegin + name.text.size())
            : isFirst ? signature("", head.begin, end)
                      : signature(head.introducer, begin, end));
    }
    if (!hasMore && token_.is(',')) {
        advance();
        hasMore = true;
    }
    return hasMore;
}

/// Reads the names between parentheses, without labels.
void SwiftRecogniser::readPattern() {
    std::size_t open = 0;
    do {
        if (token_.is('{') || token_.is('}') || token_.isEnd() || startsStrongly()) {
            return;
        }
        if (token_.is('(')) {
            ++open;
        } else if (token_.is(')')) {
            --open;
        } else if (token_.isName() && !lexer_.peek().is(':')) {
            names_.push_back(nameOfToken());
        }
        advance();
    } while (open > 0);
}

void SwiftRecogniser::skipTypeAnnotation() {
    int open = 0;
    advance();
    while (!token_.is('{') && !(open > 0 ? endsItem() || startsStrongly() : endsDeclaration())) {
        if (open <= 0 && (token_.is(',') || token_.isSign("="))) {
            return;
        }
        open += angles();
        skipOne();
    }
}

/// Skips from "=" to the end of the declaration, or to its next name: whether there is one.
bool SwiftRecogniser::skipInitialValue() {
    int open = 0; // angle brackets that may be generic arguments: they stand at a name
    advance();
    while (!endsDeclaration() && !startsStrongly()) {
        if (token_.is(',')) {
            advance();
            if (open <= 0 || beginsBinding()) {
                return true;
            }
            continue;
        }
        const int change = angles();
        open += (change > 0 && !token_.isDetached) || (change < 0 && open > 0) ? change : 0;
        skipOne();
    }
    return false;
}

/// Behind a comma that might belong to generic arguments.
bool SwiftRecogniser::beginsBinding() {
    return token_.isName() && (lexer_.peek().is(':') || lexer_.peek().isSign("="));
}

// Results.

SwiftRecogniser::Name SwiftRecogniser::nameOfToken() {
    return {withoutBackticks(token_.text), lexer_.lineAt(token_.begin())};
}

/// The text between two places without the comments in it, behind other words. Valid until the next
/// call.
std::string_view SwiftRecogniser::signature(std::string_view before, const char* begin,
                                            const char* end) {
    const auto& comments = lexer_.comments();
    if (comments.empty() && before.empty()) {
        return signatureText(begin, end);
    }
    signature_ = before;
    signature_ += before.empty() ? "" : " ";
    const char* place = begin;
    for (const std::string_view comment : comments) {
        if (comment.data() >= place && comment.data() < end) {
            signature_ += signatureText(place, comment.data());
            signature_ += ' ';
            place = comment.data() + comment.size();
        }
    }
    if (place < end) {
        signature_ += signatureText(place, end);
    }
    return signature_;
}

void SwiftRecogniser::add(SymbolKind kind, const Head& head, const Name& name,
                          std::string_view signature) {
    builder_.add({kind, head.access, name.line, name.text, signature, ""}, lastLine());
}

} // namespace navrel
