#include "codemap/cfamily/Declarator.h"

#include "codemap/cfamily/Words.h"

#include <algorithm>
#include <array>

namespace navrel::cfamily {

namespace {

/// Definitions in the old style are looked at once for each parameter.
constexpr std::size_t kMaximumOldStyleHead = 1000;

bool isPointerSign(const Token& token) {
    return token.is('*') || token.is('&') || token.is('^') || token.is(kLogicalSign);
}

/// Whether a token goes on with a declaration after the call of a macro: "EXPORT(int) f(void)".
bool goesOnAfterMacro(const Token& token) {
    return token.kind == TokenKind::operatorName ||
           (token.kind == TokenKind::word && token.word != Word::attribute &&
            token.word != Word::requiresClause) ||
           isPointerSign(token) || token.is('~');
}

/// Macros like API_AVAILABLE(…), which stand after a name.
bool looksLikeAttribute(std::string_view name) {
    constexpr std::array<std::string_view, 6> kParts = {"AVAILABLE", "DEPRECATED", "SWIFT",
                                                        "ALIGN",     "ATTR",       "UNUSED"};
    return std::any_of(kParts.begin(), kParts.end(), [name](std::string_view part) {
        return name.find(part) != std::string_view::npos;
    });
}

class Reader {
public:
    Reader(const Head& head, std::size_t begin, bool hasType, std::string_view className)
        : head_(head), index_(begin), types_(hasType ? 1 : 0), realTypes_(types_),
          className_(className) {}

    Declarator read() {
        while (index_ < head_.size() && !isDone_) {
            readToken(head_[index_]);
        }
        result_.name = name_;
        result_.hasType = types_ > 0;
        result_.end = std::min(index_, head_.size());
        return result_;
    }

private:
    void readToken(const Token& token) {
        switch (token.kind) {
        case TokenKind::word:
            readWord(token);
            return;
        case TokenKind::operatorName:
            takeName();
            result_.isOperator = true;
            ++index_;
            return;
        case TokenKind::braces:
            isDone_ = name_.isValid();
            types_ += isDone_ ? 0 : 1;
            realTypes_ += isDone_ ? 0 : 1;
            index_ += isDone_ ? 0 : 1;
            isTagNext_ = false;
            return;
        case TokenKind::sign:
            readSign(token);
            return;
        default:
            ++index_;
        }
    }

    void readWord(const Token& token) {
        switch (token.word) {
        case Word::name:
            readName();
            return;
        case Word::structType:
        case Word::unionType:
        case Word::classType:
        case Word::enumType:
            takeType(); // "NAMESPACE_BEGIN class A;"
            isTagNext_ = true;
            isEnumeration_ = token.word == Word::enumType;
            break;
        case Word::builtInType:
            takeType();
            ++types_;
            ++realTypes_;
            break;
        case Word::typeOfGroup:
            ++types_;
            ++realTypes_;
            skipWithGroup();
            return;
        case Word::attribute:
            skipWithGroup();
            return;
        case Word::requiresClause:
            skipConstraint();
            return;
        case Word::templateHead:
            index_ = head_.is(index_ + 1, '<') ? head_.afterAngles(index_ + 1) : index_ + 1;
            return;
        default:
            break;
        }
        ++index_;
    }

    void readName() {
        if (isTagNext_) {
            readTag();
            return;
        }
        if (isAttributeMacro()) {
            const bool isOldPrototype = head_.is(index_ + 1, '(') && head_.is(index_ + 2, '(');
            if (isOldPrototype) {
                takeFunction(index_ + 1); // int f PARAMS((int a))
                return;
            }
            skipWithGroup();
            return;
        }
        takeName();
        ++index_;
    }

    /// "struct A", "struct EXPORT A *a", "class EXPORT A;": a macro in capitals before the tag is
    /// not the tag.
    void readTag() {
        const bool isForward = head_.is(index_ - 1, Word::classType) && index_ + 2 == head_.size();
        const bool hasMore = index_ + 2 < head_.size() &&
                             (head_[index_ + 2].isName() || isPointerSign(head_[index_ + 2]));
        const bool isMacro = index_ + 1 < head_.size() && head_[index_ + 1].isName() &&
                             isAllCapitals(head_.textOf(index_)) && (hasMore || isForward);
        if (!isMacro) {
            isTagNext_ = false;
            ++types_;
            ++realTypes_;
            skipTagRest();
            return;
        }
        ++index_;
    }

