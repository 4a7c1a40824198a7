#include "codemap/cfamily/Declarations.h"

#include "codemap/cfamily/ByteSearch.h"
#include "codemap/cfamily/Selector.h"
#include "codemap/cfamily/Words.h"

#include <algorithm>

namespace navrel::cfamily {

namespace {

/// A call of a macro with a body is named by the call, as far as it is short.
constexpr std::size_t kMaximumCall = 160;

/// So much of a declaration is looked at for its signature, comments included.
constexpr std::size_t kMaximumSignature = 4 * kMaximumSignatureLength;

/// So many tokens are looked at for a specifier, once for each declarator.
constexpr std::size_t kMaximumSpecifiers = 64;

std::size_t afterString(std::string_view text, std::size_t position) {
    const char quote = text[position++];
    while (position < text.size() && text[position] != quote && text[position] != '\n') {
        position += text[position] == '\\' ? 2 : 1;
    }
    return std::min(position + 1, text.size());
}

/// After the comment or directive at a place; the place itself where there is none.
std::size_t afterAside(std::string_view text, std::size_t position) {
    const std::string_view rest = text.substr(position);
    if (rest.starts_with("//") || rest.starts_with('#')) {
        return findLineFeed(text, position);
    }
    if (rest.starts_with("/*")) {
        return std::min(findPair(text, position + 2, '*', '/') + 2, text.size());
    }
    return position;
}

/// A signature without comments and directives.
std::string withoutAsides(std::string_view text) {
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t after = afterAside(text, position);
        if (after > position) {
            result += ' ';
            position = after;
        } else if (text[position] == '"') {
            const std::size_t end = afterString(text, position);
            result += text.substr(position, end - position);
            position = end;
        } else {
            result += text[position] == '\\' ? ' ' : text[position];
            ++position;
        }
    }
    return result;
}

std::string inOneLine(std::string_view text) {
    std::string result;
    for (const char byte : withoutAsides(text)) {
        if (!isBlank(byte)) {
            result += byte;
        } else if (!result.empty() && result.back() != ' ') {
            result += ' ';
        }
    }
    return result;
}

} // namespace

Found Declarations::functionOf(std::size_t signatureEnd) {
    const Scope& scope = scopes_.current();
    const Declarator declarator = readDeclarator(head_, 0, false, scope.name);
    if (!declarator.isFunction || !declarator.name.isValid()) {
        return {};
    }
    Found result = found(kindOf(declarator), declarator.name, signatureEnd);
    const bool hasMacroAsType = declarator.isAfterMacro && head_.is(0, Word::specifier);
    const bool isCall = (!declarator.hasType || (declarator.isAfterMacro && !hasMacroAsType)) &&
                        !isSpecialMember(declarator) &&
                        isAllCapitals(head_.textOf(declarator.name.last));
    const std::size_t after = head_.after(declarator.parameters);
    if (isCall && after > declarator.parameters + 1) {
        const std::size_t end = head_[after - 1].end;
        result.name = inOneLine(
            head_.text().substr(result.nameAt, std::min(end - result.nameAt, kMaximumCall)));
        result.kind = scope.kind == ScopeKind::implementation ? SymbolKind::method : result.kind;
    }
    return result;
}

Found Declarations::methodOf(std::size_t signatureEnd) {
    std::size_t first = 0;
    Found result;
    result.name = readSelector(head_, first);
    result.kind = SymbolKind::method;
    result.nameAt = head_[std::min(first, head_.size() - 1)].begin;
    result.begin = head_[0].begin;
    result.end = signatureEnd;
    return result;
}

Found Declarations::typeOf(const TypeHead& type, std::string_view nameAfter,
                           std::size_t signatureEnd) {
    Found result;
    if (type.name.isValid()) {
        result = found(type.kind, type.name, signatureEnd);
    } else {
        result = found(type.kind, {type.keyword, type.keyword}, signatureEnd);
        result.name = nameAfter;
    }
    result.inherits = type.inherits;
    return result;
}

void Declarations::addAll(std::size_t end, bool isFirstTaken) {
    const Role kind = role();
    if (kind == Role::none) {
        return;
    }
    if (kind == Role::alias) {
        addAlias(end);
        return;
    }
    if (const std::size_t opening = bindings(); opening < head_.size()) {
        addBindings(opening, end);
        return;
    }
    bool hasType = false;
    for (std::size_t begin = 0; begin < head_.size(); ++begin) {
        const Declarator declarator = readDeclarator(head_, begin, hasType, scopes_.current().name);
        if (declarator.name.isValid() && !(isFirstTaken && !hasType)) {
            addDeclarator(declarator, begin, kind == Role::typeDefinition, end);
        }
        hasType = declarator.hasType;
        begin = declarator.end;
        while (begin < head_.size() && !head_.is(begin, ',')) {
            begin = head_.after(begin);
        }
    }
}