    /// "A", "A<int>::B"; in an enumeration with what its values are: "A : unsigned int".
    void skipTagRest() {
        index_ = afterType(index_);
        if (isEnumeration_ && head_.is(index_, ':')) {
            index_ = afterType(index_ + 1);
        }
    }

    /// After a type that is a name or some words of the language.
    std::size_t afterType(std::size_t index) const {
        bool isBuiltIn = false;
        while (head_.is(index, Word::builtInType) || head_.is(index, Word::specifier)) {
            isBuiltIn = isBuiltIn || head_.is(index, Word::builtInType);
            ++index;
        }
        if (isBuiltIn) {
            return index;
        }
        index += head_.is(index, Word::name) ? 1 : 0;
        while (head_.is(index, '<') || head_.is(index, kScopeSign)) {
            index = head_.is(index, '<') ? head_.afterAngles(index) : index + 2;
        }
        return index;
    }

    bool isAttributeMacro() const {
        if (isJoined_ || !name_.isValid() || result_.isOperator) {
            return false;
        }
        if (realTypes_ == 0) { // "BOOL" may be a macro, too
            return types_ > 0 && !isAllCapitals(head_.textOf(name_.last)) &&
                   isAllCapitals(head_.textOf(index_)) && looksLikeAttribute(head_.textOf(index_));
        }
        if (head_.textOf(index_).starts_with("__")) {
            return true; // "int a __deprecated": such names are the system's
        }
        if (!isAllCapitals(head_.textOf(index_))) {
            return false;
        }
        return !isAllCapitals(head_.textOf(name_.last)) || !head_.is(index_ + 1, '(') ||
               looksLikeAttribute(head_.textOf(index_));
    }

    void readSign(const Token& token) {
        switch (token.sign) {
        case '(':
            readGroup();
            return;
        case '[':
            index_ = head_.after(index_);
            return;
        case '<':
            index_ = head_.afterAngles(index_);
            return;
        case kScopeSign:
            isJoined_ = name_.isValid();
            break;
        case '~':
            tilde_ = index_;
            break;
        case ',':
        case ';':
        case '=':
        case ':':
        case kArrowSign:
            isDone_ = true;
            return;
        case '*':
        case '&':
        case '^':
        case kLogicalSign:
            takeType();
            realTypes_ += 1;
            break;
        default:
            break;
        }
        ++index_;
    }

    void readGroup() {
        const std::size_t after = head_.after(index_);
        const bool isCalled = head_.is(after, '(') || head_.is(after, '[');
        if (after == index_ + 1) {
            isDone_ = true; // nothing closes it
        } else if (takesHeldName(after, isCalled)) {
            index_ = after;
        } else if (isCalled && (name_.isValid() || types_ > 0) && holdsPointer()) {
            readPointer();
        } else if (!name_.isValid()) {
            index_ = after;
        } else if (isMacroBefore(after)) {
            name_ = {};
            types_ = 1;
            result_.isAfterMacro = true;
            index_ = after;
        } else {
            takeFunction(index_);
        }
    }

    /// Takes "(name)" for the name where it is that one.
    bool takesHeldName(std::size_t after, bool isCalled) {
        const NameRange held = heldName(after);
        const bool hasMore = types_ > 0 || name_.isValid();
        const bool isName = hasMore ? isCalled || !name_.isValid() : isConstructor(held);
        if (!held.isValid() || !isName) {
            return false;
        }
        takeType();
        name_ = held;
        return true;
    }

    /// "(name)", "((name))", "(A::name)", "(A<int>::name)".
    NameRange heldName(std::size_t after) const {
        std::size_t begin = index_ + 1;
        std::size_t end = after - 1;
        while (head_.is(begin, '(') && head_.after(begin) == end) {
            ++begin;
            --end;
        }
        const bool isHeld = begin < end && head_[begin].isName() && head_[end - 1].isName() &&
                            afterType(begin) == end;
        return isHeld ? NameRange{begin, end - 1} : NameRange{};
    }

    /// "A" in the class A, and "A::A".
    bool isConstructor(NameRange name) const {
        const std::string text = name.isValid() ? textOfName(head_, name) : "";
        const std::size_t sign = text.rfind("::");
        if (sign == std::string::npos) {
            return !text.empty() && text == className_;
        }
        const std::string scope = "::" + text.substr(0, sign);
        return scope.ends_with(text.substr(sign));
    }

    /// "(*name", "(WINAPI *name", "(Class::*name", "(^name", and "(POINTER name" with a macro.
    bool holdsPointer() const {
        const std::size_t end = head_.after(index_);
        for (std::size_t i = index_ + 1; i < end; ++i) {
            if (isPointerSign(head_[i])) {
                return true;
            }
            if (head_[i].kind != TokenKind::word && !head_[i].is(kScopeSign)) {
                return (head_[i].is('(') && i == index_ + 1) || holdsMacroAndName(i);
            }
        }
        return false;
    }

    /// Before a named type alone the macro must be in capitals: "f (int a)(b)" may be a call.
    bool holdsMacroAndName(std::size_t end) const {
        return head_[end].is(')') && end == index_ + 3 && head_[end - 1].isName() &&
               head_[end - 2].isName() && (types_ > 0 || isAllCapitals(head_.textOf(end - 2)));
    }

    /// "Name(" or "explicit Name(" in the class of that name.
    bool isConstructorAt(std::size_t index) const {
        if (index < head_.size() && head_.textOf(index) == "explicit") {
            index = head_.is(index + 1, '(') ? head_.after(index + 1) : index + 1;
        }
        return head_.is(index + 1, '(') && head_.textOf(index) == className_;
    }

    /// A name without a type, with a group and more after it, is a macro. A constructor is not.
    bool isMacroBefore(std::size_t after) const {
        if (realTypes_ == 0 && isConstructorAt(after) && isAllCapitals(head_.textOf(name_.last))) {
            return true;
        }
        const int macros = result_.isAfterMacro ? 1 : 0;
        const bool mayBeMacro = macros == 0 || looksLikeMacro(head_.textOf(name_.last));
        if (types_ > macros || !mayBeMacro || result_.isOperator || after >= head_.size() ||
            !goesOnAfterMacro(head_[after]) || isQualifiedName()) {
            return false;
        }
        const bool isConstructor =
            head_.textOf(name_.last) == className_ || head_[name_.first].is('~');
        const bool isOldStyle = head_.back().is(';');
        return !isConstructor && !isOldStyle;
    }

    bool isQualifiedName() const { return isQualified(head_, name_); }

    void readPointer() {
        std::size_t i = index_ + 1;
        const std::size_t after = head_.after(index_);
        NameRange name;
        for (; i < after; ++i) {
            const Token& token = head_[i];
            if (token.isName()) {
                const bool isJoined = head_[i - 1].is(kScopeSign) && name.isValid();
                name = {isJoined ? name.first : i, i};
            } else if (token.is('<')) {
                i = head_.afterAngles(i) - 1;
            } else if (isPointerSign(token)) {
                name = {};
            } else if (token.is('(') && name.isValid()) {
                name_ = name;
                ++types_;
                takeFunction(i);
                return;
            } else if (token.is('[') || token.is(')')) {
                break;
            }
        }
        takeType();
        name_ = name;
        types_ += 1;
        index_ = after;
        while (head_.is(index_, '(') || head_.is(index_, '[')) {
            index_ = std::max(head_.after(index_), index_ + 1);
        }
        isPointer_ = true;
    }

    void takeFunction(std::size_t parameters) {
        result_.isFunction = true;
        result_.parameters = parameters;
        index_ = head_.after(parameters);
        if (!head_.is(index_, ',')) {
            index_ = head_.size();
        }
        isDone_ = true;
    }

    void takeName() {
        if (isPointer_ && name_.isValid()) {
            return; // attributes after "(*name)(int)"
        }
        if (isJoined_ && name_.isValid()) {
            name_.last = index_;
        } else {
            takeType();
            name_ = {tilde_ != SIZE_MAX ? tilde_ : index_, index_};
        }
        isJoined_ = false;
        tilde_ = SIZE_MAX;
    }

    /// What looked like the name is a type, since more follows.
    void takeType() {
        if (name_.isValid()) {
            ++types_;
            realTypes_ += isAllCapitals(head_.textOf(name_.last)) ? 0 : 1;
            name_ = {};
        }
        isJoined_ = false;
    }

    void skipWithGroup() {
        ++index_;
        if (head_.is(index_, '(')) {
            index_ = head_.after(index_);
        }
    }

    /// "requires A<T> && (B)".
    void skipConstraint() {
        do {
            ++index_;
            while (head_.is(index_, '!') || head_.is(index_, kScopeSign)) {
                ++index_;
            }
            if (head_.is(index_, '(')) {
                index_ = head_.after(index_);
                continue;
            }
            if (head_.is(index_, Word::requiresClause)) {
                skipWithGroup();
                index_ += index_ < head_.size() && head_[index_].kind == TokenKind::braces ? 1 : 0;
                continue;
            }
            skipConstraintName();
        } while (head_.is(index_, kLogicalSign));
    }