/// The index of the bracket in "auto [a, b] = f();"; the head's size in other declarations.
std::size_t Declarations::bindings() const {
    bool isAuto = false;
    for (std::size_t index = 0; index < head_.size(); index = head_.after(index)) {
        const Token& token = head_[index];
        const bool isAttribute = token.is('[') && head_.is(index + 1, '[');
        if (token.is('[') && !isAttribute) {
            return isAuto ? index : head_.size();
        }
        const bool isAutoWord = token.is(Word::builtInType) && head_.textOf(index) == "auto";
        isAuto = isAuto || isAutoWord;
        if (!isAutoWord && !isAttribute && !token.is(Word::specifier) && !token.is('&') &&
            !token.is(kLogicalSign)) {
            return head_.size();
        }
    }
    return head_.size();
}

void Declarations::addBindings(std::size_t opening, std::size_t end) {
    for (std::size_t index = opening; index < head_.after(opening); ++index) {
        if (head_[index].isName()) {
            add(found(SymbolKind::variable, {index, index}, head_.back().end), end);
        }
    }
}

void Declarations::addProperties(std::size_t end) {
    const std::size_t attributes = head_.is(1, '(') ? head_.after(1) : 1;
    bool hasType = false;
    for (std::size_t begin = attributes; begin < head_.size(); ++begin) {
        const Declarator declarator = readDeclarator(head_, begin, hasType, "");
        if (declarator.name.isValid() && declarator.hasType) {
            add(found(SymbolKind::property, declarator.name, head_.back().end), end);
        }
        hasType = declarator.hasType;
        begin = declarator.end;
        while (begin < head_.size() && !head_.is(begin, ',')) {
            begin = head_.after(begin);
        }
    }
}

void Declarations::addCase(std::size_t end) {
    const std::size_t first = nextName(0);
    if (first == head_.size() || head_.is(first + 1, '(')) {
        return; // a macro that stands for cases
    }
    add(found(SymbolKind::enumCase, {first, first}, head_[first].end), end);
}

void Declarations::addMacro(const Directive& definition, std::size_t begin, std::size_t end) {
    Found macro;
    macro.kind = SymbolKind::macro;
    macro.name = definition.text;
    macro.nameAt = static_cast<std::size_t>(definition.text.data() - head_.text().data());
    macro.begin = begin;
    macro.end = macro.nameAt + definition.text.size() + definition.parameters.size();
    add(macro, end);
}

void Declarations::addMacroLater(const Directive& definition, std::size_t begin, std::size_t end) {
    laterMacros_.push_back({definition, begin, end});
}

void Declarations::addMacrosBefore(std::size_t place) {
    while (!laterMacros_.empty() && laterMacros_.front().begin < place) {
        const LaterMacro macro = laterMacros_.front();
        laterMacros_.pop_front();
        addMacro(macro.definition, macro.begin, macro.end);
    }
}

void Declarations::add(const Found& found, std::size_t end) {
    with(found, [this, end](const OutlineBuilder::Declaration& declaration) {
        scopes_.add(declaration, lines_.lineAt(std::max<std::size_t>(end, 1) - 1));
    });
}

Declarations::Role Declarations::role() const {
    if (head_[0].kind == TokenKind::atWord || isInstantiation() || isModuleLine()) {
        return Role::none;
    }
    Role result = Role::ordinary;
    for (std::size_t i = 0; i < head_.size(); i = head_.after(i)) {
        if (head_[i].kind != TokenKind::word) {
            continue;
        }
        switch (head_[i].word) {
        case Word::usingName:
        case Word::conceptName:
            return Role::alias;
        case Word::typeDefinition:
            result = Role::typeDefinition;
            break;
        case Word::friendName:
        case Word::namespaceScope:
        case Word::assertion:
            return Role::none;
        case Word::statement:
            if (i == 0) {
                return Role::none;
            }
            break;
        default:
            break;
        }
    }
    return result;
}

/// "template class A<int>;" instantiates, and declares nothing.
bool Declarations::isInstantiation() const {
    const std::size_t first = head_.is(0, Word::externName) ? 1 : 0;
    return head_.is(first, Word::templateHead) && !head_.is(first + 1, '<');
}

/// "import std", "export module sea".
bool Declarations::isModuleLine() const {
    const std::size_t first = head_.is(0, Word::specifier) ? 1 : 0;
    return first + 2 == head_.size() && head_[first].isName() &&
           (head_.textOf(first) == "import" || head_.textOf(first) == "module");
}

/// "using A = …", "concept A = …"; other uses of "using" declare nothing of their own.
void Declarations::addAlias(std::size_t end) {
    std::size_t i = 0;
    while (i < head_.size() && !head_.is(i, Word::usingName) && !head_.is(i, Word::conceptName)) {
        i = head_.after(i);
    }
    const std::size_t name = i + 1;
    if (name >= head_.size() || !head_[name].isName()) {
        return;
    }
    std::size_t equals = name + 1;
    while (equals < head_.size() && !head_.is(equals, '=')) {
        if (!head_.is(equals, '[') && !head_.is(equals, Word::attribute) &&
            !head_.is(equals, '(')) {
            return;
        }
        equals = head_.after(equals);
    }
    if (equals < head_.size()) {
        add(found(SymbolKind::typeAlias, {name, name}, head_.back().end), end);
    }
}