    void skipConstraintName() {
        while (index_ < head_.size() && head_[index_].kind == TokenKind::word) {
            ++index_;
            if (head_.is(index_, '<')) {
                index_ = head_.afterAngles(index_);
            }
            if (!head_.is(index_, kScopeSign)) {
                return;
            }
            ++index_;
        }
    }

    const Head& head_;
    std::size_t index_;
    int types_;
    int realTypes_; ///< without words in capitals, which may be macros
    std::string_view className_;
    Declarator result_;
    NameRange name_;
    std::size_t tilde_ = SIZE_MAX;
    bool isTagNext_ = false;
    bool isEnumeration_ = false; ///< whether the last tag is an enumeration's
    bool isJoined_ = false;      ///< "::" stands between the name and what follows
    bool isPointer_ = false;
    bool isDone_ = false;
};

bool isWordOfList(const Head& head, std::size_t opening, std::size_t closing,
                  std::string_view word) {
    for (std::size_t i = opening + 1; i < closing; ++i) {
        if (head[i].isName() && head.textOf(i) == word) {
            return true;
        }
    }
    return false;
}

/// Words that begin a value, and never a parameter.
bool isValueWord(std::string_view word) {
    return word == "true" || word == "false" || word == "nullptr" || word == "sizeof" ||
           word == "new";
}

bool isLiteral(const Token& token) {
    return token.kind == TokenKind::number || token.kind == TokenKind::string ||
           token.kind == TokenKind::character;
}

/// "A('a')", "A::B(1, 2)".
bool isCallWithLiteral(const Head& head, std::size_t name) {
    while (name + 2 < head.size() && head[name].isName() && head[name + 1].is(kScopeSign)) {
        name += 2;
    }
    return head.is(name + 1, '(') && name + 2 < head.size() && isLiteral(head[name + 2]);
}

/// "L'a'", "u8"a"".
bool isPrefixedLiteral(const Head& head, std::size_t first) {
    return first + 1 < head.size() && isLiteral(head[first + 1]);
}

/// Whether what stands between parentheses begins with a value: "1", "-a", "A('a')", "{}".
bool beginsValue(const Head& head, std::size_t first) {
    if (head[first].kind == TokenKind::word) {
        return isValueWord(head.textOf(first)) || isPrefixedLiteral(head, first) ||
               isCallWithLiteral(head, first);
    }
    if (head[first].is(kScopeSign)) {
        return isCallWithLiteral(head, first + 1);
    }
    return isLiteral(head[first]) || head[first].kind == TokenKind::braces || head[first].is('&') ||
           head[first].is('-') || head[first].is('{');
}

} // namespace

Declarator readDeclarator(const Head& head, std::size_t begin, bool hasType,
                          std::string_view className) {
    return Reader(head, begin, hasType, className).read();
}

bool isQualified(const Head& head, NameRange name) {
    for (std::size_t i = name.first; i < name.last; ++i) {
        if (head[i].is(kScopeSign)) {
            return true;
        }
    }
    return false;
}

bool looksLikeArguments(const Head& head, const Declarator& declarator) {
    const std::size_t first = declarator.parameters + 1;
    const bool isAfterName = first == declarator.name.last + 2; // not "f PARAMS((int a))"
    const bool mayNest = declarator.hasType && isAfterName;
    return first < head.size() && (beginsValue(head, first) || (mayNest && head[first].is('(')));
}

bool isOldStyleParameter(const Head& head) {
    std::size_t opening = 0;
    while (opening < head.size() &&
           !(head.is(opening, '(') && opening > 0 && head[opening - 1].isName())) {
        opening = head.after(opening);
    }
    if (opening >= head.size() || head[opening].partner == kNoPartner) {
        return false;
    }
    const std::size_t closing = head[opening].partner;
    if (head.size() > kMaximumOldStyleHead) {
        return false;
    }
    for (std::size_t i = opening + 1; i < closing; ++i) {
        if (!head[i].isName() && !head.is(i, ',')) {
            return false;
        }
    }
    if (closing + 2 >= head.size()) {
        return false;
    }
    for (std::size_t i = head.size(); i > closing + 2; --i) {
        if (head[i - 1].isName()) {
            return isWordOfList(head, opening, closing, head.textOf(i - 1));
        }
        if (head[i - 1].is(';')) {
            return true; // the one before was a parameter
        }
    }
    return false;
}

} // namespace navrel::cfamily