void Declarations::addDeclarator(const Declarator& declarator, std::size_t begin,
                                 bool isTypeDefinition, std::size_t end) {
    const std::size_t signatureEnd =
        declarator.end < head_.size() ? head_[declarator.end].begin : head_.back().end;
    if (isTypeDefinition) {
        if (declarator.hasType) {
            add(found(SymbolKind::typeDefinition, declarator.name, signatureEnd), end);
        }
        return;
    }
    if (isToBeShown(declarator)) {
        Found result = found(kindOf(declarator), declarator.name, signatureEnd);
        result.begin = std::max<std::size_t>(result.begin, head_[begin].begin);
        add(result, end);
    }
}

bool Declarations::isToBeShown(const Declarator& declarator) const {
    if (declarator.isFunction && !isVariable(declarator)) {
        return isFunctionToBeShown(declarator);
    }
    const bool isExternal =
        contains(Word::externName) && !declarator.isFunction && !head_.is(declarator.end, '=');
    return declarator.hasType && !declarator.isOperator && (!isExternal || isHeader_);
}

bool Declarations::isFunctionToBeShown(const Declarator& declarator) const {
    switch (scopes_.current().kind) {
    case ScopeKind::type:
        return declarator.hasType || isSpecialMember(declarator);
    case ScopeKind::variables:
    case ScopeKind::enumeration:
        return false;
    default:
        if (isQualified(head_, declarator.name)) {
            const bool isSpecialization = head_.is(0, Word::templateHead);
            return head_.back().is('=') || (isHeader_ && isSpecialization); // A::A() = default;
        }
        return isHeader_ && (declarator.hasType || declarator.isOperator);
    }
}

/// "Foo foo(1);"
bool Declarations::isVariable(const Declarator& declarator) const {
    return !declarator.isFunction ||
           (!declarator.isOperator && looksLikeArguments(head_, declarator));
}

SymbolKind Declarations::kindOf(const Declarator& declarator) const {
    const ScopeKind scope = scopes_.current().kind;
    if (declarator.isOperator) {
        return SymbolKind::operatorFunction;
    }
    if (isVariable(declarator)) {
        return isMemberScope(scope) ? SymbolKind::field : SymbolKind::variable;
    }
    const bool isMember = (scope == ScopeKind::type && !contains(Word::friendName)) ||
                          isQualified(head_, declarator.name);
    return isMember ? SymbolKind::method : SymbolKind::function;
}

/// Whether a specifier stands at the beginning of the head, outside of groups.
bool Declarations::contains(Word word) const {
    const std::size_t end = std::min(head_.size(), kMaximumSpecifiers);
    for (std::size_t i = 0; i < end; i = head_.after(i)) {
        if (head_.is(i, word)) {
            return true;
        }
    }
    return false;
}

/// Constructors, destructors and operators have no type before them.
bool Declarations::isSpecialMember(const Declarator& declarator) const {
    return declarator.isOperator || head_[declarator.name.first].is('~') ||
           isQualified(head_, declarator.name) ||
           head_.textOf(declarator.name.last) == scopes_.current().name;
}

Found Declarations::found(SymbolKind kind, NameRange name, std::size_t signatureEnd) const {
    Found result;
    result.kind = kind;
    result.access = scopes_.current().access;
    result.name = textOfName(head_, name);
    result.nameAt = head_[name.first].begin;
    result.begin = std::min<std::size_t>(signatureBegin(), result.nameAt);
    result.end = std::max<std::size_t>(signatureEnd, head_[name.last].end);
    return result;
}

std::string_view Declarations::signatureOf(const Found& found, std::string& edited) const {
    const std::string_view text =
        head_.text().substr(found.begin, std::min(found.end - found.begin, kMaximumSignature));
    for (const char sign : std::string_view("/#\\")) {
        if (text.find(sign) != std::string_view::npos) {
            edited = withoutAsides(text);
            return edited;
        }
    }
    return text;
}

/// The name as a part of the signature's memory where it can be that.
std::string_view Declarations::nameIn(std::string_view signature, const Found& found) const {
    const std::string_view place = head_.text().substr(found.nameAt, found.name.size());
    const bool isPart = signature.data() == head_.text().data() + found.begin;
    return isPart && place == found.name ? place : std::string_view(found.name);
}

/// The names behind a body are shown without it.
std::size_t Declarations::signatureBegin() const {
    for (std::size_t i = 0; i < head_.size() && i < 2; ++i) {
        if (head_[i].kind == TokenKind::braces) {
            return i + 1 < head_.size() ? head_[i + 1].begin : head_[i].end;
        }
    }
    return head_[0].begin;
}

std::size_t Declarations::nextName(std::size_t index) const {
    while (index < head_.size() && !head_[index].isName()) {
        index = head_.after(index);
    }
    return index;
}

} // namespace navrel::cfamily
